// The limit of the UP-quad benchmark: quads sent as one glDrawElements with a
// minimal program (transform, one texture, texture alpha times diffuse alpha),
// on whatever GL context is current. The vertex data are uploaded anew in each
// frame, as UP vertices are; the indices are fixed. The GL bindings it touches
// are put back after each call, since the device on the same context
// remembers what it bound.
#pragma once

#include <epoxy/gl.h>

#include <cstdint>
#include <vector>

namespace bench {

// The world's own vertex layout, 0x142: position, colour word, one pair.
struct QuadVertex {
  float x, y, z;
  std::uint32_t diffuse;
  float u, v;
};

class PlainGLQuads {
 public:
  // Builds the program, buffers and a 16x16 texture for quads of four
  // vertices each (fan order), drawn into a width x height target. The
  // vertices must outlive this object. False when GL refuses any of it.
  bool Init(const std::vector<QuadVertex>& vertices, int width, int height);
  // Uploads the vertices and draws every quad in one call.
  void Draw();

 private:
  struct Saved {
    GLint program, vao, arrayBuffer, activeTexture, texture0, sampler0, blend, src, dst, cull;
    GLint viewport[4];
  };
  static Saved Save();
  static void Restore(const Saved& s);

  const std::vector<QuadVertex>* vertices_ = nullptr;
  GLuint program_ = 0, vao_ = 0, vbo_ = 0, ibo_ = 0, texture_ = 0;
  int width_ = 0, height_ = 0;
};

}  // namespace bench
