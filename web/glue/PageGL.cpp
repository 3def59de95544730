// The desktop GL calls the GL back end makes that WebGL2 offers only as
// extensions: polygon modes (WEBGL_polygon_mode) and the provoking vertex
// (WEBGL_provoking_vertex). Where the browser lacks one, the call does
// nothing, and the back end, which reads the same extension list, does not
// rely on it: wireframe is then drawn as lines.
#include <GLES3/gl3.h>
#include <emscripten.h>

// clang-format off
EM_JS(void, glPolygonMode, (GLenum face, GLenum mode), {
  var ext = GLctx.getExtension('WEBGL_polygon_mode');
  if (ext) ext.polygonModeWEBGL(face, mode);
  Module.karvoPolygonMode = mode;
});

EM_JS(GLenum, karvo_gl_polygon_mode, (), {
  return Module.karvoPolygonMode || 0x1B02;  // GL_FILL until set
});

EM_JS(void, glProvokingVertex, (GLenum convention), {
  var ext = GLctx.getExtension('WEBGL_provoking_vertex');
  if (ext) ext.provokingVertexWEBGL(convention);
});
// clang-format on
