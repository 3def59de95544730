// CPlantRecord: one tree, weed or flower of the terrain's object arrays.
// An empty slot is all zeros (m_kind 0).
#pragma once

#include <cstdint>

struct CPlantRecord {
  float m_x;             // world x of the foot; a whole number
  float m_y;             // world y of the foot
  float m_z;             // world z of the foot; a whole number
  std::int32_t m_kind;   // which picture; 0 in an empty slot
  float m_size;          // width in world units; a whole number
};
