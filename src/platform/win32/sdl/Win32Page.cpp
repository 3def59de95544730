// The page side of the frame loop and of message boxes (see Win32Page.h). The
// page shell (web/shell.html) shows the messages.
#include "platform/win32/sdl/Win32Page.h"

#ifdef __EMSCRIPTEN__
#include <emscripten.h>

// clang-format off
// Module.karvoFrames counts the frames shown, and karvoFirstFrame holds when
// the first one was (milliseconds since the page began loading), for the
// page and its tests. The program's end (exit, once main returns) unwinds
// through the resumed frame as an ExitStatus; it is the page's to show, not
// an error.
EM_JS(void, karvo_await_animation_frame, (), {
  Module.karvoFrames = (Module.karvoFrames || 0) + 1;
  if (Module.karvoFrames == 1) Module.karvoFirstFrame = performance.now();
  Asyncify.handleSleep(function(wakeUp) {
    requestAnimationFrame(function() {
      try {
        wakeUp();
      } catch (e) {
        if (!(e instanceof ExitStatus)) throw e;
      }
    });
  });
});
EM_JS(void, karvo_show_message, (const char* caption, const char* text, int error), {
  if (Module.karvoMessage) Module.karvoMessage(UTF8ToString(caption), UTF8ToString(text), !!error);
});
// clang-format on
#endif

namespace win32::page {

namespace {
bool s_awaited = false;  // a frame was awaited since the last boundary
}  // namespace

bool InPage() {
#ifdef __EMSCRIPTEN__
  return true;
#else
  return false;
#endif
}

void AwaitAnimationFrame() {
#ifdef __EMSCRIPTEN__
  karvo_await_animation_frame();
  s_awaited = true;
#endif
}

void FrameBoundary() {
  if (InPage() && !s_awaited) AwaitAnimationFrame();
  s_awaited = false;
}

bool ShowMessage(const char* caption, const char* text, bool error) {
#ifdef __EMSCRIPTEN__
  karvo_show_message(caption, text, error ? 1 : 0);
  return true;
#else
  (void)caption;
  (void)text;
  (void)error;
  return false;
#endif
}

}  // namespace win32::page
