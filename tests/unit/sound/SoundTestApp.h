// A CGameApp for sound tests: built on zero-filled heap storage as g_App is in
// static storage, with the recording BASS fake behind it.
#pragma once

#include <cstdlib>
#include <new>

#include "app/GameApp.h"
#include "support/FakeBass.h"

namespace soundtest {

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
