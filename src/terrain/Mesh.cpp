// CMesh: growing the system copies and uploading them into managed buffers.
#include "terrain/Mesh.h"

#include <cstdlib>
#include <cstring>

namespace {

// Grows block (count elements of size bytes) by more elements: a fresh block
// holding the old contents first, or null with block untouched.
void* Grow(void* block, std::uint32_t count, std::uint32_t more, std::size_t size) {
  const std::size_t total = (static_cast<std::size_t>(count) + more) * size;
  void* grown = std::malloc(total == 0 ? 1 : total);
  if (!grown) return nullptr;
  if (block) {
    std::memcpy(grown, block, static_cast<std::size_t>(count) * size);
    std::free(block);
  }
  return grown;
}

constexpr float FAR_AWAY = 999999.0f;

}  // namespace

CMesh::CMesh()
    : m_vertexCount(0),
      m_vertices(nullptr),
      m_indexCount(0),
      m_indices(nullptr),
      m_vertexBuffer(nullptr),
      m_indexBuffer(nullptr) {}

CMesh::~CMesh() { ReleaseMesh(); }

void CMesh::SetVertexFormat(std::uint32_t format, std::uint8_t stride) {
  m_vertexFormat = format;
  m_vertexStride = stride;
}

std::int32_t CMesh::AddVertices(std::uint32_t count) {
  void* grown = Grow(m_vertices, m_vertexCount, count, m_vertexStride);
  if (!grown) return -1;
  m_vertices = static_cast<std::uint8_t*>(grown);
  m_vertexCount += count;
  return static_cast<std::int32_t>(m_vertexCount - count);
}

std::int32_t CMesh::AddIndices(std::uint32_t count) {
  void* grown = Grow(m_indices, m_indexCount, count, sizeof(std::uint16_t));
  if (!grown) return -1;
  m_indices = static_cast<std::uint16_t*>(grown);
  m_indexCount += count;
  return static_cast<std::int32_t>(m_indexCount - count);
}

HRESULT CMesh::BuildBuffers(IDirect3DDevice9* device, bool hardwareProcessing, bool releaseArrays) {
  if (!device) return D3DERR_INVALIDCALL;
  DWORD usage = D3DUSAGE_WRITEONLY;
  if (!hardwareProcessing) usage |= D3DUSAGE_SOFTWAREPROCESSING;

  if (m_vertexBuffer || m_indexBuffer) {
    if (m_vertexBuffer) m_vertexBuffer->Release();
    if (m_indexBuffer) m_indexBuffer->Release();
    m_vertexBuffer = nullptr;
    m_indexBuffer = nullptr;
  }

  const UINT vertexBytes = static_cast<UINT>(m_vertexStride) * m_vertexCount;
  HRESULT hr = device->CreateVertexBuffer(vertexBytes, usage, m_vertexFormat, D3DPOOL_MANAGED, &m_vertexBuffer,
                                          nullptr);
  if (hr < 0) return hr;
  void* pVertex = nullptr;
  hr = m_vertexBuffer->Lock(0, vertexBytes, &pVertex, 0);
  if (hr < 0) return hr;
  if (vertexBytes > 0 && m_vertices) std::memcpy(pVertex, m_vertices, vertexBytes);
  m_vertexBuffer->Unlock();

  const UINT indexBytes = m_indexCount * static_cast<UINT>(sizeof(std::uint16_t));
  hr = device->CreateIndexBuffer(indexBytes, usage, D3DFMT_INDEX16, D3DPOOL_MANAGED, &m_indexBuffer, nullptr);
  if (hr < 0) return hr;
  void* pIndex = nullptr;
  hr = m_indexBuffer->Lock(0, indexBytes, &pIndex, 0);
  if (hr < 0) return hr;
  if (indexBytes > 0 && m_indices) std::memcpy(pIndex, m_indices, indexBytes);
  m_indexBuffer->Unlock();

  // The box needs a position in front; other formats leave it as it was.
  const std::uint32_t position = m_vertexFormat & D3DFVF_POSITION_MASK;
  if ((position == D3DFVF_XYZ || position == D3DFVF_XYZRHW) && m_vertices) {
    m_boundsMin = D3DXVECTOR3(FAR_AWAY, FAR_AWAY, FAR_AWAY);
    m_boundsMax = D3DXVECTOR3(-FAR_AWAY, -FAR_AWAY, -FAR_AWAY);
    for (std::uint32_t i = 0; i < m_vertexCount; ++i) {
      float p[3];
      std::memcpy(p, m_vertices + static_cast<std::size_t>(i) * m_vertexStride, sizeof(p));
      if (m_boundsMin.x > p[0]) m_boundsMin.x = p[0];
      if (m_boundsMin.y > p[1]) m_boundsMin.y = p[1];
      if (m_boundsMin.z > p[2]) m_boundsMin.z = p[2];
      if (m_boundsMax.x < p[0]) m_boundsMax.x = p[0];
      if (m_boundsMax.y < p[1]) m_boundsMax.y = p[1];
      if (m_boundsMax.z < p[2]) m_boundsMax.z = p[2];
    }
  }

  if (releaseArrays) {
    std::free(m_vertices);
    std::free(m_indices);
    m_vertices = nullptr;
    m_indices = nullptr;
  }
  return D3D_OK;
}

void CMesh::ReleaseMesh() {
  std::free(m_vertices);
  std::free(m_indices);
  if (m_vertexBuffer) m_vertexBuffer->Release();
  if (m_indexBuffer) m_indexBuffer->Release();
  m_vertexCount = 0;
  m_vertices = nullptr;
  m_indexCount = 0;
  m_indices = nullptr;
  m_vertexBuffer = nullptr;
  m_indexBuffer = nullptr;
}
