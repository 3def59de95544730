// CTerrain: the ground of the world and all that stands on it. It owns the
// 8-bit height map, the block meshes cut from it, the scene's textures and the
// fixed arrays of trees, weeds, rain, flying figures and flowers.
//
// States: empty (constructed or released), bound (SetDevice), loaded
// (LoadHeightMap true); height queries, drawing and the callbacks need a
// loaded terrain. One CTerrain lives in the zero-filled g_App; the object
// arrays rely on starting as zeros.
//
// The members are defined in the files of their concern:
//   Terrain.cpp          construction, SetDevice, SetSinglePass, LoadHeightMap, ReleaseTerrain
//   TerrainBlocks.cpp    AddBlockMeshes, BuildBlockMeshes
//   TerrainHeight.cpp    GetHeight, UpdatePlayer, UpdateCamera
//   TerrainRender.cpp    Render
//   TerrainScene.cpp     RenderScene and its two groups of objects
//   water files, and src/world/*: DrawWater, the placing, updating and drawing
//                        of the object arrays (Plants.cpp, Skyscrapers.cpp, ...)
#pragma once

#include <cstdint>

#include "platform/d3d9/d3d9.h"
#include "platform/d3dx9/d3dx9math.h"
#include "world/FlyingFigure.h"
#include "world/PlantRecord.h"
#include "world/RainDrop.h"

class CCamera;
class CMesh;
class CPlayer;

class CTerrain {
 public:
  static constexpr int MAX_TREES = 1000;
  static constexpr int MAX_WEEDS = 1000;
  static constexpr int MAX_RAIN = 2000;
  static constexpr int MAX_FIGURES = 250;
  static constexpr int MAX_FLOWERS = 10000;
  // Grid cells on a side of one block, and what follows from it.
  static constexpr std::uint32_t BLOCK_CELLS = 36;
  static constexpr std::uint32_t BLOCK_SIDE_VERTICES = BLOCK_CELLS + 1;                        // 37
  static constexpr std::uint32_t BLOCK_VERTICES = BLOCK_SIDE_VERTICES * BLOCK_SIDE_VERTICES;   // 1369
  static constexpr std::uint32_t BLOCK_INDICES = BLOCK_CELLS * 2 * BLOCK_SIDE_VERTICES + BLOCK_CELLS - 1;  // 2699

  CTerrain();
  virtual ~CTerrain();

  // ---- lifecycle ----
  // Stores the device with one reference; null does nothing. Does not release
  // an older device: ReleaseTerrain comes first.
  void SetDevice(IDirect3DDevice9* device, bool hardwareProcessing);
  // One pass with two texture stages (true) or two blended passes.
  void SetSinglePass(bool singlePass) { m_singlePass = singlePass; }
  // Reads width x height samples, loads the 17 textures, builds the blocks and
  // places the objects. False: the terrain is not usable (ReleaseTerrain it).
  bool LoadHeightMap(const char* fileName, std::uint32_t width, std::uint32_t height);
  // Gives up all that SetDevice and LoadHeightMap acquired; safe to repeat.
  void ReleaseTerrain();

  // ---- block meshes ----
  // Appends count empty meshes; the index of the first, or -1.
  std::int32_t AddBlockMeshes(std::uint32_t count);
  // Fills and builds every block (one serpentine strip each), then places the
  // world objects.
  bool BuildBlockMeshes();

  // ---- height and ground following ----
  // Ground height at world (x, z) on the drawn triangles; oddRow tells the
  // split of the cell (true for an odd grid row). 0.0 off the map.
  float GetHeight(float x, float z, bool oddRow) const;
  // Player callback (context: the CTerrain): ground clamp, walking/swimming values.
  static void UpdatePlayer(void* context, CPlayer* player, float timeScale);
  // Camera callback (context: the CTerrain): third person camera above ground,
  // facing the player.
  static void UpdateCamera(void* context, CCamera* camera, float timeScale);

  // ---- drawing ----
  // The ground blocks that pass the frustum test, then RenderScene.
  void Render(CCamera* camera);
  // Rain, figures, plants, towers and the water, ordered by the player's altitude.
  void RenderScene(CCamera* camera);
  void DrawWater(CCamera* camera, float level);

  // ---- world objects ----
  void PlaceTrees();
  void PlaceWeeds();
  void PlaceRain();
  void PlaceFigures();
  void PlaceFlowers();
  void UpdateRain(CCamera* camera);
  void DrawRainDrop(float x, float y, float z, CCamera* camera);
  void DrawSkyscrapers();
  // One pass of adjacent exchanges a frame, far to near from the player.
  void SortTrees(CCamera* camera);
  void SortWeeds(CCamera* camera);
  // Upright quads turned about the foot towards the player (camera's player).
  void DrawTree(float x, float y, float z, std::int32_t kind, float size, CCamera* camera);
  void DrawWeed(float x, float y, float z, std::int32_t kind, float size, CCamera* camera);
  // Two stems and a flat head, fixed axes.
  void DrawFlower(float x, float y, float z, std::int32_t kind, float size);
  // Euclidean distance; the sum of squares is held in a float.
  static float PointDistance(float x1, float y1, float z1, float x2, float y2, float z2);
  void UpdateWings();
  void UpdateFigures();
  void SortFigures();
  void DrawFigure(float x, float y, float z, float size, float wingAngle, float heading);

  // ---- members, in declaration order ----
  D3DXVECTOR3 m_scale;
  std::uint8_t* m_heightMap;
  std::uint32_t m_mapWidth;
  std::uint32_t m_mapHeight;
  CMesh** m_blockMeshes;
  std::uint32_t m_blockCount;
  IDirect3DDevice9* m_device;
  bool m_hardwareProcessing;
  bool m_singlePass;
  std::uint32_t m_blockPrimitiveCount;
  IDirect3DTexture9* m_baseTexture;
  IDirect3DTexture9* m_detailTexture;
  IDirect3DTexture9* m_waterTexture;
  IDirect3DTexture9* m_wallTexture;
  IDirect3DTexture9* m_wallTexture2;
  IDirect3DTexture9* m_treeTexture;
  IDirect3DTexture9* m_tree3Texture;
  IDirect3DTexture9* m_preservativTexture;
  IDirect3DTexture9* m_rainTexture;
  IDirect3DTexture9* m_beardTexture;
  IDirect3DTexture9* m_wingLeftTexture;
  IDirect3DTexture9* m_wingRightTexture;
  IDirect3DTexture9* m_weed4Texture;
  IDirect3DTexture9* m_weed5Texture;
  IDirect3DTexture9* m_flower1Texture;
  IDirect3DTexture9* m_flower2Texture;
  IDirect3DTexture9* m_flower3Texture;
  CPlantRecord m_trees[MAX_TREES];
  CPlantRecord m_weeds[MAX_WEEDS];
  std::int32_t m_weedCount;
  std::int32_t m_treeCount;
  bool m_rainEnabled;
  CRainDrop m_rain[MAX_RAIN];
  std::int32_t m_rainCount;
  float m_wingAngle;
  std::int32_t m_wingDirection;
  CFlyingFigure m_figures[MAX_FIGURES];
  CPlantRecord m_flowers[MAX_FLOWERS];
  std::int32_t m_flowerCount;

 private:
  // The scene's two groups: towers, rain, figures, flowers and trees above
  // the water; the weeds below it. RenderScene puts one before the water and
  // the other after it.
  void DrawUpperGroup(CCamera* camera);
  void DrawLowerGroup(CCamera* camera);
  // Stage 0 alpha = texture alpha times diffuse alpha, before each object loop.
  void SetObjectAlpha();
  // The upright quad of a tree or weed; texture null binds nothing and
  // visible false sends all-zero vertices.
  void DrawBillboard(float x, float y, float z, float width, IDirect3DTexture9* texture,
                     bool visible, CCamera* camera);
  // One pass of adjacent exchanges over records, far to near from viewer.
  static void SortPass(CPlantRecord* records, std::int32_t count, const D3DXVECTOR3& viewer);
};
