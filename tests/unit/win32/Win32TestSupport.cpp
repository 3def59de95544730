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
  void* createParam = nullptr;
  if (message == WM_CREATE || message == WM_NCCREATE) {
    createParam = reinterpret_cast<CREATESTRUCTA*>(lParam)->lpCreateParams;
  }
  Log().push_back({message, wParam, lParam, createParam});
  return DefWindowProcA(hWnd, message, wParam, lParam);
}

void StartScripted(double step) {
  win32::script::Options options;
  options.fixedStep = step;
  options.realWindows = false;
  win32::script::Enable(options);
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

std::vector<MSG> DrainUntilFrame() {
  std::vector<MSG> taken;
  MSG msg;
  while (PeekMessageA(&msg, nullptr, 0, 0, PM_REMOVE)) {
    taken.push_back(msg);
    if (msg.message != WM_QUIT) DispatchMessageA(&msg);
  }
  return taken;
}

std::vector<UINT> MessagesOf(const std::vector<MSG>& messages) {
  std::vector<UINT> numbers;
  for (const MSG& msg : messages) numbers.push_back(msg.message);
  return numbers;
}

}  // namespace win32test
