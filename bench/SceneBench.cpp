// Cost of the whole scene: the real program (WinMain with the scripted win32
// back end and a fixed clock, as the capture tool runs it) draws full frames
// at six places: the start, facing the two towers, on the high ground among
// the most trees, at the shore, under water and looking up at the flock. At
// each place frames take turns between the whole scene and the ground and sky
// alone (the plant arrays emptied for that frame, the drops and figures sent
// out of sight; the towers' eight walls and the water stay, and the drops and
// figures are still sent to the device) and the whole scene on the GL back
// end's plain path (every call in order as it comes). The median frame of
// each is reported with its GL draws, the DrawPrimitiveUP calls of the
// objects and the GL draws they were merged into, the ratio of the whole
// scene to ground and sky, and the speed-up of the fast path over the plain
// one, measured side by side.
//
//   karvo-bench-scene [--quick] [--frames N] [--depth24]   (inside the assets folder)
//
// --depth24 offers the program no 32-bit depth buffer, so that it takes a
// 24-bit one, where the fast path holds the sky back.
//
// A frame is timed from one frame boundary to the next, so it holds all of
// the program's frame: input, sounds, drawing and Present. The exit status is
// non-zero when the program fails or the object draws of a frame reach GL as
// more than kUpDrawBudget draws; the time ratio is reported, not enforced, as
// timings on a shared machine are noisy.
#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <string>
#include <utility>
#include <vector>

#include "app/GameApp.h"
#include "platform/d3d9/D3D9GLBackend.h"
#include "platform/win32/script/Win32Script.h"
#include "platform/win32/windows.h"

namespace {

// The sounds load while g_App is constructed, before main runs.
__attribute__((constructor(101))) void ChooseQuietAudio() {
  setenv("SDL_AUDIODRIVER", "dummy", 0);
}

constexpr std::uint32_t kUpDrawBudget =
    40;                              // GL draws a frame for the towers' and plants' UP draws
constexpr double kTimeBudget = 1.6;  // whole scene against ground and sky
constexpr std::uint32_t kSettleFrames = 10;  // the body lands, the sorts catch up a little
constexpr float kOutOfSight = -1.0e6f;       // a height no view reaches
constexpr std::uint32_t kCases = 3;          // frames take turns between the cases

struct Place {
  const char* name;
  float x, z, yaw;      // yaw in degrees, 0 looks along +z
  float y = 5000.0f;    // where the walker is let go; gravity brings it down
  float pitch = 0.0f;   // degrees, negative looks up
};

// The high ground: the tree with the most others within 1200 units, the
// walker 300 units south of it, looking north into the wood.
Place AmongTrees(const CTerrain& terrain) {
  int best = 0, bestCount = -1;
  for (int i = 0; i < terrain.m_treeCount; ++i) {
    const CPlantRecord& a = terrain.m_trees[i];
    if (a.m_kind == 0) continue;
    int count = 0;
    for (int j = 0; j < terrain.m_treeCount; ++j) {
      const CPlantRecord& b = terrain.m_trees[j];
      count += b.m_kind != 0 && std::hypot(a.m_x - b.m_x, a.m_z - b.m_z) < 1200.0f;
    }
    if (count > bestCount) best = i, bestCount = count;
  }
  return {"among trees", terrain.m_trees[best].m_x, terrain.m_trees[best].m_z - 300.0f, 0.0f};
}

double Median(std::vector<double>& v) {
  if (v.empty()) return 0.0;
  std::nth_element(v.begin(), v.begin() + std::ptrdiff_t(v.size() / 2), v.end());
  return v[v.size() / 2];
}

// CPU time of all the process's threads, the rasteriser's included: on a
// machine that other work shares, it moves far less than the wall clock.
double CpuMs() {
  timespec t{};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &t);
  return double(t.tv_sec) * 1e3 + double(t.tv_nsec) / 1e6;
}

struct Case {
  std::vector<double> ms, cpuMs;
  std::uint32_t glDraws = 0, upCalls = 0, upGlDraws = 0;
  double Median() { return ::Median(ms); }
  double CpuMedian() { return ::Median(cpuMs); }
};

struct Run {
  std::uint32_t measured = 200;  // frames of each case at each place
  std::vector<Place> places;
  std::vector<Case> cases;  // per place: whole scene, ground and sky, whole scene on the plain path
  std::size_t place = 0;
  std::uint32_t frameInPlace = 0;
  bool groundOnly = false;  // the frame that just ran
  int kind = 0;             // its case: 0 whole, 1 ground and sky, 2 plain path
  std::chrono::steady_clock::time_point last;
  double lastCpu = 0.0;
  // The objects, kept while a ground-only frame empties the plant arrays
  // and sends the drops and the figures far below the ground, out of sight.
  std::int32_t trees = 0, weeds = 0, flowers = 0;
  bool rainEnabled = true;
  std::vector<CRainDrop> rain;
  std::vector<CFlyingFigure> figures;
};
Run s_run;

std::uint32_t FramesPerPlace() {
  return kSettleFrames + kCases * s_run.measured;
}

void GoTo(const Place& p) {
  CPlayer& player = g_App.m_player;
  player.SetPosition(D3DXVECTOR3(p.x, p.y, p.z));
  player.SetVelocity(D3DXVECTOR3(0.0f, 0.0f, 0.0f));
  player.Rotate(p.pitch - player.GetPitch(), p.yaw - player.GetYaw(), 0.0f);
}

void SetGroundOnly(bool groundOnly) {
  CTerrain& t = g_App.m_terrain;
  if (groundOnly && !s_run.groundOnly) {
    s_run.trees = std::exchange(t.m_treeCount, 0);
    s_run.weeds = std::exchange(t.m_weedCount, 0);
    s_run.flowers = std::exchange(t.m_flowerCount, 0);
    s_run.rainEnabled = std::exchange(t.m_rainEnabled, false);  // no rebirth above the player
    s_run.rain.assign(std::begin(t.m_rain), std::end(t.m_rain));
    s_run.figures.assign(std::begin(t.m_figures), std::end(t.m_figures));
    for (CRainDrop& drop : t.m_rain) drop.m_y = kOutOfSight;
    for (CFlyingFigure& figure : t.m_figures) figure.m_y = kOutOfSight;
  } else if (!groundOnly && s_run.groundOnly) {
    t.m_treeCount = s_run.trees;
    t.m_weedCount = s_run.weeds;
    t.m_flowerCount = s_run.flowers;
    t.m_rainEnabled = s_run.rainEnabled;
    std::copy(s_run.rain.begin(), s_run.rain.end(), t.m_rain);
    std::copy(s_run.figures.begin(), s_run.figures.end(), t.m_figures);
  }
  s_run.groundOnly = groundOnly;
}

// Script frame `frame` is about to run: the one before it has been presented.
void OnFrameBoundary(std::uint32_t frame) {
  const auto now = std::chrono::steady_clock::now();
  const double ms = std::chrono::duration<double, std::milli>(now - s_run.last).count();
  const double cpuNow = CpuMs(), cpuMs = cpuNow - s_run.lastCpu;
  s_run.last = now;
  s_run.lastCpu = cpuNow;
  if (frame == 0) return;  // nothing drawn yet

  if (s_run.places.empty()) {
    // The sea of the generated map lies north of (11264, 1434); there the
    // eye stands at the water's edge, and at 1920 on the sea bed, where a
    // swimmer would take minutes to sink to.
    s_run.places = {{"start", 1500.0f, 1500.0f, 45.0f},
                    {"facing the towers", 5000.0f, 600.0f, 0.0f},
                    AmongTrees(g_App.m_terrain),
                    {"shore, water line", 11264.0f, 1434.0f, 0.0f, 900.0f},
                    {"under water", 11264.0f, 1920.0f, 0.0f, 570.0f},
                    {"up at the flock", 1500.0f, 1500.0f, 45.0f, 5000.0f, -89.0f}};
    s_run.cases.resize(kCases * s_run.places.size());
    GoTo(s_run.places[0]);
    return;
  }
  // Book the frame that just ran.
  if (s_run.frameInPlace > kSettleFrames) {
    Case& c = s_run.cases[kCases * s_run.place + std::size_t(s_run.kind)];
    d3d9gl::FrameStats stats;
    d3d9gl::GetFrameStats(g_App.m_device, stats);
    c.ms.push_back(ms);
    c.cpuMs.push_back(cpuMs);
    c.glDraws = std::max(c.glDraws, stats.lastFrameGlDrawCalls);
    c.upCalls = std::max(c.upCalls, stats.lastFrameUpCalls);
    c.upGlDraws = std::max(c.upGlDraws, stats.lastFrameUpGlDraws);
  }
  // Set up the next one.
  if (++s_run.frameInPlace == FramesPerPlace()) {
    SetGroundOnly(false);
    d3d9gl::UsePlainPath(false);
    s_run.kind = 0;
    s_run.frameInPlace = 0;
    if (++s_run.place == s_run.places.size()) return;
    GoTo(s_run.places[s_run.place]);
    return;
  }
  s_run.kind = s_run.frameInPlace >= kSettleFrames ? int((s_run.frameInPlace - kSettleFrames) % kCases) : 0;
  SetGroundOnly(s_run.kind == 1);
  d3d9gl::UsePlainPath(s_run.kind == 2);
}

}  // namespace

int main(int argc, char** argv) {
  for (int i = 1; i < argc; ++i) {
    const std::string a = argv[i];
    if (a == "--quick") {
      s_run.measured = 5;
    } else if (a == "--depth24") {
      d3d9gl::OfferDepth32(false);
    } else if (a == "--frames" && i + 1 < argc) {
      s_run.measured = std::uint32_t(std::max(1, std::atoi(argv[++i])));
    } else {
      std::fprintf(stderr, "usage: %s [--quick] [--frames N] [--depth24]\n", argv[0]);
      return 2;
    }
  }
  win32::script::Options script;
  script.realWindows = true;
  script.maxFrames = 2 + 6 * FramesPerPlace();
  win32::script::Enable(script);
  win32::script::SetFrameCallback(OnFrameBoundary);
  s_run.last = std::chrono::steady_clock::now();
  const int exitCode =
      WinMain(GetModuleHandleA(nullptr), nullptr, const_cast<char*>(""), SW_SHOWNORMAL);
  win32::script::SetFrameCallback(nullptr);
  if (s_run.cases.empty() || s_run.cases.back().ms.empty()) {
    std::fprintf(stderr, "karvo-bench-scene: the program ended early (exit code %d)\n", exitCode);
    return 1;
  }

  std::printf("whole frames of the program, median of %u frames each\n", s_run.measured);
  std::printf("%-18s %-14s %9s %16s %9s %9s %7s\n", "place", "case", "GL draws", "UP calls -> GL", "ms/frame",
              "CPU ms", "ratio");
  bool drawsMet = true, timeMet = true;
  for (std::size_t p = 0; p < s_run.places.size(); ++p) {
    Case& whole = s_run.cases[kCases * p];
    Case& ground = s_run.cases[kCases * p + 1];
    Case& plain = s_run.cases[kCases * p + 2];
    const double ratio = whole.Median() / ground.Median();
    const char* row = "%-18s %-14s %9u %9u -> %4u %9.3f %9.3f";
    std::printf(row, s_run.places[p].name, "whole scene", whole.glDraws, whole.upCalls, whole.upGlDraws,
                whole.Median(), whole.CpuMedian());
    std::printf(" %7.2f\n", ratio);
    std::printf(row, "", "ground + sky", ground.glDraws, ground.upCalls, ground.upGlDraws, ground.Median(),
                ground.CpuMedian());
    std::printf(" %7.2f\n", 1.0);
    std::printf(row, "", "plain path", plain.glDraws, plain.upCalls, plain.upGlDraws, plain.Median(),
                plain.CpuMedian());
    std::printf("   fast path %.2fx (CPU %.2fx)\n", plain.Median() / whole.Median(),
                plain.CpuMedian() / whole.CpuMedian());
    drawsMet = drawsMet && whole.upGlDraws <= kUpDrawBudget;
    timeMet = timeMet && ratio <= kTimeBudget;
  }
  std::printf(
      "targets: object draws in at most %u GL draws: %s; whole scene at most %.1fx ground + sky: "
      "%s\n",
      kUpDrawBudget, drawsMet ? "met" : "MISSED", kTimeBudget, timeMet ? "met" : "missed");
  return drawsMet ? 0 : 1;
}
