// CCam1stPerson: the camera shifts rigidly with the player and turns by
// itself: pitch about its own right axis, yaw about the player's up axis, roll
// about the player's look axis with the position swung round the player.
// Taking over from a space craft camera brings the axes back to level.
#pragma once

#include "view/Camera.h"

class CCam1stPerson : public CCamera {
 public:
  // Takes over the state of camera, which may be null.
  explicit CCam1stPerson(const CCamera* camera);
  ~CCam1stPerson() override;

  void Rotate(float x, float y, float z) override;
  void SetCameraDetails(const CCamera* camera) override;
  CCameraMode GetCameraMode() const override { return CAM_MODE_1ST_PERSON; }
};
