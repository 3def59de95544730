#include "Win32TestSupport.h"

namespace win32test {

std::vector<Received>& Log() {
  static std::vector<Received> log;
  return log;
}

std::vector<UINT> Messages() {
  std::vector<UINT> numbers;
  for (const Received& received : Log()) numbers.push_back(received.message);
  return numbers;
}

LRESULT CALLBACK RecordingProc(HWND hWnd, UINT message, WPARAM wParam, LPARAM lParam) {
  const bool creating = message == WM_CREATE || message == WM_NCCREATE;
  Log().push_back({message, wParam, lParam,
                   creating ? reinterpret_cast<CREATESTRUCTA*>(lParam)->lpCreateParams : nullptr});
  return DefWindowProcA(hWnd, message, wParam, lParam);
}

void StartScripted() {
  win32::script::Enable({.realWindows = false});
  Log().clear();
  WNDCLASSA windowClass = {};
  windowClass.lpfnWndProc = RecordingProc;
  windowClass.hInstance = GetModuleHandleA(nullptr);
  windowClass.lpszClassName = "karvo-test";
  RegisterClassA(&windowClass);  // 0 after the first test: the class stays
}

HWND MakeWindow(void* createParam) {
  return CreateWindowExA(0, "karvo-test", "test", WS_OVERLAPPEDWINDOW, CW_USEDEFAULT, CW_USEDEFAULT,
                         1200, 700, nullptr, nullptr, GetModuleHandleA(nullptr), createParam);
}

MSG Take(UINT remove) {
  MSG msg{};
  return PeekMessageA(&msg, nullptr, 0, 0, remove) ? msg : MSG{};
}

std::vector<UINT> DrainUntilFrame(std::vector<MSG>* taken) {
  std::vector<UINT> numbers;
  MSG msg;
  while (PeekMessageA(&msg, nullptr, 0, 0, PM_REMOVE)) {
    numbers.push_back(msg.message);
    if (taken) taken->push_back(msg);
    if (msg.message != WM_QUIT) DispatchMessageA(&msg);
  }
  return numbers;
}

}  // namespace win32test
