// CMesh: the upload into managed write-only buffers and the bounding box
// rules.
#include <gtest/gtest.h>

#include <cstring>

#include "support/RecordingDevice.h"
#include "terrain/Mesh.h"
#include "terrain/Vertex.h"

namespace {

using karvo_test::AsFake;
using karvo_test::RecordingDevice;

// A mesh of the given vertices (format 0x142) and indices 0..n-1.
void Fill(CMesh& mesh, std::initializer_list<CVertex> vertices) {
  mesh.SetVertexFormat(CVertex::FVF, sizeof(CVertex));
  ASSERT_EQ(mesh.AddVertices(static_cast<std::uint32_t>(vertices.size())), 0);
  std::memcpy(mesh.m_vertices, vertices.begin(), vertices.size() * sizeof(CVertex));
  ASSERT_EQ(mesh.AddIndices(static_cast<std::uint32_t>(vertices.size())), 0);
  for (std::uint16_t i = 0; i < vertices.size(); ++i) mesh.m_indices[i] = i;
}

TEST(Mesh, BuildUploadsComputesTheBoxFromThePositionsAndReleasesTheArrays) {
  RecordingDevice device;
  CMesh mesh;
  const CVertex vertex1(-4, 5, 0.5f, 0);
  Fill(mesh, {CVertex(1, -2, 3, 0), vertex1, CVertex(2, 0, -6, 0)});
  ASSERT_EQ(mesh.BuildBuffers(&device, false, true), D3D_OK);
  EXPECT_TRUE(mesh.m_vertices == nullptr && mesh.m_indices == nullptr);
  EXPECT_EQ(mesh.m_boundsMin, D3DXVECTOR3(-4, -2, -6));
  EXPECT_EQ(mesh.m_boundsMax, D3DXVECTOR3(2, 5, 3));
  auto* vb = AsFake(mesh.m_vertexBuffer);
  EXPECT_EQ(vb->Pool(), D3DPOOL_MANAGED);
  EXPECT_EQ(vb->Usage(), DWORD(D3DUSAGE_WRITEONLY | D3DUSAGE_SOFTWAREPROCESSING));
  EXPECT_EQ(std::memcmp(vb->Bytes().data() + sizeof(CVertex), &vertex1, sizeof(CVertex)), 0);

  // A layout without a position at its front leaves the box alone.
  CMesh noPosition;
  noPosition.m_boundsMax = D3DXVECTOR3(1, 1, 1);
  Fill(noPosition, {CVertex(50, 50, 50, 0)});
  noPosition.SetVertexFormat(0x100 | D3DFVF_DIFFUSE, sizeof(CVertex));
  ASSERT_EQ(noPosition.BuildBuffers(&device, true, true), D3D_OK);
  EXPECT_EQ(noPosition.m_boundsMax, D3DXVECTOR3(1, 1, 1));
}

}  // namespace
