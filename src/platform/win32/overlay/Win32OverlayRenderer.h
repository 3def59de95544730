// Draws Dear ImGui's draw lists with OpenGL 3.3 core into the default
// framebuffer of the current context. Our own small renderer rather than the
// sample back end: it must survive the device's context being replaced (a
// device change makes a new one) without deleting names in the wrong context,
// and it must leave the device's GL state exactly as it found it.
#pragma once

struct ImDrawData;

namespace win32::overlay {

class OverlayRenderer {
 public:
  // Draws the frame into a drawable of the given size in pixels. Makes its
  // GL objects on first use in a context, and anew in a new context.
  void Render(const ImDrawData& data, int drawableWidth, int drawableHeight);
  // Frees the GL objects when they belong to the current context.
  void Release();

 private:
  bool Create();
  void Forget();

  void* m_context = nullptr;  // the SDL GL context the names below live in
  unsigned m_program = 0;
  unsigned m_vao = 0;
  unsigned m_vbo = 0;
  unsigned m_ibo = 0;
  unsigned m_font = 0;
  int m_projection = -1;
  int m_texture = -1;
};

}  // namespace win32::overlay
