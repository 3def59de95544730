// CGameApp: the one application object, its life from construction to
// destruction, the build and release of the world, the message loop and the
// exact order of one frame.
#include "app/GameApp.h"

#include <cstdio>

#include "app/Resources.h"
#include "device/MyD3DInit.h"
#include "platform/crt/crt.h"

namespace {

// The module's resources are in place before any code of the program runs,
// as a loader maps them with the image. Function-local storage in the win32
// layer makes this safe whatever the order of static initialisation.
const bool s_resourcesRegistered = RegisterResources();

constexpr const char* kTitleFormat = "Karvo Terrain - Marnovets P.D.  : %s  : %f : %f : %f";
constexpr const char* kHeightMapFile = "Data\\HeightMap.raw";
constexpr std::uint32_t kHeightMapSize = 257;
constexpr D3DCOLOR kClearColour = 0x0079D3FF;

// The window title and the frame-rate text, written anew at each change of
// the whole-number rate. The title holds the format's text, a rate of up to
// ten digits with " FPS", and three world coordinates printed with %f (at
// most 47 characters each, for the largest float).
char s_titleText[256];
char s_frameRateText[32];

}  // namespace

// Built by static initialisation, before the entry point; everything that
// the constructor does not name starts as zero in this static storage.
CGameApp g_App;

CGameApp* GetGameApp() { return &g_App; }

CGameApp::CGameApp()
    : m_camera(nullptr),
      m_lastFrameRate(0),
      m_hWnd(nullptr),
      m_hIcon(nullptr),
      m_hMenu(nullptr),
      m_deviceLost(false),
      m_active(false),
      m_d3d(nullptr),
      m_device(nullptr) {
  // Start values of the render options.
  m_fillMode = D3DFILL_SOLID;
  m_colorOp = D3DTOP_ADDSIGNED;
  m_magFilter = D3DTEXF_LINEAR;
  m_minFilter = D3DTEXF_LINEAR;
  m_mipFilter = D3DTEXF_LINEAR;
  m_maxAnisotropy = 1;
  m_singlePass = true;

  m_playerHasMoved = 0;
  m_speechTimer = 0;
  // BASS starts and every sound loads here, before any window exists.
  LoadSounds();
  m_zoneSpeechTimer = 0;
  for (IDirect3DTexture9*& texture : m_skyTextures) texture = nullptr;
}

CGameApp::~CGameApp() {
  // After a normal end there is nothing left to give back; after an early
  // end (the music could not start) the world and the window go here.
  Shutdown();
}

bool CGameApp::Startup(HINSTANCE, LPSTR, int) {
  (void)s_resourcesRegistered;
  if (!OpenDisplay()) {
    Shutdown();
    return false;
  }
  if (!BuildWorld()) {
    Shutdown();
    return false;
  }
  ResetGameState();
  // After the game state, so that the camera exists for the viewport and the
  // menu marks. A failure here only posts the quit message.
  ApplyRenderStates();
  return true;
}

bool CGameApp::BuildWorld() {
  const VERTEXPROCESSING_TYPE processing = m_settings.GetCurrentSettings().m_vertexProcessing;
  const bool hardwareProcessing = processing == HARDWARE_VP || processing == PURE_HARDWARE_VP;

  ReleaseWorld();
  m_terrain.SetDevice(m_device, hardwareProcessing);
  // All objects on the terrain are placed inside this call.
  if (!m_terrain.LoadHeightMap(kHeightMapFile, kHeightMapSize, kHeightMapSize)) return false;
  // Seeded after the placing: the first world of a run is placed from the
  // generator's start state and so is the same on every start.
  crt::srand(timeGetTime());
  if (!BuildBodyBox()) return false;
  if (!BuildSkyBox()) return false;
  return true;
}

void CGameApp::ReleaseWorld() {
  if (m_device) {
    // The device lets go of what the world is about to drop.
    m_device->SetStreamSource(0, nullptr, 0, 0);
    m_device->SetIndices(nullptr);
    m_device->SetTexture(0, nullptr);
    m_device->SetTexture(1, nullptr);
  }
  for (IDirect3DTexture9*& texture : m_skyTextures) {
    if (texture) texture->Release();
    texture = nullptr;
  }
  m_terrain.ReleaseTerrain();
}

int CGameApp::RunLoop() {
  MSG msg;
  for (;;) {
    if (PeekMessageA(&msg, nullptr, 0, 0, PM_REMOVE)) {
      if (msg.message == WM_QUIT) break;
      TranslateMessage(&msg);
      DispatchMessageA(&msg);
    } else {
      AdvanceFrame();
    }
  }
  return 0;
}

void CGameApp::AdvanceFrame() {
  // Every frame, whatever the state: on restore the frame time does not jump.
  m_timer.Tick(0.0f);
  if (!m_active) return;

  const D3DXVECTOR3 position = m_player.GetPosition();

  // The title changes only when the whole-number rate does; it shows the
  // position of the end of the last frame, height last.
  if (m_timer.GetFrameRate(nullptr) != m_lastFrameRate) {
    m_lastFrameRate = m_timer.GetFrameRate(s_frameRateText);
    std::snprintf(s_titleText, sizeof s_titleText, kTitleFormat, s_frameRateText, position.x, position.z,
                  position.y);
    SetWindowTextA(m_hWnd, s_titleText);
  }

  // Nothing to draw with before the display and the game state exist.
  if (!m_device || !m_camera) return;

  if (m_deviceLost) {
    if (m_device->TestCooperativeLevel() != D3DERR_DEVICENOTRESET) return;
    // The world is not rebuilt: all its resources lie in the managed pool.
    CMyD3DInit initialize;
    initialize.ResetDisplay(m_device, m_settings, m_hWnd);
    ApplyRenderStates();
    m_deviceLost = false;
  }

  ReadInput();

  m_device->Clear(0, nullptr, D3DCLEAR_TARGET | D3DCLEAR_ZBUFFER, kClearColour, 1.0f, 0);
  m_device->BeginScene();
  RenderSkyBox();
  m_player.Render(m_device);
  m_device->SetTransform(D3DTS_WORLD, &m_worldMatrix);
  m_terrain.Render(m_camera);
  m_device->EndScene();
  if (FAILED(m_device->Present(nullptr, nullptr, nullptr, nullptr))) m_deviceLost = true;
}

bool CGameApp::Shutdown() {
  ReleaseWorld();
  if (m_device) m_device->Release();
  if (m_d3d) m_d3d->Release();
  m_device = nullptr;
  m_d3d = nullptr;
  if (m_hMenu) DestroyMenu(m_hMenu);
  m_hMenu = nullptr;
  SetMenu(m_hWnd, nullptr);
  if (m_hWnd) DestroyWindow(m_hWnd);
  m_hWnd = nullptr;
  return true;
}
