// Keyboard table, mouse capture, cursor, clock and message boxes: the calls
// whose answers come from the back end in force (SDL or the script).
#include <chrono>
#include <cstdio>
#include <thread>

#include "platform/win32/Win32State.h"

using namespace win32::detail;

// ---- keyboard ------------------------------------------------------------------------

BOOL GetKeyboardState(PBYTE lpKeyState) {
  if (!lpKeyState) return FALSE;
  const BYTE* keys = GetState().keys;
  for (int i = 0; i < 256; ++i) lpKeyState[i] = keys[i];
  return TRUE;
}

SHORT GetKeyState(int nVirtKey) {
  if (nVirtKey < 0 || nVirtKey > 255) return 0;
  const BYTE key = GetState().keys[nVirtKey];
  // Held: every bit of the high byte, as the platform reports it (0xFF80).
  SHORT result = (key & 0x80) ? static_cast<SHORT>(0xFF80) : static_cast<SHORT>(0);
  if (key & 0x01) result = static_cast<SHORT>(result | 0x0001);
  return result;
}

SHORT GetAsyncKeyState(int vKey) {
  if (vKey < 0 || vKey > 255) return 0;
  return (GetState().asyncKeys[vKey] & 0x80) ? static_cast<SHORT>(0x8000) : static_cast<SHORT>(0);
}

// ---- capture and cursor ------------------------------------------------------------------

HWND SetCapture(HWND hWnd) {
  State& state = GetState();
  HWND former = GetCapture();
  if (!FromHandle(hWnd)) return former;
  if (former && former != hWnd) {
    SendMessageA(former, WM_CAPTURECHANGED, 0, reinterpret_cast<LPARAM>(hWnd));
  }
  state.capture = hWnd;
  GetSource().CaptureMouse(true);
  return former;
}

BOOL ReleaseCapture() {
  State& state = GetState();
  HWND former = GetCapture();
  state.capture = nullptr;
  if (former) {
    GetSource().CaptureMouse(false);
    SendMessageA(former, WM_CAPTURECHANGED, 0, 0);
  }
  return TRUE;
}

HWND GetCapture() {
  State& state = GetState();
  if (state.capture && !FromHandle(state.capture)) state.capture = nullptr;
  return state.capture;
}

BOOL GetCursorPos(POINT* lpPoint) {
  if (!lpPoint) return FALSE;
  *lpPoint = GetSource().Cursor();
  return TRUE;
}

BOOL SetCursorPos(int X, int Y) {
  GetSource().SetCursorPosition(X, Y);
  return TRUE;
}

HCURSOR SetCursor(HCURSOR hCursor) {
  State& state = GetState();
  HCURSOR former = state.cursor;
  state.cursor = hCursor;
  GetSource().ShowCursor(hCursor != nullptr);
  return former;
}

// ---- time -------------------------------------------------------------------------------

BOOL QueryPerformanceFrequency(LARGE_INTEGER* lpFrequency) {
  if (!lpFrequency) return FALSE;
  lpFrequency->QuadPart = kCounterFrequency;
  return TRUE;
}

BOOL QueryPerformanceCounter(LARGE_INTEGER* lpPerformanceCount) {
  if (!lpPerformanceCount) return FALSE;
  lpPerformanceCount->QuadPart = GetSource().Counter();
  return TRUE;
}

DWORD timeGetTime() {
  return static_cast<DWORD>(GetSource().Counter() / (kCounterFrequency / 1000));
}

DWORD GetTickCount() {
  return timeGetTime();
}

void Sleep(DWORD dwMilliseconds) {
  // A scripted run has no real time to wait for.
  if (win32::IsScripted()) return;
  std::this_thread::sleep_for(std::chrono::milliseconds(dwMilliseconds));
}

// ---- message boxes ----------------------------------------------------------------------

int MessageBoxA(HWND, LPCSTR lpText, LPCSTR lpCaption, UINT uType) {
  // The platform's caption when none is given is "Error".
  const char* caption = lpCaption ? lpCaption : "Error";
  const char* text = lpText ? lpText : "";
  std::fprintf(stderr, "%s: %s\n", caption, text);
  std::fflush(stderr);
  if (!win32::IsScripted() && SdlMessageBoxCanBeAnswered()) SdlShowMessageBox(caption, text, uType);
  return IDOK;
}
