// CMesh: the one container of indexed geometry. A system-memory copy of
// vertices (any stride; a position, if present, comes first as three floats)
// and 16-bit indices, grown by whole runs, and the pair of device buffers made
// from it. All members are public: drawing code reads the buffers, stride,
// format and box directly, and filling code writes into the arrays.
//
// Order of use: SetVertexFormat, AddVertices, fill, AddIndices, fill,
// BuildBuffers (normally releasing the arrays). ReleaseMesh empties it.
#pragma once

#include <cstdint>

#include "platform/d3d9/d3d9.h"
#include "platform/d3dx9/d3dx9math.h"

class CMesh {
 public:
  CMesh();
  virtual ~CMesh();

  // Comes before the first AddVertices: the arrays grow by this stride.
  void SetVertexFormat(std::uint32_t format, std::uint8_t stride);
  // Room for count more (uncleared) vertices / indices; returns the index of
  // the first new one, or -1 without memory (the mesh then stays as it was).
  std::int32_t AddVertices(std::uint32_t count);
  std::int32_t AddIndices(std::uint32_t count);
  // Device buffers (managed pool, write-only) from the arrays and the bounding
  // box of the positions; the first failing device result is returned as it is.
  HRESULT BuildBuffers(IDirect3DDevice9* device, bool hardwareProcessing, bool releaseArrays);
  // Frees the arrays, drops the buffers, zeroes counts and pointers.
  void ReleaseMesh();

  std::uint32_t m_vertexCount;
  std::uint8_t* m_vertices;
  std::uint32_t m_indexCount;
  std::uint16_t* m_indices;
  IDirect3DVertexBuffer9* m_vertexBuffer;
  IDirect3DIndexBuffer9* m_indexBuffer;
  std::uint8_t m_vertexStride;
  std::uint32_t m_vertexFormat;
  D3DXVECTOR3 m_boundsMin;
  D3DXVECTOR3 m_boundsMax;
};
