// karvo-capture: runs the real program (WinMain, the same code as the
// game) with the scripted win32 back end: keys held by frame, menu commands
// before the first frame, a fixed clock. After each frame that was asked for
// it reads the back buffer and writes it as a PNG file.
//
// The program reads its assets from the working directory, so the tool runs
// inside the assets folder (or is given --assets and starts itself again
// there). Without a display it
// starts itself again under xvfb-run; without a sound card it uses SDL's
// dummy audio driver.
#include <stb/stb_image_write.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "CaptureOptions.h"
#include "app/GameApp.h"
#include "app/Resources.h"
#include "platform/d3d9/D3D9GLBackend.h"
#include "platform/win32/Win32Dialogs.h"
#include "platform/win32/script/Win32Script.h"
#include "platform/win32/windows.h"

namespace {

// Runs before g_App is constructed. Its sounds load then, so the audio driver
// has to be chosen even earlier (a user's own choice stands); and its frame
// timer reads the clock then, so the scripted clock must already be in force,
// or the first frame would measure the real clock against the scripted one.
// main starts the script again, with the options, on the same clock start.
__attribute__((constructor(101))) void BeforeTheProgram() {
  setenv("SDL_AUDIODRIVER", "dummy", 0);
  win32::script::Enable();
}

// Starts the tool again under a virtual X server when there is no display.
// Returns only when that is not possible or not needed.
void ReExecUnderXvfb(int argc, char** argv) {
  const char* display = std::getenv("DISPLAY");
  const char* wayland = std::getenv("WAYLAND_DISPLAY");
  const char* driver = std::getenv("SDL_VIDEODRIVER");
  const bool offscreen = driver && std::string(driver) == "offscreen";  // EGL without any display server
  if ((display && *display) || (wayland && *wayland) || offscreen || std::getenv("KARVO_CAPTURE_XVFB")) return;
  setenv("KARVO_CAPTURE_XVFB", "1", 1);
  std::string self = "/proc/self/exe";
  std::error_code error;
  const std::filesystem::path resolved = std::filesystem::read_symlink(self, error);
  if (!error) self = resolved.string();
  std::vector<char*> args = {const_cast<char*>("xvfb-run"), const_cast<char*>("-a"),
                             const_cast<char*>("-s"), const_cast<char*>("-screen 0 1600x1000x24"),
                             self.data()};
  for (int i = 1; i < argc; ++i) args.push_back(argv[i]);
  args.push_back(nullptr);
  execvp("xvfb-run", args.data());
  std::fprintf(stderr, "karvo-capture: no display, and xvfb-run could not be started\n");
}

// The sounds load while g_App is constructed, before main runs, from the
// working directory of the process. Given --assets, the tool therefore enters
// the folder and starts itself again there, without --assets and with the
// output folder made absolute. Returns only when the new start failed.
void RestartInside(const std::filesystem::path& assets, const std::filesystem::path& outDir,
                   int argc, char** argv) {
  std::error_code error;
  std::filesystem::current_path(assets, error);
  if (error) {
    std::fprintf(stderr, "karvo-capture: cannot enter %s\n", assets.c_str());
    return;
  }
  std::vector<std::string> kept;
  for (int i = 1; i < argc; ++i) {
    const std::string arg = argv[i];
    if ((arg == "--assets" || arg == "--out") && i + 1 < argc) {
      ++i;
      continue;
    }
    kept.push_back(arg);
  }
  kept.insert(kept.end(), {"--out", outDir.string()});
  std::vector<char*> args = {const_cast<char*>("karvo-capture")};
  for (std::string& arg : kept) args.push_back(arg.data());
  args.push_back(nullptr);
  execv("/proc/self/exe", args.data());
  std::fprintf(stderr, "karvo-capture: cannot start again in %s\n", assets.c_str());
}

struct CaptureRun {
  const CaptureOptions* options = nullptr;
  std::filesystem::path outDir;
  std::size_t next = 0;  // index into options->frames of the next frame to write
  int written = 0;
  int failed = 0;
};
CaptureRun s_run;

// Writes the back buffer as it stands: the frame just presented.
void WriteFrame(std::uint32_t frame) {
  std::vector<std::uint8_t> rgba;
  UINT width = 0;
  UINT height = 0;
  if (g_App.m_device == nullptr ||
      !d3d9gl::ReadBackBufferRGBA(g_App.m_device, rgba, width, height) || width == 0 ||
      height == 0) {
    std::fprintf(stderr, "karvo-capture: frame %u: no back buffer to read\n", frame);
    ++s_run.failed;
    return;
  }
  // The back buffer's alpha means nothing on screen; the file is opaque.
  for (std::size_t i = 3; i < rgba.size(); i += 4) rgba[i] = 0xFF;
  char name[64];
  std::snprintf(name, sizeof(name), "_%04u.png", frame);
  const std::filesystem::path path = s_run.outDir / (s_run.options->prefix + name);
  if (!stbi_write_png(path.c_str(), static_cast<int>(width), static_cast<int>(height), 4,
                      rgba.data(), static_cast<int>(width) * 4)) {
    std::fprintf(stderr, "karvo-capture: cannot write %s\n", path.c_str());
    ++s_run.failed;
    return;
  }
  std::printf("%s %ux%u\n", path.c_str(), width, height);
  ++s_run.written;
}

// The settings dialog as the person would see it, then Cancel.
bool WriteDialog(HWND dialog, std::uint32_t) {
  std::vector<std::uint8_t> rgba;
  int width = 0;
  int height = 0;
  // The first frame lays the dialog out; the second is the one shown.
  const bool drawn = win32::DrawDialog(dialog, nullptr, nullptr, nullptr) &&
                     win32::DrawDialog(dialog, &rgba, &width, &height);
  const std::filesystem::path path = s_run.outDir / (s_run.options->prefix + "_dialog.png");
  if (!drawn || !stbi_write_png(path.c_str(), width, height, 4, rgba.data(), width * 4)) {
    std::fprintf(stderr, "karvo-capture: cannot write %s\n", path.c_str());
    ++s_run.failed;
  } else {
    std::printf("%s %dx%d\n", path.c_str(), width, height);
  }
  return false;
}

// Script frame k is about to run, so frame k (counting the first drawn frame
// as 1) has just been presented.
void OnFrameBoundary(std::uint32_t scriptFrame) {
  const CaptureOptions& options = *s_run.options;
  // The world stands once script frame 0 is about to run; the changes of the
  // options go in before the frame they name is drawn.
  if (scriptFrame == 0 && options.place) {
    g_App.m_player.SetPosition(D3DXVECTOR3(options.placeAt[0], options.placeAt[1], options.placeAt[2]));
    g_App.m_player.SetVelocity(D3DXVECTOR3(0.0f, 0.0f, 0.0f));
  }
  if (scriptFrame == 0 && options.look) {
    CPlayer& player = g_App.m_player;
    player.Rotate(options.lookAt[1] - player.GetPitch(), options.lookAt[0] - player.GetYaw(), 0.0f);
  }
  if (options.rainOffFrame != 0 && scriptFrame + 1 == options.rainOffFrame) g_App.m_terrain.m_rainEnabled = false;
  const std::vector<std::uint32_t>& frames = s_run.options->frames;
  while (s_run.next < frames.size() && frames[s_run.next] < scriptFrame) ++s_run.next;
  if (s_run.next < frames.size() && frames[s_run.next] == scriptFrame) {
    WriteFrame(scriptFrame);
    ++s_run.next;
  }
}

// Turns the held ranges into key transitions of the script. Frame f of the
// options is script frame f - 1; a key that is down in frame f goes down
// before it runs.
void ScheduleKeys(const CaptureOptions& options) {
  std::vector<BYTE> keys;
  for (const CaptureOptions::Hold& hold : options.holds) {
    bool known = false;
    for (BYTE key : keys) known = known || key == hold.virtualKey;
    if (!known) keys.push_back(hold.virtualKey);
  }
  for (BYTE key : keys) {
    bool down = false;
    for (std::uint32_t frame = 1; frame <= options.LastFrame(); ++frame) {
      const bool held = options.IsHeld(key, frame);
      if (held && !down) win32::script::KeyDown(frame - 1, key);
      if (!held && down) win32::script::KeyUp(frame - 1, key);
      down = held;
    }
  }
}

}  // namespace

int main(int argc, char** argv) {
  CaptureOptions options;
  std::string error;
  if (!ParseCaptureOptions(argc, argv, options, error)) {
    std::fprintf(stderr, "karvo-capture: %s\n%s", error.c_str(), CaptureUsage());
    return 2;
  }
  if (options.help) {
    std::fputs(CaptureUsage(), stdout);
    return 0;
  }
  ReExecUnderXvfb(argc, argv);

  std::error_code fsError;
  const std::filesystem::path outDir = std::filesystem::absolute(options.outDir, fsError);
  if (fsError || (std::filesystem::create_directories(outDir, fsError), fsError)) {
    std::fprintf(stderr, "karvo-capture: cannot make %s\n", options.outDir.c_str());
    return 2;
  }
  if (!options.assetsDir.empty()) {
    RestartInside(options.assetsDir, outDir, argc, argv);
    return 2;
  }
  // A folder with a broken or missing asset is still run: the program's own
  // outcome for it is what a user of this tool wants to see.
  if (!std::filesystem::is_directory("Data")) {
    std::fprintf(stderr, "karvo-capture: no Data folder here; run inside the assets folder or give --assets\n");
    return 2;
  }

  s_run.options = &options;
  s_run.outDir = outDir;

  win32::script::Options script;
  script.fixedStep = options.step;
  script.realWindows = true;
  script.maxFrames =
      options.LastFrame() + 1;  // one more, so the last asked frame is read at a boundary
  win32::script::Enable(script);
  d3d9gl::UsePlainPath(options.plain);
  d3d9gl::OfferDepth32(!options.depth24);
  d3d9gl::UseEsContext(options.es);
  for (std::uint32_t command : options.commands) win32::script::Command(0, command);
  ScheduleKeys(options);
  win32::script::SetFrameCallback(OnFrameBoundary);
  if (options.dialog) {
    win32::script::Command(options.LastFrame(), ID_FILE_CHANGE_DEVICE);
    win32::script::SetDialogCallback(WriteDialog);
  }

  const int exitCode =
      WinMain(GetModuleHandleA(nullptr), nullptr, const_cast<char*>(""), SW_SHOWNORMAL);
  win32::script::SetFrameCallback(nullptr);

  const int missing = static_cast<int>(options.frames.size()) - s_run.written;
  if (s_run.failed > 0 && missing <= 0) return 1;
  if (missing > 0) {
    std::fprintf(stderr, "karvo-capture: %d of %zu frames not written (program exit code %d)\n",
                 missing, options.frames.size(), exitCode);
    return 1;
  }
  std::fprintf(stderr, "karvo-capture: %d frame%s written to %s\n", s_run.written, s_run.written == 1 ? "" : "s",
               outDir.c_str());
  return exitCode;
}
