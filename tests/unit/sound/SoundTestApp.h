// A CGameApp for sound tests: built on zero-filled heap storage as g_App is in
// static storage, with the recording BASS fake behind it and the scripted,
// windowless input of the win32 layer in front of it.
#pragma once

#include <cstdint>
#include <cstdlib>
#include <new>

#include "app/GameApp.h"
#include "platform/crt/crt.h"
#include "platform/win32/Win32Script.h"
#include "platform/win32/windows.h"
#include "support/FakeBass.h"

namespace soundtest {

constexpr BYTE kTalkKey = 0x54;  // T
constexpr BYTE kJumpKey = 0x4A;  // J

// The generator's state after `draws` more draws from `state`.
inline std::uint32_t Advanced(std::uint32_t state, int draws) {
  for (int i = 0; i < draws; ++i) state = state * 214013u + 2531011u;
  return state;
}

// The result of the first draw from `state`.
inline int FirstDraw(std::uint32_t state) { return int((Advanced(state, 1) >> 16) & 0x7FFF); }

// Lets the scripted back end deliver what it holds for the next frame.
inline void Pump() {
  MSG msg;
  for (int i = 0; i < 64 && PeekMessageA(&msg, NULL, 0, 0, PM_REMOVE); ++i) {
  }
}

// From now on exactly these keys are held.
inline void Hold(std::initializer_list<BYTE> keys) {
  win32::script::Options options;
  options.realWindows = false;
  win32::script::Enable(options);
  win32::script::HoldKeys(0, keys);
  Pump();
}

class App {
 public:
  App() {
    storage_ = std::calloc(1, sizeof(CGameApp));
    app_ = new (storage_) CGameApp();
  }
  ~App() {
    app_->~CGameApp();
    std::free(storage_);
  }
  App(const App&) = delete;
  App& operator=(const App&) = delete;
  CGameApp* operator->() { return app_; }
  CGameApp& operator*() { return *app_; }

 private:
  void* storage_;
  CGameApp* app_;
};

}  // namespace soundtest
