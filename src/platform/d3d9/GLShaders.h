// Internal to the GL back end: the fixed-function pipeline as generated GLSL.
// A ShaderKey holds exactly the state that changes the program (texture
// stages after the NULL-texture and DISABLE rules, vertex layout, merged
// draw), so equal keys share one program and irrelevant state costs nothing.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <unordered_map>

#include "platform/d3d9/GLCommon.h"

namespace d3d9gl {

// Texture stages the pipeline emulates (MaxTextureBlendStages).
constexpr int kShaderStages = 2;
// GL texture unit of stage 1 (units 0 to 7 hold the stage-0 textures of a
// merged draw).
constexpr int kStage1Unit = 8;

// Vertex attribute locations.
enum AttributeLocation : GLuint {
  kAttrPosition = 0,
  kAttrColor = 1,
  kAttrTex0 = 2,
  kAttrTex1 = 3,
  kAttrSlot = 4,
};

struct StageKey {
  std::uint8_t colorOp = 0;  // 0: this stage and all after it are not processed
  std::uint8_t colorArg1 = 0, colorArg2 = 0;
  std::uint8_t alphaOp = 0;
  std::uint8_t alphaArg1 = 0, alphaArg2 = 0;
  std::uint8_t texCoord = 0;  // texture coordinate set the stage reads
  std::uint8_t hasTexture = 0;
};

struct ShaderKey {
  StageKey stages[kShaderStages];
  std::uint8_t pretransformed = 0;  // D3DFVF_XYZRHW
  std::uint8_t texCoordSets = 0;    // sets in the vertex, 0 to 2 used
  // Stage-0 textures a merged draw chooses from per vertex, 2 to
  // kBatchTextures; 0 when the draw has one. Where the fragment shader tests
  // the vertex's slot against each of them in turn, a rasteriser that runs
  // both sides of a branch pays for every test on every pixel, so the chain
  // is only as long as needed.
  std::uint8_t slots = 0;
  std::uint8_t indexedSlots = 0;  // the slot indexes a sampler array (see FragmentShaderSource)
  std::uint8_t flat = 0;          // D3DSHADE_FLAT
  std::uint8_t es = 0;            // GLSL ES 3.00 for an OpenGL ES context

  std::uint64_t Pack() const;
};

// Per-stage input of MakeShaderKey: the raw D3DTSS_* values and the texture.
struct StageState {
  DWORD colorOp, colorArg1, colorArg2, alphaOp, alphaArg1, alphaArg2, texCoordIndex;
  bool hasTexture;
};
// Applies the stage rules: a DISABLE colour op, or a colour argument of
// D3DTA_TEXTURE on a stage without texture, ends processing at that stage.
// `stage0Textures` is the number of stage-0 textures the draw uses (0 or 1 for
// a plain draw, up to kBatchTextures for a merged one).
ShaderKey MakeShaderKey(const StageState (&stages)[kShaderStages], DWORD fvf, int stage0Textures,
                        bool flat, bool indexSlots);

// The GLSL text of a key (for tests and for the cache).
std::string VertexShaderSource(const ShaderKey& key);
std::string FragmentShaderSource(const ShaderKey& key);

struct ShaderProgram {
  GLuint program = 0;
  GLint wvp = -1;       // mat4 World * View * Projection (row vectors)
  GLint viewport = -1;  // vec4 X, Y, Width, Height of the viewport
  std::uint64_t wvpSerial = ~0ull;
  std::uint64_t viewportSerial = ~0ull;
};

// Programs by key, made on first use, deleted with the cache (context current).
class ShaderCache {
 public:
  ~ShaderCache();
  // Null when the program does not compile or link (logged once).
  ShaderProgram* Get(const ShaderKey& key);
  std::size_t size() const { return programs_.size(); }
  void Clear();

 private:
  std::unordered_map<std::uint64_t, std::unique_ptr<ShaderProgram>> programs_;
};

}  // namespace d3d9gl
