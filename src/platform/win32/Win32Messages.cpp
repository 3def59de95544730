// The message queue: posting, peeking, dispatching, sending, quitting, and the
// platform's default window procedure.
//
// Order of PeekMessageA, as the platform keeps it: posted messages first, in
// the order they were posted; then a pending quit as WM_QUIT; then the back
// end brings in new input (SDL events or the script's frame), which is
// delivered the same way; only when nothing at all waits does it report an
// empty queue, which the frame loop takes as the moment to run a frame.
#include "platform/win32/Win32State.h"

using namespace win32::detail;

namespace {

bool Matches(const MSG& msg, HWND hWnd, UINT filterMin, UINT filterMax) {
  if (hWnd && msg.hwnd != hWnd) return false;
  if (filterMin == 0 && filterMax == 0) return true;
  return msg.message >= filterMin && msg.message <= filterMax;
}

bool TakePosted(MSG* out, HWND hWnd, UINT filterMin, UINT filterMax, bool remove) {
  auto& queue = GetState().queue;
  for (auto it = queue.begin(); it != queue.end(); ++it) {
    if (!Matches(it->msg, hWnd, filterMin, filterMax)) continue;
    *out = remove ? TakeOut(it) : it->msg;
    return true;
  }
  return false;
}

bool TakeQuit(MSG* out, UINT filterMin, UINT filterMax, bool remove) {
  State& state = GetState();
  if (!state.quitPending) return false;
  if ((filterMin != 0 || filterMax != 0) && (WM_QUIT < filterMin || WM_QUIT > filterMax)) {
    return false;
  }
  *out = {};
  out->message = WM_QUIT;
  out->wParam = static_cast<WPARAM>(state.quitCode);
  out->time = timeGetTime();
  GetCursorPos(&out->pt);
  if (remove) state.quitPending = false;
  return true;
}

}  // namespace

namespace win32::detail {

void Post(HWND hWnd, UINT message, WPARAM wParam, LPARAM lParam) {
  MSG msg = {};
  msg.hwnd = hWnd;
  msg.message = message;
  msg.wParam = wParam;
  msg.lParam = lParam;
  msg.time = timeGetTime();
  GetCursorPos(&msg.pt);
  GetState().queue.push_back({msg, {}});
}

}  // namespace win32::detail

BOOL PeekMessageA(MSG* lpMsg, HWND hWnd, UINT wMsgFilterMin, UINT wMsgFilterMax, UINT wRemoveMsg) {
  if (!lpMsg) return FALSE;
  const bool remove = (wRemoveMsg & PM_REMOVE) != 0;
  if (TakePosted(lpMsg, hWnd, wMsgFilterMin, wMsgFilterMax, remove)) return TRUE;
  if (TakeQuit(lpMsg, wMsgFilterMin, wMsgFilterMax, remove)) return TRUE;

  Source& source = GetSource();
  source.Pump();
  if (TakePosted(lpMsg, hWnd, wMsgFilterMin, wMsgFilterMax, remove)) return TRUE;
  if (TakeQuit(lpMsg, wMsgFilterMin, wMsgFilterMax, remove)) return TRUE;

  // Only the frame loop's own call (all messages, removing) marks a frame;
  // a filtered look or a peek that leaves messages in place does not.
  if (remove && !hWnd && wMsgFilterMin == 0 && wMsgFilterMax == 0) source.FrameBoundary();
  return FALSE;
}

BOOL TranslateMessage(const MSG* lpMsg) {
  if (!lpMsg) return FALSE;
  switch (lpMsg->message) {
    case WM_KEYDOWN:
    case WM_KEYUP:
    case WM_SYSKEYDOWN:
    case WM_SYSKEYUP:
      return TRUE;
    default:
      return FALSE;
  }
}

LRESULT DispatchMessageA(const MSG* lpMsg) {
  if (!lpMsg) return 0;
  Window* window = FromHandle(lpMsg->hwnd);
  if (!window || !window->proc) return 0;
  return window->proc(lpMsg->hwnd, lpMsg->message, lpMsg->wParam, lpMsg->lParam);
}

BOOL PostMessageA(HWND hWnd, UINT Msg, WPARAM wParam, LPARAM lParam) {
  if (hWnd && !FromHandle(hWnd)) return FALSE;
  Post(hWnd, Msg, wParam, lParam);
  return TRUE;
}

void PostQuitMessage(int nExitCode) {
  State& state = GetState();
  state.quitPending = true;
  state.quitCode = nExitCode;
}

LRESULT SendMessageA(HWND hWnd, UINT Msg, WPARAM wParam, LPARAM lParam) {
  Window* window = FromHandle(hWnd);
  if (!window || !window->proc) return 0;
  return window->proc(hWnd, Msg, wParam, lParam);
}

LRESULT DefWindowProcA(HWND hWnd, UINT Msg, WPARAM, LPARAM) {
  Window* window = FromHandle(hWnd);
  if (!window) return 0;
  switch (Msg) {
    case WM_NCCREATE:
      return TRUE;
    case WM_CLOSE:
      DestroyWindow(hWnd);
      return 0;
    case WM_MOUSEMOVE:
    case WM_SETCURSOR:
      // The class cursor comes back with the next cursor message, unless a
      // capture holds the mouse.
      if (!GetCapture() && window->cls->cursor) SetCursor(window->cls->cursor);
      return 0;
    default:
      return 0;
  }
}
