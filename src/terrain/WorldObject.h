// CWorldObject: a world matrix that points at a mesh it does not own.
#pragma once

#include "platform/d3dx9/d3dx9math.h"

class CMesh;

class CWorldObject {
 public:
  // Identity matrix, no mesh.
  CWorldObject();

  D3DXMATRIX m_worldMatrix;
  CMesh* m_mesh;
};
