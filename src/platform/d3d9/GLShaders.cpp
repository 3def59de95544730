// Generated GLSL for the fixed-function pipeline: transforms (or pre-
// transformed screen vertices), the texture stage cascade with the platform's
// clamping, and the per-vertex texture choice of merged draws.
#include "platform/d3d9/GLShaders.h"

#include <string>
#include <vector>

#include "platform/d3d9/D3D9GLBackend.h"

namespace d3d9gl {

namespace {

bool UsesArg2(DWORD op) {
  return op != D3DTOP_SELECTARG1 && op != D3DTOP_DISABLE;
}
bool UsesArg1(DWORD op) {
  return op != D3DTOP_SELECTARG2 && op != D3DTOP_DISABLE;
}
bool IsKnownOp(DWORD op) {
  return op >= D3DTOP_DISABLE && op <= D3DTOP_SUBTRACT;
}

// Only the argument source is kept; modifier bits are not part of this layer.
std::uint8_t Arg(DWORD a) {
  DWORD src = a & D3DTA_SELECTMASK;
  return std::uint8_t(src <= D3DTA_TEXTURE ? src : D3DTA_CURRENT);
}

std::string ArgExpr(std::uint8_t arg, int stage) {
  switch (arg) {
    case D3DTA_DIFFUSE:
      return "v_color";
    case D3DTA_TEXTURE:
      return "t" + std::to_string(stage);
    default:
      return "cur";
  }
}

// One colour or alpha operation on two values of the same type.
std::string OpExpr(std::uint8_t op, const std::string& a1, const std::string& a2) {
  switch (op) {
    case D3DTOP_SELECTARG1:
      return a1;
    case D3DTOP_SELECTARG2:
      return a2;
    case D3DTOP_MODULATE:
      return a1 + " * " + a2;
    case D3DTOP_MODULATE2X:
      return "2.0 * " + a1 + " * " + a2;
    case D3DTOP_MODULATE4X:
      return "4.0 * " + a1 + " * " + a2;
    case D3DTOP_ADD:
      return a1 + " + " + a2;
    case D3DTOP_ADDSIGNED:
      return a1 + " + " + a2 + " - 0.5";
    case D3DTOP_ADDSIGNED2X:
      return "2.0 * (" + a1 + " + " + a2 + " - 0.5)";
    case D3DTOP_SUBTRACT:
      return a1 + " - " + a2;
    default:
      return a1;
  }
}

// The version line, and the default precisions that GLSL ES asks for.
std::string Header(const ShaderKey& key) {
  return key.es ? "#version 300 es\nprecision highp float;\nprecision highp int;\n"
                : "#version 330 core\n";
}

GLuint Compile(GLenum type, const std::string& source) {
  GLuint s = glCreateShader(type);
  const char* text = source.c_str();
  glShaderSource(s, 1, &text, nullptr);
  glCompileShader(s);
  GLint ok = 0;
  glGetShaderiv(s, GL_COMPILE_STATUS, &ok);
  if (!ok) {
    char log[2048] = {};
    glGetShaderInfoLog(s, sizeof log, nullptr, log);
    Log(LogLevel::Error, "ShaderCache::Get", "shader does not compile: %s\n%s", log, text);
    glDeleteShader(s);
    return 0;
  }
  return s;
}

}  // namespace

std::uint64_t ShaderKey::Pack() const {
  std::uint64_t k = 0;
  for (const StageKey& s : stages) {
    k = (k << 4) | s.colorOp;
    k = (k << 2) | s.colorArg1;
    k = (k << 2) | s.colorArg2;
    k = (k << 4) | s.alphaOp;
    k = (k << 2) | s.alphaArg1;
    k = (k << 2) | s.alphaArg2;
    k = (k << 3) | (s.texCoord & 7);
    k = (k << 1) | s.hasTexture;
  }
  k = (k << 1) | pretransformed;
  k = (k << 2) | (texCoordSets & 3);
  k = (k << 4) | (slots & 15);
  k = (k << 1) | indexedSlots;
  k = (k << 1) | flat;
  k = (k << 1) | es;
  return k;
}

ShaderKey MakeShaderKey(const StageState (&stages)[kShaderStages], DWORD fvf, int stage0Textures,
                        bool flat, bool indexSlots) {
  ShaderKey key;
  key.pretransformed = (fvf & D3DFVF_POSITION_MASK) == D3DFVF_XYZRHW;
  DWORD sets = (fvf & D3DFVF_TEXCOUNT_MASK) >> D3DFVF_TEXCOUNT_SHIFT;
  key.texCoordSets = std::uint8_t(sets > 2 ? 2 : sets);
  key.flat = flat;
  for (int i = 0; i < kShaderStages; ++i) {
    const StageState& s = stages[i];
    if (s.colorOp == D3DTOP_DISABLE || !IsKnownOp(s.colorOp)) break;
    bool needsTexture = (UsesArg1(s.colorOp) && Arg(s.colorArg1) == D3DTA_TEXTURE) ||
                        (UsesArg2(s.colorOp) && Arg(s.colorArg2) == D3DTA_TEXTURE);
    // A stage that would colour from a missing texture is skipped with all
    // that follow: the result stays the previous stage's (diffuse at stage 0).
    if (needsTexture && !s.hasTexture) break;
    StageKey& k = key.stages[i];
    k.colorOp = std::uint8_t(s.colorOp);
    k.colorArg1 = UsesArg1(s.colorOp) ? Arg(s.colorArg1) : 0;
    k.colorArg2 = UsesArg2(s.colorOp) ? Arg(s.colorArg2) : 0;
    // An alpha op of DISABLE on a working stage passes the alpha through.
    k.alphaOp = IsKnownOp(s.alphaOp) && s.alphaOp != D3DTOP_DISABLE ? std::uint8_t(s.alphaOp) : 0;
    k.alphaArg1 = k.alphaOp && UsesArg1(k.alphaOp) ? Arg(s.alphaArg1) : 0;
    k.alphaArg2 = k.alphaOp && UsesArg2(k.alphaOp) ? Arg(s.alphaArg2) : 0;
    bool readsTexture = k.colorArg1 == D3DTA_TEXTURE || k.colorArg2 == D3DTA_TEXTURE ||
                        k.alphaArg1 == D3DTA_TEXTURE || k.alphaArg2 == D3DTA_TEXTURE;
    k.hasTexture = readsTexture && s.hasTexture;
    k.texCoord = std::uint8_t(s.texCoordIndex & 7);
    if (i == 0 && k.hasTexture && stage0Textures > 1) {
      key.slots = std::uint8_t(stage0Textures);
      key.indexedSlots = indexSlots;
    }
  }
  return key;
}

std::string VertexShaderSource(const ShaderKey& key) {
  std::string s = Header(key) +
                  "layout(location = 0) in vec4 a_position;\n"
                  "layout(location = 1) in vec4 a_color;\n"
                  "layout(location = 2) in vec2 a_tex0;\n"
                  "layout(location = 3) in vec2 a_tex1;\n"
                  "layout(location = 4) in uint a_slot;\n"
                  "uniform mat4 u_wvp;\n"
                  "uniform vec4 u_viewport;\n";
  s += key.flat ? "flat out vec4 v_color;\n" : "out vec4 v_color;\n";
  s += "out vec2 v_tex0;\nout vec2 v_tex1;\nflat out uint v_slot;\nvoid main() {\n";
  if (key.pretransformed) {
    // Screen pixels (y down), depth 0..1 and 1/w: back to clip space so that
    // glViewport lands them on the same pixels and interpolation stays
    // perspective-correct.
    s += "  float w = a_position.w != 0.0 ? 1.0 / a_position.w : 1.0;\n"
         "  vec2 ndc = vec2((a_position.x - u_viewport.x) / u_viewport.z * 2.0 - 1.0,\n"
         "                  1.0 - (a_position.y - u_viewport.y) / u_viewport.w * 2.0);\n"
         "  gl_Position = vec4(ndc * w, (a_position.z * 2.0 - 1.0) * w, w);\n";
  } else {
    // Row vectors times the row-major matrix: GL sees its transpose, so the
    // column-vector product gives the same clip position. Depth 0..w becomes
    // GL's -w..w.
    s += "  gl_Position = u_wvp * vec4(a_position.xyz, 1.0);\n"
         "  gl_Position.z = 2.0 * gl_Position.z - gl_Position.w;\n";
  }
  // D3DCOLOR bytes are B, G, R, A. OpenGL ES cannot read them in that order
  // (no GL_BGRA size), so the shader swaps them back.
  s += key.es ? "  v_color = a_color.bgra;\n" : "  v_color = a_color;\n";
  s += "  v_tex0 = a_tex0;\n  v_tex1 = a_tex1;\n  v_slot = a_slot;\n}\n";
  return s;
}

std::string FragmentShaderSource(const ShaderKey& key) {
  // Software GL shades one triangle at a time, so all pixels shaded together
  // share the slot, and a sampler array indexed by it fetches one texture;
  // the chain of slot tests below fetches every texture on every pixel. A GPU
  // may shade several triangles together, which such an index does not allow.
  const bool indexed = key.indexedSlots;
  std::string s = Header(key);
  if (indexed) s += "#extension GL_ARB_gpu_shader5 : require\n";
  s += key.flat ? "flat in vec4 v_color;\n" : "in vec4 v_color;\n";
  s += "in vec2 v_tex0;\nin vec2 v_tex1;\nflat in uint v_slot;\nout vec4 o_color;\n";
  if (key.stages[0].hasTexture)
    s += "uniform sampler2D u_stage0[" + std::to_string(key.slots > 1 ? key.slots : 1) + "];\n";
  if (key.stages[1].hasTexture) s += "uniform sampler2D u_stage1;\n";
  s += "void main() {\n  vec4 cur = v_color;\n";
  for (int i = 0; i < kShaderStages; ++i) {
    const StageKey& k = key.stages[i];
    if (k.colorOp == 0) break;
    std::string t = "t" + std::to_string(i);
    // A texture coordinate set the vertex lacks reads as (0, 0).
    std::string uv =
        k.texCoord < key.texCoordSets ? "v_tex" + std::to_string(k.texCoord) : "vec2(0.0)";
    s += "  {\n    vec4 " + t + " = vec4(1.0);\n";
    if (k.hasTexture) {
      if (i == 0 && indexed) {
        s += "    " + t + " = texture(u_stage0[v_slot], " + uv + ");\n";
      } else if (i == 0 && key.slots > 1) {
        // Derivatives outside the branch keep mip selection defined.
        s += "    vec2 uv = " + uv + ";\n    vec2 dx = dFdx(uv), dy = dFdy(uv);\n";
        for (int j = 0; j < key.slots; ++j) {
          s += std::string(j ? "    else " : "    ") +
               (j + 1 < key.slots ? "if (v_slot == " + std::to_string(j) + "u) " : "");
          s += t + " = textureGrad(u_stage0[" + std::to_string(j) + "], uv, dx, dy);\n";
        }
      } else {
        s += "    " + t + " = texture(" +
             (i == 0 ? std::string("u_stage0[0]") : std::string("u_stage1")) + ", " + uv + ");\n";
      }
    }
    std::string c1 = ArgExpr(k.colorArg1, i) + ".rgb", c2 = ArgExpr(k.colorArg2, i) + ".rgb";
    std::string alpha = k.alphaOp ? OpExpr(k.alphaOp, ArgExpr(k.alphaArg1, i) + ".a",
                                           ArgExpr(k.alphaArg2, i) + ".a")
                                  : std::string("cur.a");
    // Each stage's result is clamped to 0..1, as the fixed-function pipeline does.
    s +=
        "    cur = clamp(vec4(" + OpExpr(k.colorOp, c1, c2) + ", " + alpha + "), 0.0, 1.0);\n  }\n";
  }
  s += "  o_color = cur;\n}\n";
  return s;
}

ShaderCache::~ShaderCache() {
  Clear();
}

void ShaderCache::Clear() {
  for (auto& p : programs_)
    if (p.second->program) glDeleteProgram(p.second->program);
  programs_.clear();
}

ShaderProgram* ShaderCache::Get(const ShaderKey& key) {
  std::uint64_t packed = key.Pack();
  auto it = programs_.find(packed);
  if (it != programs_.end()) return it->second->program ? it->second.get() : nullptr;

  auto prog = std::make_unique<ShaderProgram>();
  GLuint vs = Compile(GL_VERTEX_SHADER, VertexShaderSource(key));
  GLuint fs = vs ? Compile(GL_FRAGMENT_SHADER, FragmentShaderSource(key)) : 0;
  if (vs && fs) {
    GLuint p = glCreateProgram();
    glAttachShader(p, vs);
    glAttachShader(p, fs);
    glLinkProgram(p);
    GLint ok = 0;
    glGetProgramiv(p, GL_LINK_STATUS, &ok);
    if (ok) {
      prog->program = p;
      prog->wvp = glGetUniformLocation(p, "u_wvp");
      prog->viewport = glGetUniformLocation(p, "u_viewport");
      glUseProgram(p);
      for (int i = 0; i < kBatchTextures; ++i) {
        GLint loc = glGetUniformLocation(p, ("u_stage0[" + std::to_string(i) + "]").c_str());
        if (loc >= 0) glUniform1i(loc, i);
      }
      GLint loc1 = glGetUniformLocation(p, "u_stage1");
      if (loc1 >= 0) glUniform1i(loc1, kStage1Unit);
    } else {
      char log[2048] = {};
      glGetProgramInfoLog(p, sizeof log, nullptr, log);
      Log(LogLevel::Error, "ShaderCache::Get", "program does not link: %s", log);
      glDeleteProgram(p);
    }
  }
  if (vs) glDeleteShader(vs);
  if (fs) glDeleteShader(fs);
  ShaderProgram* result = prog->program ? prog.get() : nullptr;
  programs_.emplace(packed, std::move(prog));
  return result;
}

}  // namespace d3d9gl
