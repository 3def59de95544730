// CCamSpaceCraft: the camera shifts rigidly with the player, and every turn is
// about one of the player's own axes with the camera's position swung round
// the player, so that camera and body behave as one rigid ship. It never
// levels its axes when taking over from another camera.
#pragma once

#include "view/Camera.h"

class CCamSpaceCraft : public CCamera {
 public:
  // Takes over the state of camera, which may be null.
  explicit CCamSpaceCraft(const CCamera* camera);
  ~CCamSpaceCraft() override;

  void Rotate(float x, float y, float z) override;
  void SetCameraDetails(const CCamera* camera) override;
  CCameraMode GetCameraMode() const override { return CAM_MODE_SPACE_CRAFT; }
};
