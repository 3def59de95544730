// The overlay's GL renderer: one program, one vertex array with a streaming
// vertex and index buffer, the font atlas as one RGBA texture. Every state it
// changes is read first and put back after, as the device caches its own.
#include "platform/win32/overlay/Win32OverlayRenderer.h"

#include <SDL.h>
#include <imgui.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>

#include "platform/gl/GLApi.h"

namespace win32::overlay {

namespace {

const char* const kVertexShader = R"(
layout(location = 0) in vec2 position;
layout(location = 1) in vec2 uv;
layout(location = 2) in vec4 color;
uniform mat4 projection;
out vec2 fragUv;
out vec4 fragColor;
void main() {
  fragUv = uv;
  fragColor = color;
  gl_Position = projection * vec4(position, 0.0, 1.0);
}
)";

const char* const kFragmentShader = R"(
in vec2 fragUv;
in vec4 fragColor;
uniform sampler2D atlas;
out vec4 outColor;
void main() { outColor = fragColor * texture(atlas, fragUv); }
)";

GLuint Compile(GLenum kind, const char* body) {
  // The same GLSL under the version line of the context's API.
  const std::string source =
      std::string(karvo_gl::IsEs() ? "#version 300 es\nprecision mediump float;\n"
                                   : "#version 330 core\n") +
      body;
  const char* text = source.c_str();
  GLuint shader = glCreateShader(kind);
  glShaderSource(shader, 1, &text, nullptr);
  glCompileShader(shader);
  GLint ok = GL_FALSE;
  glGetShaderiv(shader, GL_COMPILE_STATUS, &ok);
  if (!ok) {
    char log[512] = {};
    glGetShaderInfoLog(shader, sizeof log, nullptr, log);
    std::fprintf(stderr, "win32: overlay shader: %s\n", log);
  }
  return shader;
}

// The GL state the overlay changes, read before and put back after drawing.
struct SavedState {
  GLint program, vao, arrayBuffer, texture, activeTexture, sampler, framebuffer;
  GLint viewport[4], scissor[4];
  GLenum polygonMode;
  GLint blendSrcRgb, blendDstRgb, blendSrcAlpha, blendDstAlpha, blendEqRgb, blendEqAlpha;
  GLboolean blend, cull, depth, stencil, scissorTest, colorMask[4];

  void Save() {
    glGetIntegerv(GL_ACTIVE_TEXTURE, &activeTexture);
    glActiveTexture(GL_TEXTURE0);
    glGetIntegerv(GL_CURRENT_PROGRAM, &program);
    glGetIntegerv(GL_VERTEX_ARRAY_BINDING, &vao);
    glGetIntegerv(GL_ARRAY_BUFFER_BINDING, &arrayBuffer);
    glGetIntegerv(GL_TEXTURE_BINDING_2D, &texture);
    glGetIntegerv(GL_SAMPLER_BINDING, &sampler);
    glGetIntegerv(GL_DRAW_FRAMEBUFFER_BINDING, &framebuffer);
    glGetIntegerv(GL_VIEWPORT, viewport);
    glGetIntegerv(GL_SCISSOR_BOX, scissor);
    polygonMode = karvo_gl::PolygonMode();
    glGetIntegerv(GL_BLEND_SRC_RGB, &blendSrcRgb);
    glGetIntegerv(GL_BLEND_DST_RGB, &blendDstRgb);
    glGetIntegerv(GL_BLEND_SRC_ALPHA, &blendSrcAlpha);
    glGetIntegerv(GL_BLEND_DST_ALPHA, &blendDstAlpha);
    glGetIntegerv(GL_BLEND_EQUATION_RGB, &blendEqRgb);
    glGetIntegerv(GL_BLEND_EQUATION_ALPHA, &blendEqAlpha);
    glGetBooleanv(GL_COLOR_WRITEMASK, colorMask);
    blend = glIsEnabled(GL_BLEND);
    cull = glIsEnabled(GL_CULL_FACE);
    depth = glIsEnabled(GL_DEPTH_TEST);
    stencil = glIsEnabled(GL_STENCIL_TEST);
    scissorTest = glIsEnabled(GL_SCISSOR_TEST);
  }

  static void Enable(GLenum cap, GLboolean on) {
    if (on) {
      glEnable(cap);
    } else {
      glDisable(cap);
    }
  }

  void Restore() const {
    glUseProgram(static_cast<GLuint>(program));
    glBindTexture(GL_TEXTURE_2D, static_cast<GLuint>(texture));
    glBindSampler(0, static_cast<GLuint>(sampler));
    glActiveTexture(static_cast<GLenum>(activeTexture));
    glBindVertexArray(static_cast<GLuint>(vao));
    glBindBuffer(GL_ARRAY_BUFFER, static_cast<GLuint>(arrayBuffer));
    glBindFramebuffer(GL_DRAW_FRAMEBUFFER, static_cast<GLuint>(framebuffer));
    glBlendEquationSeparate(static_cast<GLenum>(blendEqRgb), static_cast<GLenum>(blendEqAlpha));
    glBlendFuncSeparate(static_cast<GLenum>(blendSrcRgb), static_cast<GLenum>(blendDstRgb),
                        static_cast<GLenum>(blendSrcAlpha), static_cast<GLenum>(blendDstAlpha));
    glColorMask(colorMask[0], colorMask[1], colorMask[2], colorMask[3]);
    Enable(GL_BLEND, blend);
    Enable(GL_CULL_FACE, cull);
    Enable(GL_DEPTH_TEST, depth);
    Enable(GL_STENCIL_TEST, stencil);
    Enable(GL_SCISSOR_TEST, scissorTest);
    karvo_gl::SetPolygonMode(polygonMode);
    glViewport(viewport[0], viewport[1], viewport[2], viewport[3]);
    glScissor(scissor[0], scissor[1], scissor[2], scissor[3]);
  }
};

}  // namespace

bool OverlayRenderer::Create() {
  GLuint vs = Compile(GL_VERTEX_SHADER, kVertexShader);
  GLuint fs = Compile(GL_FRAGMENT_SHADER, kFragmentShader);
  m_program = glCreateProgram();
  glAttachShader(m_program, vs);
  glAttachShader(m_program, fs);
  glLinkProgram(m_program);
  glDeleteShader(vs);
  glDeleteShader(fs);
  GLint linked = GL_FALSE;
  glGetProgramiv(m_program, GL_LINK_STATUS, &linked);
  if (!linked) {
    glDeleteProgram(m_program);
    m_program = 0;
    return false;
  }
  m_projection = glGetUniformLocation(m_program, "projection");
  m_texture = glGetUniformLocation(m_program, "atlas");

  glGenVertexArrays(1, &m_vao);
  glGenBuffers(1, &m_vbo);
  glGenBuffers(1, &m_ibo);
  glBindVertexArray(m_vao);
  glBindBuffer(GL_ARRAY_BUFFER, m_vbo);
  glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, m_ibo);
  const auto stride = static_cast<GLsizei>(sizeof(ImDrawVert));
  glEnableVertexAttribArray(0);
  glEnableVertexAttribArray(1);
  glEnableVertexAttribArray(2);
  glVertexAttribPointer(0, 2, GL_FLOAT, GL_FALSE, stride,
                        reinterpret_cast<void*>(offsetof(ImDrawVert, pos)));
  glVertexAttribPointer(1, 2, GL_FLOAT, GL_FALSE, stride,
                        reinterpret_cast<void*>(offsetof(ImDrawVert, uv)));
  glVertexAttribPointer(2, 4, GL_UNSIGNED_BYTE, GL_TRUE, stride,
                        reinterpret_cast<void*>(offsetof(ImDrawVert, col)));

  unsigned char* pixels = nullptr;
  int width = 0;
  int height = 0;
  ImGuiIO& io = ImGui::GetIO();
  io.Fonts->GetTexDataAsRGBA32(&pixels, &width, &height);
  glGenTextures(1, &m_font);
  glBindTexture(GL_TEXTURE_2D, m_font);
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAX_LEVEL, 0);
  glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
  glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, width, height, 0, GL_RGBA, GL_UNSIGNED_BYTE, pixels);
  io.Fonts->SetTexID(reinterpret_cast<ImTextureID>(static_cast<std::uintptr_t>(m_font)));
  m_context = SDL_GL_GetCurrentContext();
  return true;
}

void OverlayRenderer::Forget() {
  m_context = nullptr;
  m_program = m_vao = m_vbo = m_ibo = m_font = 0;
}

void OverlayRenderer::Release() {
  if (!m_context || m_context != SDL_GL_GetCurrentContext()) return;
  glDeleteProgram(m_program);
  glDeleteVertexArrays(1, &m_vao);
  glDeleteBuffers(1, &m_vbo);
  glDeleteBuffers(1, &m_ibo);
  glDeleteTextures(1, &m_font);
  Forget();
}

void OverlayRenderer::Render(const ImDrawData& data, int drawableWidth, int drawableHeight) {
  void* context = SDL_GL_GetCurrentContext();
  if (!context || drawableWidth <= 0 || drawableHeight <= 0 || data.CmdListsCount == 0) return;
  SavedState saved;
  saved.Save();
  // Names made in a context that is gone are not ours to delete here.
  if (m_context != context) Forget();
  if (!m_program && !Create()) {
    saved.Restore();
    return;
  }

  glBindFramebuffer(GL_DRAW_FRAMEBUFFER, 0);
  glViewport(0, 0, drawableWidth, drawableHeight);
  glEnable(GL_BLEND);
  glBlendEquation(GL_FUNC_ADD);
  glBlendFuncSeparate(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA, GL_ONE, GL_ONE_MINUS_SRC_ALPHA);
  glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
  glDisable(GL_CULL_FACE);
  glDisable(GL_DEPTH_TEST);
  glDisable(GL_STENCIL_TEST);
  glEnable(GL_SCISSOR_TEST);
  karvo_gl::SetPolygonMode(GL_FILL);  // the scene may be drawn as lines
  glUseProgram(m_program);
  glUniform1i(m_texture, 0);
  glBindSampler(0, 0);  // the device's sampler objects would filter the atlas

  const ImVec2 origin = data.DisplayPos;
  const ImVec2 size = data.DisplaySize;
  const ImVec2 scale = data.FramebufferScale;
  const float l = origin.x;
  const float r = origin.x + size.x;
  const float t = origin.y;
  const float b = origin.y + size.y;
  const float projection[16] = {
      2.0f / (r - l),    0, 0,   0, 0, 2.0f / (t - b), 0, 0, 0, 0, -1.0f, 0, (r + l) / (l - r),
      (t + b) / (b - t), 0, 1.0f};
  glUniformMatrix4fv(m_projection, 1, GL_FALSE, projection);
  glBindVertexArray(m_vao);
  glBindBuffer(GL_ARRAY_BUFFER, m_vbo);
  glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, m_ibo);

  for (int n = 0; n < data.CmdListsCount; ++n) {
    const ImDrawList& list = *data.CmdLists[n];
    glBufferData(GL_ARRAY_BUFFER, static_cast<GLsizeiptr>(list.VtxBuffer.Size) * sizeof(ImDrawVert),
                 list.VtxBuffer.Data, GL_STREAM_DRAW);
    glBufferData(GL_ELEMENT_ARRAY_BUFFER,
                 static_cast<GLsizeiptr>(list.IdxBuffer.Size) * sizeof(ImDrawIdx),
                 list.IdxBuffer.Data, GL_STREAM_DRAW);
    for (const ImDrawCmd& cmd : list.CmdBuffer) {
      if (cmd.UserCallback) continue;  // the overlay adds none
      const float x1 = (cmd.ClipRect.x - origin.x) * scale.x;
      const float y1 = (cmd.ClipRect.y - origin.y) * scale.y;
      const float x2 = (cmd.ClipRect.z - origin.x) * scale.x;
      const float y2 = (cmd.ClipRect.w - origin.y) * scale.y;
      if (x2 <= x1 || y2 <= y1) continue;
      glScissor(static_cast<GLint>(x1), static_cast<GLint>(drawableHeight - y2),
                static_cast<GLsizei>(x2 - x1), static_cast<GLsizei>(y2 - y1));
      glBindTexture(GL_TEXTURE_2D,
                    static_cast<GLuint>(reinterpret_cast<std::uintptr_t>(cmd.GetTexID())));
      // No vertex offsets (the overlay's lists stay far below 64k vertices),
      // so no base vertex, which OpenGL ES lacks.
      glDrawElements(GL_TRIANGLES, static_cast<GLsizei>(cmd.ElemCount),
                     sizeof(ImDrawIdx) == 2 ? GL_UNSIGNED_SHORT : GL_UNSIGNED_INT,
                     reinterpret_cast<void*>(cmd.IdxOffset * sizeof(ImDrawIdx)));
    }
  }
  // The element buffer binding belongs to the vertex array; ours goes away
  // with the restore of the device's.
  saved.Restore();
}

}  // namespace win32::overlay
