// CWorldObject: identity matrix and no mesh to begin with.
#include "terrain/WorldObject.h"

CWorldObject::CWorldObject() : m_mesh(nullptr) { D3DXMatrixIdentity(&m_worldMatrix); }
