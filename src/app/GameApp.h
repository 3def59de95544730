// CGameApp: the application object and spine of the system. It owns the world,
// the player, the frame timer, the window, the Direct3D objects, the render
// options and the sound slots. Exactly one exists, g_App, in zero-filled static
// storage; members that the constructor does not name rely on that.
//
// The member functions are defined in the files of their concern:
//   GameApp.cpp              construction, Startup, BuildWorld, RunLoop, AdvanceFrame, Shutdown
//   GameAppDisplay.cpp       OpenDisplay
//   GameAppDevice.cpp        ChangeDevice
//   GameAppMessages.cpp      StaticWindowProc, HandleWindowMessage
//   GameAppState.cpp         ResetGameState
//   GameAppInput.cpp         ReadInput
//   GameAppSound.cpp         LoadSounds, RunSoundEvents
//   GameAppRenderStates.cpp  ApplyRenderStates, ValidateRenderOptions, UpdateMenuChecks
//   GameAppSkyBox.cpp        BuildSkyBox, RenderSkyBox
//   GameAppBodyBox.cpp       BuildBodyBox
//   WinMain.cpp              WinMain: the process's life from Startup to the exit code
//   Main.cpp                 main(), outside the library: calls WinMain, reads no argument
#pragma once

#include <cstdint>

#include "app/SoundSlot.h"
#include "app/Timer.h"
#include "device/D3DSettings.h"
#include "platform/d3d9/d3d9.h"
#include "platform/d3dx9/d3dx9.h"
#include "platform/win32/windows.h"
#include "terrain/Mesh.h"
#include "terrain/Terrain.h"
#include "terrain/WorldObject.h"
#include "view/Player.h"

class CCamera;

class CGameApp {
 public:
  CGameApp();
  virtual ~CGameApp();

  // Life of the process.
  bool Startup(HINSTANCE hInstance, LPSTR lpCmdLine, int nCmdShow);
  bool OpenDisplay();
  // The settings dialog and, on OK, a new device in the same window with the
  // world built on it; the game state stays as it is.
  void ChangeDevice();
  bool BuildWorld();
  void ReleaseWorld();
  int RunLoop();
  void AdvanceFrame();
  bool Shutdown();

  // Game state and input.
  void ResetGameState();
  void ReadInput();

  // Window procedure: the static one finds the object in GWL_USERDATA.
  static LRESULT CALLBACK StaticWindowProc(HWND hWnd, UINT message, WPARAM wParam, LPARAM lParam);
  LRESULT HandleWindowMessage(HWND hWnd, UINT message, WPARAM wParam, LPARAM lParam);

  // Render options against the device, then onto it.
  void ApplyRenderStates();
  bool ValidateRenderOptions();
  void UpdateMenuChecks();
  D3DTEXTUREOP& GetColorOp() { return m_colorOp; }

  // Sky and body box, built with the world.
  bool BuildSkyBox();
  void RenderSkyBox();
  bool BuildBodyBox();

  // Sound bank: loaded by the constructor; the rules run inside ReadInput.
  void LoadSounds();
  // keyState is the frame's first key table, where the talk key is read.
  void RunSoundEvents(std::uint32_t direction, const BYTE* keyState);

  // ---- members, in declaration order --------------------------------------
  CTerrain m_terrain;
  CPlayer m_player;
  CCamera* m_camera;
  D3DXMATRIX m_worldMatrix;
  CTimer m_timer;
  std::uint32_t m_lastFrameRate;
  HWND m_hWnd;
  HICON m_hIcon;
  HMENU m_hMenu;
  bool m_deviceLost;
  bool m_active;
  IDirect3D9* m_d3d;
  IDirect3DDevice9* m_device;
  CD3DSettings m_settings;

  // Render options, validity tables and device limits.
  D3DFILLMODE m_fillMode;
  D3DTEXTUREOP m_colorOp;
  D3DTEXTUREFILTERTYPE m_magFilter;
  D3DTEXTUREFILTERTYPE m_minFilter;
  D3DTEXTUREFILTERTYPE m_mipFilter;
  std::uint32_t m_maxAnisotropy;
  bool m_singlePass;
  D3DFORMAT m_textureFormat;
  D3DFORMAT m_alphaFormat;
  bool m_magFilterValid[10];
  bool m_minFilterValid[10];
  bool m_mipFilterValid[10];
  bool m_colorOpValid[30];
  std::uint32_t m_maxTextures;
  std::uint32_t m_maxAnisotropyLimit;

  std::uint32_t m_viewX;
  std::uint32_t m_viewY;
  std::uint32_t m_viewWidth;
  std::uint32_t m_viewHeight;
  POINT m_captureCursor;

  CWorldObject m_playerObject;
  CMesh m_bodyMesh;
  CMesh m_skyMesh;
  IDirect3DTexture9* m_skyTextures[6];

  // Sound slots, in load order.
  CSoundSlot m_soundDiving;
  CSoundSlot m_soundSteps;
  CSoundSlot m_soundSwim;
  CSoundSlot m_soundBreathe;
  CSoundSlot m_soundCough;
  CSoundSlot m_soundChoke;
  CSoundSlot m_soundLaugh1;
  CSoundSlot m_soundLaugh2;
  CSoundSlot m_soundJump;
  CSoundSlot m_soundSpeech[17];
  CSoundSlot m_soundRemains;
  CSoundSlot m_soundClimb;

  std::int32_t m_zoneSpeechTimer;
  std::int32_t m_playerHasMoved;
  std::uint32_t m_speechTimer;
};

// The one application object and its accessor for the scene code.
extern CGameApp g_App;
CGameApp* GetGameApp();

// The process entry, called from main() with no arguments read.
int WINAPI WinMain(HINSTANCE hInstance, HINSTANCE hPrevInstance, LPSTR lpCmdLine, int nCmdShow);
