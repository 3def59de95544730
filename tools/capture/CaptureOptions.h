// The capture tool's command line: which frames to write, which keys are held
// in which frames, and which camera and render options the menu should set
// before the first frame. Parsing is kept apart from the run so that it can
// be tested without a display.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

struct CaptureOptions {
  // A key held down from frame first to frame last, both included.
  struct Hold {
    std::uint8_t virtualKey = 0;
    std::uint32_t first = 0;
    std::uint32_t last = 0;
  };

  std::vector<std::uint32_t> frames;  // frames to write, ascending, 1 is the first frame drawn
  std::vector<Hold> holds;
  std::vector<std::uint32_t> commands;  // menu commands, sent in this order before frame 1
  std::string outDir = ".";
  std::string assetsDir;  // folder to run in; empty: the working directory
  std::string prefix = "frame";
  double step = 1.0 / 60.0;  // seconds the fixed clock advances per frame
  bool dialog = false;       // write the settings dialog after the last frame
  bool place = false;        // put the walker at placeAt before frame 1
  float placeAt[3] = {0.0f, 0.0f, 0.0f};
  bool look = false;  // turn the walker to lookAt (yaw, pitch in degrees) before frame 1
  float lookAt[2] = {0.0f, 0.0f};
  bool plain = false;    // the GL back end's plain path, which the fast one must match
  bool es = false;       // an OpenGL ES 3.0 context, the web page's drawing path
  bool depth24 = false;  // no 32-bit depth buffer offered, so the program takes a 24-bit one
  std::uint32_t rainOffFrame = 0;  // the rain is switched off before this frame; 0: never
  bool help = false;

  // The last frame the run needs: the largest frame asked for.
  std::uint32_t LastFrame() const { return frames.empty() ? 0 : frames.back(); }
  // Whether the key is held in the frame.
  bool IsHeld(std::uint8_t virtualKey, std::uint32_t frame) const;
};

// Parses argv[1..argc-1]. On a bad argument returns false with a one-line
// reason in error; options is then unspecified.
bool ParseCaptureOptions(int argc, const char* const* argv, CaptureOptions& options,
                         std::string& error);

// The usage text printed by --help and after a bad argument.
const char* CaptureUsage();
