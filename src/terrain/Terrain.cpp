// CTerrain lifecycle: binding the device, loading the height map and the
// scene's 17 textures, and giving it all back.
#include "terrain/Terrain.h"

#include <cstdio>
#include <cstdlib>
#include <string>

#include "platform/crt/FileIo.h"
#include "platform/d3dx9/d3dx9.h"
#include "terrain/Mesh.h"

namespace {

// Height steps are a fixed 16 units; grid steps follow from the map size.
constexpr float HEIGHT_SCALE = 16.0f;

// One texture of the scene: its file, its member and its colour key (0: none;
// the plants and wings key out pure white, the rain a blue).
struct TextureEntry {
  const char* file;
  IDirect3DTexture9* CTerrain::*member;
  D3DCOLOR colorKey;
};

constexpr TextureEntry TEXTURES[] = {
    {"Data\\Base_Texture_BigPoint.jpg", &CTerrain::m_baseTexture, 0},
    {"Data\\Detail_Texture.jpg", &CTerrain::m_detailTexture, 0},
    {"Data\\Water_Texture.jpg", &CTerrain::m_waterTexture, 0},
    {"Data\\skyscraperwall.jpg", &CTerrain::m_wallTexture, 0},
    {"Data\\skyscraperwall2.jpg", &CTerrain::m_wallTexture2, 0},
    {"Data\\tree.png", &CTerrain::m_treeTexture, 0x00FFFFFF},
    {"Data\\tree3.png", &CTerrain::m_tree3Texture, 0x00FFFFFF},
    {"Data\\beard.jpg", &CTerrain::m_beardTexture, 0x00FFFFFF},
    {"Data\\krilo_right.png", &CTerrain::m_wingRightTexture, 0x00FFFFFF},
    {"Data\\krilo_left.png", &CTerrain::m_wingLeftTexture, 0x00FFFFFF},
    {"Data\\weads4.png", &CTerrain::m_weed4Texture, 0x00FFFFFF},
    {"Data\\weads5.png", &CTerrain::m_weed5Texture, 0x00FFFFFF},
    {"Data\\flower1.png", &CTerrain::m_flower1Texture, 0x00FFFFFF},
    {"Data\\flower2.png", &CTerrain::m_flower2Texture, 0x00FFFFFF},
    {"Data\\flower3.png", &CTerrain::m_flower3Texture, 0x00FFFFFF},
    {"Data\\preservativ.png", &CTerrain::m_preservativTexture, 0x00FFFFFF},
    {"Data\\rain.png", &CTerrain::m_rainTexture, 0x640000FF},
};

}  // namespace

// The object arrays are cleared here too, so that a terrain made outside the
// zero-filled application object starts the same way.
CTerrain::CTerrain()
    : m_scale(1.0f, 1.0f, 1.0f),
      m_heightMap(nullptr),
      m_mapWidth(0),
      m_mapHeight(0),
      m_blockMeshes(nullptr),
      m_blockCount(0),
      m_device(nullptr),
      m_hardwareProcessing(false),
      m_singlePass(true),
      m_blockPrimitiveCount(0),
      m_baseTexture(nullptr),
      m_detailTexture(nullptr),
      m_waterTexture(nullptr),
      m_wallTexture(nullptr),
      m_wallTexture2(nullptr),
      m_treeTexture(nullptr),
      m_tree3Texture(nullptr),
      m_preservativTexture(nullptr),
      m_rainTexture(nullptr),
      m_beardTexture(nullptr),
      m_wingLeftTexture(nullptr),
      m_wingRightTexture(nullptr),
      m_weed4Texture(nullptr),
      m_weed5Texture(nullptr),
      m_flower1Texture(nullptr),
      m_flower2Texture(nullptr),
      m_flower3Texture(nullptr),
      m_trees(),
      m_weeds(),
      m_weedCount(0),
      m_treeCount(0),
      m_rainEnabled(false),
      m_rain(),
      m_rainCount(0),
      m_wingAngle(0.0f),
      m_wingDirection(0),
      m_figures(),
      m_flowers(),
      m_flowerCount(0) {}

CTerrain::~CTerrain() { ReleaseTerrain(); }

void CTerrain::SetDevice(IDirect3DDevice9* device, bool hardwareProcessing) {
  if (!device) return;
  m_device = device;
  m_device->AddRef();
  m_hardwareProcessing = hardwareProcessing;
}

bool CTerrain::LoadHeightMap(const char* fileName, std::uint32_t width, std::uint32_t height) {
  if (m_blockMeshes || !m_device) return false;
  // The scale formula needs 2..513 samples a side; anything else cannot be a map.
  if (!fileName || width < 2 || height < 2 || width > 513 || height > 513) return false;

  m_mapWidth = width;
  m_mapHeight = height;
  m_scale.x = static_cast<float>(512u / (width - 1)) * 32.0f;
  m_scale.y = HEIGHT_SCALE;
  m_scale.z = static_cast<float>(512u / (height - 1)) * 32.0f;

  const std::size_t bytes = static_cast<std::size_t>(width) * height;
  std::free(m_heightMap);
  m_heightMap = static_cast<std::uint8_t*>(std::malloc(bytes));
  if (!m_heightMap) return false;

  std::FILE* file = crt::fopen(fileName, "rb");
  if (!file) return false;
  // One item of the whole size: a short file reads no item and fails the load
  // rather than leaving part of the map undefined.
  const std::size_t items = crt::fread(m_heightMap, bytes, 1, file);
  crt::fclose(file);
  if (items != 1) return false;

  for (const TextureEntry& entry : TEXTURES) {
    IDirect3DTexture9* texture = nullptr;
    const HRESULT hr = D3DXCreateTextureFromFileExA(m_device, entry.file, D3DX_DEFAULT, D3DX_DEFAULT, D3DX_DEFAULT,
                                                    0, D3DFMT_UNKNOWN, D3DPOOL_MANAGED, D3DX_DEFAULT, D3DX_DEFAULT,
                                                    entry.colorKey, nullptr, nullptr, &texture);
    if (hr < 0) return false;
    this->*entry.member = texture;
  }

  if (AddBlockMeshes(((width - 1) / BLOCK_CELLS) * ((height - 1) / BLOCK_CELLS)) < 0) return false;
  return BuildBlockMeshes();
}

void CTerrain::ReleaseTerrain() {
  std::free(m_heightMap);
  if (m_blockMeshes) {
    for (std::uint32_t i = 0; i < m_blockCount; ++i) delete m_blockMeshes[i];
    std::free(m_blockMeshes);
  }
  for (const TextureEntry& entry : TEXTURES) {
    IDirect3DTexture9*& texture = this->*entry.member;
    if (texture) texture->Release();
    texture = nullptr;
  }
  // The device goes last: the textures above were made by it.
  if (m_device) m_device->Release();

  m_heightMap = nullptr;
  m_mapWidth = 0;
  m_mapHeight = 0;
  m_blockMeshes = nullptr;
  m_blockCount = 0;
  m_device = nullptr;
}
