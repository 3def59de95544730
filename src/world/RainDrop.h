// CRainDrop: the world position of the foot of one rain drop.
#pragma once

struct CRainDrop {
  float m_x;
  float m_y;
  float m_z;
};
