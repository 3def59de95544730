// CCam3rdPerson: the camera takes no orders. Move and Rotate do nothing; each
// frame it chases a point fixed in the player's frame of reference (the
// player's camera offset) with a time lag, never overshooting, and keeps
// looking at the player. SetPosition stays live: the offset and the ground
// clamp place the camera through it.
#pragma once

#include "view/Camera.h"

class CCam3rdPerson : public CCamera {
 public:
  // Takes over the state of camera, which may be null.
  explicit CCam3rdPerson(const CCamera* camera);
  ~CCam3rdPerson() override;

  void Move(const D3DXVECTOR3& shift) override;
  void Rotate(float x, float y, float z) override;
  // With lag L seconds the camera covers timeScale / L of the remaining way;
  // lag 0 puts it at the ideal position at once.
  void Update(float timeScale, float lag) override;
  void SetCameraDetails(const CCamera* camera) override;
  CCameraMode GetCameraMode() const override { return CAM_MODE_3RD_PERSON; }

  // Turns the axes to look from the position at target, with the player's up
  // as up. Needs an attached player.
  void SetLookAt(const D3DXVECTOR3& target);
};
