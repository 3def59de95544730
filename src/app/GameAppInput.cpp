// CGameApp::ReadInput: the keyboard and the captured mouse become turns and
// steps of the player, then the physics step of the frame runs and the view
// goes to the device. The keyboard is polled as a whole table three times;
// the turn amounts are per frame, the step distance per second.
#include "app/GameApp.h"
#include "view/Camera.h"

namespace {

// Key state tables, filled at the start and before the arrows (s_keyState)
// and after the mouse (s_moveKeyState).
BYTE s_keyState[256];
BYTE s_moveKeyState[256];

constexpr BYTE VK_KEY_A = 0x41;
constexpr BYTE VK_KEY_J = 0x4A;
constexpr BYTE VK_KEY_Q = 0x51;
constexpr BYTE VK_KEY_S = 0x53;
constexpr BYTE VK_KEY_X = 0x58;
constexpr BYTE VK_KEY_Z = 0x5A;

constexpr float KEY_TURN = 0.5f;       // degrees per frame
constexpr double MOUSE_DIVISOR = 3.0;  // pixels per degree
constexpr float STEP_SCALE = 500.0f;   // distance per second given to MoveByFlags
constexpr float JUMP_LIFT = 7.0f;      // units per frame while J is held

bool Held(const BYTE* keys, BYTE vk) {
  return (keys[vk] & 0xF0) != 0;
}

}  // namespace

void CGameApp::ReadInput() {
  std::uint32_t direction = 0;
  float mouseX = 0.0f;
  float mouseY = 0.0f;

  if (!GetKeyboardState(s_keyState)) return;
  if (Held(s_keyState, VK_UP)) direction |= MOVE_FORWARD;
  if (Held(s_keyState, VK_DOWN)) direction |= MOVE_BACKWARD;
  if (Held(s_keyState, VK_KEY_Z)) direction |= MOVE_LEFT;
  if (Held(s_keyState, VK_KEY_X)) direction |= MOVE_RIGHT;
  if (direction != 0) m_playerHasMoved = 1;

  // J lifts the body directly, every frame it is held, and sounds at once,
  // even before the first step.
  if (Held(s_keyState, VK_KEY_J)) {
    m_player.Move(D3DXVECTOR3(0.0f, JUMP_LIFT, 0.0f), false);
    if (m_soundJump.m_channel != 0) BASS_ChannelPlay(m_soundJump.m_channel, FALSE);
  }
  if (m_playerHasMoved != 0) RunSoundEvents(direction, s_keyState);

  if (Held(s_keyState, VK_KEY_A)) m_player.Rotate(KEY_TURN, 0.0f, 0.0f);
  if (Held(s_keyState, VK_KEY_Q)) m_player.Rotate(-KEY_TURN, 0.0f, 0.0f);

  if (!GetKeyboardState(s_keyState)) return;
  if (Held(s_keyState, VK_LEFT)) m_player.Rotate(0.0f, -KEY_TURN, 0.0f);
  if (Held(s_keyState, VK_RIGHT)) m_player.Rotate(0.0f, KEY_TURN, 0.0f);

  // Mouse look while the left button holds the capture: the cursor is hidden
  // and put back every frame, so its offset is this frame's motion.
  if (m_hWnd != nullptr && GetCapture() == m_hWnd) {
    SetCursor(nullptr);
    POINT CursorPos;
    if (GetCursorPos(&CursorPos)) {
      mouseX =
          static_cast<float>(static_cast<double>(CursorPos.x - m_captureCursor.x) / MOUSE_DIVISOR);
      mouseY =
          static_cast<float>(static_cast<double>(CursorPos.y - m_captureCursor.y) / MOUSE_DIVISOR);
    }
    SetCursorPos(m_captureCursor.x, m_captureCursor.y);
  }

  if (!GetKeyboardState(s_moveKeyState)) return;
  const bool rising = Held(s_moveKeyState, VK_KEY_S);
  if (direction != 0 || mouseX != 0.0f || mouseY != 0.0f || rising) {
    if ((mouseX != 0.0f || mouseY != 0.0f) && !rising) {
      // The right button turns horizontal motion into roll.
      if (Held(s_keyState, VK_RBUTTON)) {
        m_player.Rotate(mouseY, 0.0f, -mouseX);
      } else {
        m_player.Rotate(mouseY, mouseX, 0.0f);
      }
    }
    if (direction != 0 || rising)
      m_player.MoveByFlags(direction, m_timer.GetTimeElapsed() * STEP_SCALE);
  }

  m_player.Update(m_timer.GetTimeElapsed());
  if (m_camera) m_camera->UpdateRenderView(m_device);
}
