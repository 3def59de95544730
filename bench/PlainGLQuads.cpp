// The limit of the UP-quad benchmark: one plain GL draw of all quads.
#include "PlainGLQuads.h"

#include <cstddef>

namespace bench {

namespace {

const char* kVertexShader =
    "#version 330 core\n"
    "layout(location = 0) in vec3 a_position;\n"
    "layout(location = 1) in vec4 a_color;\n"
    "layout(location = 2) in vec2 a_tex;\n"
    "uniform mat4 u_wvp;\n"
    "out vec4 v_color;\nout vec2 v_tex;\n"
    "void main() { gl_Position = u_wvp * vec4(a_position, 1.0); v_color = a_color; v_tex = a_tex; "
    "}\n";
const char* kFragmentShader =
    "#version 330 core\n"
    "uniform sampler2D u_texture;\n"
    "in vec4 v_color;\nin vec2 v_tex;\nout vec4 o_color;\n"
    "void main() { vec4 t = texture(u_texture, v_tex); o_color = vec4(t.rgb, t.a * v_color.a); }\n";

GLuint Compile(GLenum type, const char* text) {
  GLuint s = glCreateShader(type);
  glShaderSource(s, 1, &text, nullptr);
  glCompileShader(s);
  GLint ok = 0;
  glGetShaderiv(s, GL_COMPILE_STATUS, &ok);
  if (!ok) {
    glDeleteShader(s);
    return 0;
  }
  return s;
}

}  // namespace

bool PlainGLQuads::Init(const std::vector<QuadVertex>& vertices, int width, int height) {
  vertices_ = &vertices;
  width_ = width;
  height_ = height;
  GLuint vs = Compile(GL_VERTEX_SHADER, kVertexShader),
         fs = Compile(GL_FRAGMENT_SHADER, kFragmentShader);
  if (!vs || !fs) return false;
  program_ = glCreateProgram();
  glAttachShader(program_, vs);
  glAttachShader(program_, fs);
  glLinkProgram(program_);
  glDeleteShader(vs);
  glDeleteShader(fs);
  GLint ok = 0;
  glGetProgramiv(program_, GL_LINK_STATUS, &ok);
  if (!ok) return false;
  Saved saved = Save();
  glUseProgram(program_);
  const float identity[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
  glUniformMatrix4fv(glGetUniformLocation(program_, "u_wvp"), 1, GL_FALSE, identity);
  glUniform1i(glGetUniformLocation(program_, "u_texture"), 0);
  glGenVertexArrays(1, &vao_);
  glBindVertexArray(vao_);
  glGenBuffers(1, &vbo_);
  glGenBuffers(1, &ibo_);
  std::vector<std::uint32_t> indices;
  for (std::uint32_t q = 0; q < vertices.size() / 4; ++q)
    for (std::uint32_t k : {0u, 1u, 2u, 0u, 2u, 3u}) indices.push_back(4 * q + k);
  glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, ibo_);
  glBufferData(GL_ELEMENT_ARRAY_BUFFER, GLsizeiptr(indices.size() * 4), indices.data(),
               GL_STATIC_DRAW);
  glBindBuffer(GL_ARRAY_BUFFER, vbo_);
  glBufferData(GL_ARRAY_BUFFER, GLsizeiptr(vertices.size() * sizeof(QuadVertex)), nullptr,
               GL_STREAM_DRAW);
  const GLsizei stride = sizeof(QuadVertex);
  glEnableVertexAttribArray(0);
  glVertexAttribPointer(0, 3, GL_FLOAT, GL_FALSE, stride,
                        reinterpret_cast<void*>(offsetof(QuadVertex, x)));
  glEnableVertexAttribArray(1);
  glVertexAttribPointer(1, GL_BGRA, GL_UNSIGNED_BYTE, GL_TRUE, stride,
                        reinterpret_cast<void*>(offsetof(QuadVertex, diffuse)));
  glEnableVertexAttribArray(2);
  glVertexAttribPointer(2, 2, GL_FLOAT, GL_FALSE, stride,
                        reinterpret_cast<void*>(offsetof(QuadVertex, u)));
  glGenTextures(1, &texture_);
  glBindTexture(GL_TEXTURE_2D, texture_);
  std::vector<std::uint32_t> texels(16 * 16, 0xFF40A040u);
  glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, 16, 16, 0, GL_BGRA, GL_UNSIGNED_BYTE, texels.data());
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
  Restore(saved);
  return glGetError() == GL_NO_ERROR;
}

void PlainGLQuads::Draw() {
  Saved saved = Save();
  glUseProgram(program_);
  glBindVertexArray(vao_);
  glActiveTexture(GL_TEXTURE0);
  glBindTexture(GL_TEXTURE_2D, texture_);
  glBindSampler(0, 0);
  glViewport(0, 0, width_, height_);
  glEnable(GL_BLEND);
  glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
  glDisable(GL_CULL_FACE);
  std::size_t bytes = vertices_->size() * sizeof(QuadVertex);
  glBindBuffer(GL_ARRAY_BUFFER, vbo_);
  glBufferSubData(GL_ARRAY_BUFFER, 0, GLsizeiptr(bytes), vertices_->data());
  glDrawElements(GL_TRIANGLES, GLsizei(vertices_->size() / 4 * 6), GL_UNSIGNED_INT, nullptr);
  Restore(saved);
}

PlainGLQuads::Saved PlainGLQuads::Save() {
  Saved s{};
  glGetIntegerv(GL_CURRENT_PROGRAM, &s.program);
  glGetIntegerv(GL_VERTEX_ARRAY_BINDING, &s.vao);
  glGetIntegerv(GL_ARRAY_BUFFER_BINDING, &s.arrayBuffer);
  glGetIntegerv(GL_ACTIVE_TEXTURE, &s.activeTexture);
  glActiveTexture(GL_TEXTURE0);
  glGetIntegerv(GL_TEXTURE_BINDING_2D, &s.texture0);
  glGetIntegerv(GL_SAMPLER_BINDING, &s.sampler0);
  s.blend = glIsEnabled(GL_BLEND);
  s.cull = glIsEnabled(GL_CULL_FACE);
  glGetIntegerv(GL_BLEND_SRC_RGB, &s.src);
  glGetIntegerv(GL_BLEND_DST_RGB, &s.dst);
  glGetIntegerv(GL_VIEWPORT, s.viewport);
  return s;
}

void PlainGLQuads::Restore(const Saved& s) {
  glUseProgram(GLuint(s.program));
  glBindVertexArray(GLuint(s.vao));
  glBindBuffer(GL_ARRAY_BUFFER, GLuint(s.arrayBuffer));
  glActiveTexture(GL_TEXTURE0);
  glBindTexture(GL_TEXTURE_2D, GLuint(s.texture0));
  glBindSampler(0, GLuint(s.sampler0));
  glActiveTexture(GLenum(s.activeTexture));
  s.blend ? glEnable(GL_BLEND) : glDisable(GL_BLEND);
  s.cull ? glEnable(GL_CULL_FACE) : glDisable(GL_CULL_FACE);
  glBlendFunc(GLenum(s.src), GLenum(s.dst));
  glViewport(s.viewport[0], s.viewport[1], s.viewport[2], s.viewport[3]);
}

}  // namespace bench
