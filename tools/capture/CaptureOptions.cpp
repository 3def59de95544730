// Command-line parsing of the capture tool. Names map onto the program's own
// menu command numbers and virtual-key codes, one table row per name.
#include "CaptureOptions.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <iterator>

namespace {

struct NamedValue {
  const char* name;
  std::uint32_t value;
};

// Keys the program polls, by the names a user would type.
constexpr NamedValue kKeys[] = {
    {"up", 0x26},     // VK_UP: walk forward
    {"down", 0x28},   // VK_DOWN: walk back
    {"left", 0x25},   // VK_LEFT: turn left
    {"right", 0x27},  // VK_RIGHT: turn right
    {"shift", 0x10},  // VK_SHIFT
    {"space", 0x20},  // VK_SPACE
};

constexpr NamedValue kCameras[] = {
    {"first", 40010},  // First Person Mode
    {"space", 40011},  // Space Craft Mode
    {"third", 40012},  // Third Person Mode
};

constexpr NamedValue kColorOps[] = {
    {"addsigned", 40024}, {"addsigned2x", 40025}, {"add", 40026},        {"subtract", 40027},
    {"modulate", 40028},  {"modulate2x", 40029},  {"modulate4x", 40030},
};

// First command of each filter group; none, point, linear, anisotropic follow.
constexpr NamedValue kFilterNames[] = {
    {"none", 0}, {"point", 1}, {"linear", 2}, {"anisotropic", 3}};
constexpr std::uint32_t MIN_FILTER_NONE = 40031;
constexpr std::uint32_t MAG_FILTER_NONE = 40035;
constexpr std::uint32_t MIP_FILTER_NONE = 40019;
constexpr std::uint32_t ANISOTROPY_1 = 40039;
constexpr std::uint32_t kAnisotropySteps[] = {1, 2, 4, 8, 16, 32, 64};

template <std::size_t N>
bool Lookup(const NamedValue (&table)[N], const std::string& name, std::uint32_t& value) {
  for (const NamedValue& row : table) {
    if (name == row.name) {
      value = row.value;
      return true;
    }
  }
  return false;
}

// A whole decimal number that fits 32 bits; nothing else accepted.
bool ParseNumber(const std::string& text, std::uint32_t& value) {
  if (text.empty() || text.size() > 10 ||
      !std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; })) {
    return false;
  }
  const unsigned long long parsed = std::strtoull(text.c_str(), nullptr, 10);
  if (parsed > 0xFFFFFFFFull) return false;
  value = static_cast<std::uint32_t>(parsed);
  return true;
}

// A key by name, a single letter or a digit (their virtual keys are the
// upper-case ASCII codes).
bool ParseKey(const std::string& name, std::uint8_t& key) {
  std::uint32_t value = 0;
  if (Lookup(kKeys, name, value)) {
    key = static_cast<std::uint8_t>(value);
    return true;
  }
  if (name.size() == 1) {
    const char c = name[0];
    if (c >= 'a' && c <= 'z')
      key = static_cast<std::uint8_t>(c - 'a' + 'A');
    else if ((c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9'))
      key = static_cast<std::uint8_t>(c);
    else
      return false;
    return true;
  }
  return false;
}

// "key:first-last" or "key:frame".
bool ParseHold(const std::string& text, CaptureOptions::Hold& hold) {
  const std::size_t colon = text.find(':');
  if (colon == std::string::npos || !ParseKey(text.substr(0, colon), hold.virtualKey)) return false;
  const std::string range = text.substr(colon + 1);
  const std::size_t dash = range.find('-');
  if (dash == std::string::npos) {
    if (!ParseNumber(range, hold.first)) return false;
    hold.last = hold.first;
    return true;
  }
  return ParseNumber(range.substr(0, dash), hold.first) &&
         ParseNumber(range.substr(dash + 1), hold.last) && hold.first <= hold.last;
}

// "1,60,120"; frames start at 1; the list comes out sorted without repeats.
bool ParseFrames(const std::string& text, std::vector<std::uint32_t>& frames) {
  std::size_t start = 0;
  while (start <= text.size()) {
    const std::size_t comma = std::min(text.find(',', start), text.size());
    std::uint32_t frame = 0;
    if (!ParseNumber(text.substr(start, comma - start), frame) || frame == 0) return false;
    frames.push_back(frame);
    start = comma + 1;
  }
  std::sort(frames.begin(), frames.end());
  frames.erase(std::unique(frames.begin(), frames.end()), frames.end());
  return !frames.empty();
}

// "x,y,z": three finite decimal numbers within the reach of a float.
// N numbers separated by commas, each finite and within 1e7.
template <int N>
bool ParsePoint(const std::string& text, float (&point)[N]) {
  const char* at = text.c_str();
  for (int i = 0; i < N; ++i) {
    char* end = nullptr;
    errno = 0;
    const double v = std::strtod(at, &end);
    if (errno != 0 || end == at || !std::isfinite(v) || std::fabs(v) > 1e7) return false;
    point[i] = static_cast<float>(v);
    if (*end != (i < N - 1 ? ',' : '\0')) return false;
    at = end + 1;
  }
  return true;
}

}  // namespace

bool CaptureOptions::IsHeld(std::uint8_t virtualKey, std::uint32_t frame) const {
  for (const Hold& hold : holds) {
    if (hold.virtualKey == virtualKey && frame >= hold.first && frame <= hold.last) return true;
  }
  return false;
}

const char* CaptureUsage() {
  return "usage: karvo-capture --frames N[,N...] [options]   (run inside the assets folder)\n"
         "  --frames LIST        frames to write as PNG, 1 is the first frame drawn\n"
         "  --hold KEY:A-B       hold KEY from frame A to frame B (both included); repeatable\n"
         "                       keys: up down left right shift space, or a letter or digit\n"
         "  --camera MODE        first | space | third\n"
         "  --wireframe          wireframe fill mode\n"
         "  --multipass          the ground in two passes (default: single pass)\n"
         "  --dialog             after the last frame, open Change Device and write the\n"
         "                       settings dialog as NAME_dialog.png, then cancel it\n"
         "  --colorop OP         addsigned addsigned2x add subtract modulate modulate2x "
         "modulate4x\n"
         "  --min F, --mag F     none | point | linear | anisotropic\n"
         "  --mip F              none | point | linear\n"
         "  --anisotropy N       1 2 4 8 16 32 64\n"
         "  --step SECONDS       fixed clock step per frame (default 1/60)\n"
         "  --place X,Y,Z        put the walker there before the first frame\n"
         "  --look YAW,PITCH     turn the walker so, in degrees (pitch below 0 looks up)\n"
         "  --plain              draw every call in order as it comes (the reference path)\n"
         "  --depth24            offer no 32-bit depth buffer: the program takes a 24-bit one\n"
         "  --es                 draw on OpenGL ES 3.0, as a web page does (WebGL2)\n"
         "  --rain-off N         switch the rain off before frame N\n"
         "  --out DIR            folder for the files (default .)\n"
         "  --assets DIR         the assets folder to run in (default: the working directory)\n"
         "  --prefix NAME        file names NAME_0001.png ... (default frame)\n";
}

bool ParseCaptureOptions(int argc, const char* const* argv, CaptureOptions& options,
                         std::string& error) {
  options = CaptureOptions{};
  for (int i = 1; i < argc; ++i) {
    const std::string arg = argv[i];
    if (arg == "--help" || arg == "-h") {
      options.help = true;
      continue;
    }
    if (arg == "--wireframe") {
      options.commands.push_back(40014);
      continue;
    }
    if (arg == "--multipass") {
      options.commands.push_back(40023);
      continue;
    }
    if (arg == "--dialog") {
      options.dialog = true;
      continue;
    }
    if (arg == "--plain") {
      options.plain = true;
      continue;
    }
    if (arg == "--depth24") {
      options.depth24 = true;
      continue;
    }
    if (arg == "--es") {
      options.es = true;
      continue;
    }
    // Every other option takes one value.
    if (i + 1 >= argc) {
      error = "missing value after " + arg;
      return false;
    }
    const std::string value = argv[++i];
    std::uint32_t number = 0;
    bool ok = true;
    if (arg == "--frames") {
      ok = ParseFrames(value, options.frames);
    } else if (arg == "--hold") {
      CaptureOptions::Hold hold;
      ok = ParseHold(value, hold);
      if (ok) options.holds.push_back(hold);
    } else if (arg == "--camera") {
      ok = Lookup(kCameras, value, number);
      if (ok) options.commands.push_back(number);
    } else if (arg == "--colorop") {
      ok = Lookup(kColorOps, value, number);
      if (ok) options.commands.push_back(number);
    } else if (arg == "--min" || arg == "--mag" || arg == "--mip") {
      const std::uint32_t first = arg == "--min"   ? MIN_FILTER_NONE
                                  : arg == "--mag" ? MAG_FILTER_NONE
                                                   : MIP_FILTER_NONE;
      ok = Lookup(kFilterNames, value, number) && !(arg == "--mip" && number == 3);
      if (ok) options.commands.push_back(first + number);
    } else if (arg == "--anisotropy") {
      ok = false;
      if (ParseNumber(value, number)) {
        for (std::uint32_t k = 0; k < std::size(kAnisotropySteps); ++k) {
          if (kAnisotropySteps[k] == number) {
            options.commands.push_back(ANISOTROPY_1 + k);
            ok = true;
          }
        }
      }
    } else if (arg == "--step") {
      char* end = nullptr;
      errno = 0;
      const double step = std::strtod(value.c_str(), &end);
      ok = errno == 0 && end != value.c_str() && *end == '\0' && step > 0.0 && step <= 10.0;
      if (ok) options.step = step;
    } else if (arg == "--place") {
      ok = options.place = ParsePoint(value, options.placeAt);
    } else if (arg == "--look") {
      ok = options.look = ParsePoint(value, options.lookAt);
    } else if (arg == "--rain-off") {
      ok = ParseNumber(value, options.rainOffFrame) && options.rainOffFrame > 0;
    } else if (arg == "--out") {
      ok = !value.empty();
      options.outDir = value;
    } else if (arg == "--assets") {
      ok = !value.empty();
      options.assetsDir = value;
    } else if (arg == "--prefix") {
      ok = !value.empty() && value.find('/') == std::string::npos;
      options.prefix = value;
    } else {
      error = "unknown option " + arg;
      return false;
    }
    if (!ok) {
      error = "bad value for " + arg + ": " + value;
      return false;
    }
  }
  if (!options.help && options.frames.empty()) {
    error = "no frames asked for (--frames)";
    return false;
  }
  return true;
}
