// CFlyingFigure: one winged figure of the flock over the terrain.
#pragma once

struct CFlyingFigure {
  float m_x;
  float m_y;              // never changes after placement
  float m_z;
  float m_heading;        // present heading, degrees
  float m_size;           // size factor of the wings
  float m_targetHeading;  // heading the figure turns to, degrees
};
