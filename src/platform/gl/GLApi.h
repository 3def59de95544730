// The OpenGL API of the back ends: OpenGL 3.3 core through libepoxy on the
// desktop, OpenGL ES 3.0 (WebGL2) in a web page. Which one a context really
// is, and what it offers, is read where the context is made (d3d9gl::Limits);
// drawing code asks that record, not the compiler. Calls that both APIs have
// are used in the form both have (glClearDepthf, glDepthRangef).
#pragma once

#ifdef __EMSCRIPTEN__
#include <GLES3/gl3.h>

// WebGL2 has no desktop-only calls and values. The constants below are their
// published values, for code that compiles on both and takes the desktop
// branch only where the context has it. glPolygonMode and glProvokingVertex
// are the page's own, through the browser's WEBGL_polygon_mode and
// WEBGL_provoking_vertex extensions (web/glue).
#define GL_BGRA 0x80E1
#define GL_POINT 0x1B00
#define GL_LINE 0x1B01
#define GL_FILL 0x1B02
#define GL_FIRST_VERTEX_CONVENTION 0x8E4D
#define GL_TEXTURE_SWIZZLE_A 0x8E45
#define GL_UNSIGNED_SHORT_1_5_5_5_REV 0x8366
#define GL_UNSIGNED_SHORT_4_4_4_4_REV 0x8365
#define GL_TEXTURE_MAX_ANISOTROPY 0x84FE
#define GL_MAX_TEXTURE_MAX_ANISOTROPY 0x84FF
#define GL_COMPRESSED_RGBA_S3TC_DXT1_EXT 0x83F1
#define GL_COMPRESSED_RGBA_S3TC_DXT3_EXT 0x83F2
#define GL_COMPRESSED_RGBA_S3TC_DXT5_EXT 0x83F3
extern "C" {
void glPolygonMode(GLenum face, GLenum mode);  // does nothing without the extension
void glProvokingVertex(GLenum convention);
GLenum karvo_gl_polygon_mode(void);  // the mode glPolygonMode last set, GL_FILL at first
}
// Never reached in a page (no ES context reads texels back this way), but
// named by desktop branches.
extern "C" void glGetTexImage(GLenum target, GLint level, GLenum format, GLenum type, void* pixels);
namespace karvo_gl {
inline constexpr bool kDesktopApi = false;
inline bool IsEs() {
  return true;
}
inline GLenum PolygonMode() {
  return karvo_gl_polygon_mode();
}
}  // namespace karvo_gl
#else
#include <epoxy/gl.h>

#include <cstring>
namespace karvo_gl {
inline constexpr bool kDesktopApi = true;
// The current context is OpenGL ES (asked for on the desktop to test the
// page's path), which has no polygon modes.
inline bool IsEs() {
  const char* version = reinterpret_cast<const char*>(glGetString(GL_VERSION));
  return version != nullptr && std::strncmp(version, "OpenGL ES", 9) == 0;
}
inline GLenum PolygonMode() {
  if (IsEs()) return GL_FILL;
  GLint mode[2] = {GL_FILL, GL_FILL};
  glGetIntegerv(GL_POLYGON_MODE, mode);
  return static_cast<GLenum>(mode[0]);
}
}  // namespace karvo_gl
#endif

namespace karvo_gl {
// Sets the polygon mode where the context has one; the overlay draws filled
// over a scene drawn as lines, and puts the scene's mode back.
inline void SetPolygonMode(GLenum mode) {
  if constexpr (kDesktopApi) {
    if (IsEs()) return;
  }
  glPolygonMode(GL_FRONT_AND_BACK, mode);
}
}  // namespace karvo_gl
