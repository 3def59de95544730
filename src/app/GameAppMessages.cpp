// CGameApp's window procedure: size changes and minimising, Escape and
// Shift+Enter, the mouse capture for mouse look, and the menu commands. All of
// it runs inside the dispatch of a message, between frames.
#include "app/GameApp.h"
#include "app/Resources.h"
#include "device/MyD3DInit.h"

namespace {

// Physics values that a camera command sets, one column per mode.
struct CameraColumn {
  CCameraMode mode;
  float friction;
  D3DXVECTOR3 gravity;
  float maxVelocityXZ;
  float maxVelocityY;
  D3DXVECTOR3 cameraOffset;
  float cameraLag;
};

const CameraColumn kFirstPerson = {CAM_MODE_1ST_PERSON,
                                   250.0f,
                                   D3DXVECTOR3(0.0f, -400.0f, 0.0f),
                                   125.0f,
                                   400.0f,
                                   D3DXVECTOR3(0.0f, 10.0f, 0.0f),
                                   0.0f};
const CameraColumn kSpaceCraft = {
    CAM_MODE_SPACE_CRAFT,          125.0f, D3DXVECTOR3(0.0f, 0.0f, 0.0f), 400.0f, 400.0f,
    D3DXVECTOR3(0.0f, 0.0f, 0.0f), 0.0f};
const CameraColumn kThirdPerson = {CAM_MODE_3RD_PERSON,
                                   250.0f,
                                   D3DXVECTOR3(0.0f, -400.0f, 0.0f),
                                   125.0f,
                                   400.0f,
                                   D3DXVECTOR3(0.0f, 40.0f, -60.0f),
                                   0.25f};

// Commands of the menu Render States.
constexpr UINT kSolid = 40013;
constexpr UINT kWireframe = 40014;
constexpr UINT kMipNone = 40019;
constexpr UINT kMipPoint = 40020;
constexpr UINT kMipLinear = 40021;
constexpr UINT kSinglePass = 40022;
constexpr UINT kMultiPass = 40023;
constexpr UINT kAddSigned = 40024;
constexpr UINT kAddSigned2x = 40025;
constexpr UINT kAdd = 40026;
constexpr UINT kSubtract = 40027;
constexpr UINT kModulate = 40028;
constexpr UINT kModulate2x = 40029;
constexpr UINT kModulate4x = 40030;
constexpr UINT kMinNone = 40031;
constexpr UINT kMinAnisotropic = 40034;
constexpr UINT kMagNone = 40035;
constexpr UINT kMagAnisotropic = 40038;
constexpr UINT kAnisotropy1 = 40039;
constexpr UINT kAnisotropy64 = 40045;

}  // namespace

LRESULT CALLBACK CGameApp::StaticWindowProc(HWND hWnd, UINT message, WPARAM wParam, LPARAM lParam) {
  // The object's address comes with the creation parameters; messages ahead
  // of WM_CREATE find none and get the platform's default.
  if (message == WM_CREATE && lParam) {
    const auto* create = reinterpret_cast<const CREATESTRUCTA*>(lParam);
    SetWindowLongA(hWnd, GWL_USERDATA, reinterpret_cast<LONG_PTR>(create->lpCreateParams));
  }
  auto* app = reinterpret_cast<CGameApp*>(GetWindowLongA(hWnd, GWL_USERDATA));
  if (!app) return DefWindowProcA(hWnd, message, wParam, lParam);
  return app->HandleWindowMessage(hWnd, message, wParam, lParam);
}

LRESULT CGameApp::HandleWindowMessage(HWND hWnd, UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_CREATE:
      return 0;

    case WM_DESTROY:
    case WM_CLOSE:
      // The window itself goes with Shutdown.
      PostQuitMessage(0);
      return 0;

    case WM_SIZE:
      if (wParam == SIZE_MINIMIZED) {
        m_active = false;
        return 0;
      }
      m_active = true;
      m_viewWidth = LOWORD(lParam);
      m_viewHeight = HIWORD(lParam);
      if (m_device) {
        // A null window: its style and place stay as they are.
        CMyD3DInit initialize;
        initialize.ResetDisplay(m_device, m_settings, nullptr);
        ApplyRenderStates();
      }
      return 0;

    case WM_KEYDOWN:
      switch (wParam) {
        case VK_RETURN:
          if ((GetKeyState(VK_SHIFT) & 0xFF00) && m_device) {
            // Window <-> full screen. ResetDisplay restyles and places the
            // window, which sends WM_SIZE into the call: a nested reset runs
            // first, then this one goes on with its own.
            m_settings.m_windowed = !m_settings.m_windowed;
            CMyD3DInit initialize;
            initialize.ResetDisplay(m_device, m_settings, m_hWnd);
            ApplyRenderStates();
            if (m_settings.m_windowed) SetMenu(m_hWnd, m_hMenu);
          }
          break;
        case VK_ESCAPE:
          PostQuitMessage(0);
          break;
        default:
          break;
      }
      return 0;

    case WM_LBUTTONDOWN:
      // Mouse look: ReadInput puts the cursor back to this point each frame.
      SetCapture(m_hWnd);
      GetCursorPos(&m_captureCursor);
      return 0;

    case WM_LBUTTONUP:
      ReleaseCapture();
      return 0;

    case WM_COMMAND: {
      const UINT command = LOWORD(wParam);
      const CameraColumn* camera = nullptr;
      switch (command) {
        case ID_FILE_EXIT:
          SendMessageA(m_hWnd, WM_CLOSE, 0, 0);
          return 0;
        case ID_FILE_CHANGE_DEVICE:
          ChangeDevice();
          break;
        case ID_CAMERA_FIRST_PERSON:
          camera = &kFirstPerson;
          break;
        case ID_CAMERA_SPACE_CRAFT:
          camera = &kSpaceCraft;
          break;
        case ID_CAMERA_THIRD_PERSON:
          camera = &kThirdPerson;
          break;
        default:
          break;
      }
      if (camera) {
        CheckMenuRadioItem(m_hMenu, ID_CAMERA_FIRST_PERSON, ID_CAMERA_THIRD_PERSON, command,
                           MF_BYCOMMAND);
        m_player.SetFriction(camera->friction);
        m_player.SetGravity(camera->gravity);
        m_player.SetMaxVelocityXZ(camera->maxVelocityXZ);
        m_player.SetMaxVelocityY(camera->maxVelocityY);
        m_player.SetCameraOffset(camera->cameraOffset);
        m_player.SetCameraLag(camera->cameraLag);
        m_player.SetCameraMode(camera->mode);
        m_camera = m_player.GetCamera();
        return DefWindowProcA(hWnd, message, wParam, lParam);
      }

      // Render-state commands set one option; ApplyRenderStates checks it
      // against the device, applies it and moves the menu's marks.
      bool renderState = true;
      if (command == kSolid) {
        m_fillMode = D3DFILL_SOLID;
      } else if (command == kWireframe) {
        m_fillMode = D3DFILL_WIREFRAME;
      } else if (command == kMipNone) {
        m_mipFilter = D3DTEXF_NONE;
      } else if (command == kMipPoint) {
        m_mipFilter = D3DTEXF_POINT;
      } else if (command == kMipLinear) {
        m_mipFilter = D3DTEXF_LINEAR;
      } else if (command == kSinglePass || command == kMultiPass) {
        m_singlePass = command == kSinglePass;
        m_terrain.SetSinglePass(m_singlePass);
      } else if (command == kAddSigned) {
        m_colorOp = D3DTOP_ADDSIGNED;
      } else if (command == kAddSigned2x) {
        m_colorOp = D3DTOP_ADDSIGNED2X;
      } else if (command == kAdd) {
        m_colorOp = D3DTOP_ADD;
      } else if (command == kSubtract) {
        m_colorOp = D3DTOP_SUBTRACT;
      } else if (command == kModulate) {
        m_colorOp = D3DTOP_MODULATE;
      } else if (command == kModulate2x) {
        m_colorOp = D3DTOP_MODULATE2X;
      } else if (command == kModulate4x) {
        m_colorOp = D3DTOP_MODULATE4X;
      } else if (command >= kMinNone && command <= kMinAnisotropic) {
        // None, Point, Linear, Anisotropic are the filter values 0 to 3.
        m_minFilter = static_cast<D3DTEXTUREFILTERTYPE>(command - kMinNone);
      } else if (command >= kMagNone && command <= kMagAnisotropic) {
        m_magFilter = static_cast<D3DTEXTUREFILTERTYPE>(command - kMagNone);
      } else if (command >= kAnisotropy1 && command <= kAnisotropy64) {
        m_maxAnisotropy = 1u << (command - kAnisotropy1);  // 1, 2, 4, ... 64
      } else {
        renderState = false;
      }
      if (renderState) ApplyRenderStates();
      return DefWindowProcA(hWnd, message, wParam, lParam);
    }

    default:
      return DefWindowProcA(hWnd, message, wParam, lParam);
  }
}
