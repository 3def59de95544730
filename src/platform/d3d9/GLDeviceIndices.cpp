// Draws whose indices the back end writes itself: wireframe as line lists
// where the GL has no polygon mode, and indexed draws whose base vertex
// reaches below the start of the vertex buffer.
#include <cstring>

#include "platform/d3d9/GLDevice.h"

namespace d3d9gl {

namespace {

struct ScreenPoint {
  float x, y;
  bool known;  // false behind the eye, where the winding cannot be told
};

}  // namespace

bool GLDevice::DrawsEdges(D3DPRIMITIVETYPE type) const {
  return !Limits().polygonMode && state_.rs[D3DRS_FILLMODE] == D3DFILL_WIREFRAME &&
         (type == D3DPT_TRIANGLELIST || type == D3DPT_TRIANGLESTRIP || type == D3DPT_TRIANGLEFAN);
}

void GLDevice::DrawEdges(D3DPRIMITIVETYPE type, UINT primCount,
                         const std::vector<std::uint32_t>& numbers, const std::uint8_t* vertices,
                         UINT stride, bool rhw) {
  const D3DMATRIX wvp = WorldViewProjection();
  // Where a vertex lands on screen, y down; pre-transformed ones are there.
  auto screen = [&](std::uint32_t v) {
    float p[3];
    std::memcpy(p, vertices + std::size_t(v) * stride, sizeof p);
    if (rhw) return ScreenPoint{p[0], p[1], true};
    const auto& m = wvp.m;
    float x = p[0] * m[0][0] + p[1] * m[1][0] + p[2] * m[2][0] + m[3][0];
    float y = p[0] * m[0][1] + p[1] * m[1][1] + p[2] * m[2][1] + m[3][1];
    float w = p[0] * m[0][3] + p[1] * m[1][3] + p[2] * m[2][3] + m[3][3];
    return w > 0.0f ? ScreenPoint{x / w, -y / w, true} : ScreenPoint{0.0f, 0.0f, false};
  };
  const DWORD cull = state_.rs[D3DRS_CULLMODE];
  std::vector<std::uint32_t> lines;
  lines.reserve(std::size_t(primCount) * 6);
  for (UINT i = 0; i < primCount; ++i) {
    std::uint32_t c[3];
    TriangleCorners(type, i, c);
    const std::uint32_t a = numbers[c[0]], b = numbers[c[1]], d = numbers[c[2]];
    if (cull == D3DCULL_CW || cull == D3DCULL_CCW) {
      const ScreenPoint pa = screen(a), pb = screen(b), pd = screen(d);
      // Positive: clockwise on a screen whose y runs down.
      const float turn = (pb.x - pa.x) * (pd.y - pa.y) - (pb.y - pa.y) * (pd.x - pa.x);
      if (pa.known && pb.known && pd.known && (cull == D3DCULL_CCW ? turn < 0.0f : turn > 0.0f))
        continue;
    }
    lines.insert(lines.end(), {a, b, b, d, d, a});
  }
  if (!lines.empty()) DrawNumbered(GL_LINES, lines);
}

void GLDevice::DrawNumbered(GLenum mode, const std::vector<std::uint32_t>& numbers) {
  const std::size_t at =
      StreamWrite(streamIb_, streamIbOffset_, streamIbCapacity_, GL_ELEMENT_ARRAY_BUFFER,
                  numbers.data(), numbers.size() * 4, 4);
  glDrawElements(mode, GLsizei(numbers.size()), GL_UNSIGNED_INT, reinterpret_cast<const void*>(at));
  ++stats_.glDrawCalls;
}

}  // namespace d3d9gl
