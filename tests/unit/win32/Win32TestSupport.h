// A recording window procedure and a scripted, display-free start for the
// tests of the win32 layer.
#pragma once

#include <vector>

#include "platform/win32/Win32Script.h"
#include "platform/win32/windows.h"

namespace win32test {

struct Received {
  UINT message;
  WPARAM wParam;
  LPARAM lParam;
  void* createParam;  // lpCreateParams of WM_NCCREATE / WM_CREATE
};

// Every message that reached RecordingProc, in order.
std::vector<Received>& Log();
std::vector<UINT> Messages();

LRESULT CALLBACK RecordingProc(HWND hWnd, UINT message, WPARAM wParam, LPARAM lParam);

// Scripted back end with record-only windows, an empty log, and a class
// "karvo-test" on RecordingProc.
void StartScripted();

// A hidden overlapped window of the test class, 1200 x 700.
HWND MakeWindow(void* createParam = nullptr);

// The next message that PeekMessageA takes; message 0 when the queue is empty.
MSG Take(UINT remove = PM_REMOVE);

// Runs PeekMessageA until it reports an empty queue, dispatching what it
// takes; returns the numbers of the messages taken, WM_QUIT included, and
// the messages themselves in `taken` when given.
std::vector<UINT> DrainUntilFrame(std::vector<MSG>* taken = nullptr);

}  // namespace win32test
