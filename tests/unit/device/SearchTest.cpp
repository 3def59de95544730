// The first choice of settings, on hand-built trees: which option wins under
// each rule, which display mode the full-screen set gets, and what the
// searches leave alone.
#include <gtest/gtest.h>

#include <cstring>

#include "device/D3DInitialize.h"
#include "support/FakeDirect3D.h"

// Whole records alike (neither has padding), so a test can compare what a
// search chose with what it should have chosen in one step.
static bool operator==(const D3DDISPLAYMODE& a, const D3DDISPLAYMODE& b) { return !std::memcmp(&a, &b, sizeof a); }
static bool operator==(const CD3DDisplaySettings& a, const CD3DDisplaySettings& b) {
  return !std::memcmp(&a, &b, sizeof a);
}

namespace {

constexpr D3DFORMAT X8 = D3DFMT_X8R8G8B8;
constexpr D3DFORMAT A8 = D3DFMT_A8R8G8B8;
constexpr D3DFORMAT R565 = D3DFMT_R5G6B5;
constexpr D3DDEVTYPE HAL = D3DDEVTYPE_HAL;

D3DDISPLAYMODE Mode(UINT w, UINT h, UINT r, D3DFORMAT f) { return {w, h, r, f}; }

// A tree built by hand, answering desktop modes through a fake object.
// Devices and options go to the adapter added last.
class Tree {
 public:
  Tree() { m_init.m_d3d = &m_d3d; m_d3d.AddRef(); }

  // An adapter whose present mode is desktop, with these full-screen modes.
  void Adapter(D3DDISPLAYMODE desktop, std::vector<D3DDISPLAYMODE> modes = {}) {
    m_d3d.adapters.emplace_back().desktop = desktop;
    auto* adapter = new CD3DAdapterRecord;
    adapter->m_ordinal = static_cast<std::uint32_t>(m_init.m_adapters.size());
    adapter->m_modes = std::move(modes);
    m_init.m_adapters.push_back(adapter);
  }

  CD3DDeviceRecord* Device(D3DDEVTYPE type) {
    auto* device = new CD3DDeviceRecord;
    device->m_deviceType = type;
    m_init.m_adapters.back()->m_devices.push_back(device);
    return device;
  }

  // An option; its lists start with a recognisable first entry.
  CD3DOptionRecord* Option(CD3DDeviceRecord* device, D3DFORMAT adapterFormat, D3DFORMAT backBufferFormat,
                           bool windowed) {
    auto* option = new CD3DOptionRecord;
    option->m_adapterOrdinal = m_init.m_adapters.back()->m_ordinal;
    option->m_deviceType = device->m_deviceType;
    option->m_adapterFormat = adapterFormat;
    option->m_backBufferFormat = backBufferFormat;
    option->m_windowed = windowed;
    option->m_depthFormats = {D3DFMT_D24S8, D3DFMT_D16};
    option->m_multiSampleTypes = {D3DMULTISAMPLE_2_SAMPLES, D3DMULTISAMPLE_NONE};
    option->m_multiSampleQualities = {5, 1};
    option->m_vertexProcessingTypes = {HARDWARE_VP, SOFTWARE_VP};
    option->m_presentIntervals = {D3DPRESENT_INTERVAL_IMMEDIATE, D3DPRESENT_INTERVAL_DEFAULT};
    device->m_options.push_back(option);
    return option;
  }

  bool Windowed(CD3DSettings& settings, bool hal = false, bool ref = false) {
    return m_init.FindBestWindowedMode(settings, hal, ref);
  }
  bool FullScreen(CD3DSettings& settings, const D3DDISPLAYMODE* match = nullptr, bool hal = false) {
    return m_init.FindBestFullScreenMode(settings, match, hal, false);
  }
  const std::vector<UINT>& DesktopQueries() const { return m_d3d.displayModeQueries; }

 private:
  FakeDirect3D m_d3d;  // outlives m_init, which releases it
  CD3DInitialize m_init;
};

// Software gives way to HAL and HAL only to matched HAL; the first matched
// HAL ends the walk.
TEST(WindowedSearch, SoftwareGivesWayToHalAndTheFirstMatchedHalEndsTheWalk) {
  Tree tree;
  tree.Adapter(Mode(1600, 1000, 60, X8));
  tree.Option(tree.Device(D3DDEVTYPE_SW), X8, X8, true);
  auto* hal = tree.Device(HAL);
  tree.Option(hal, X8, A8, true)->m_depthFormats = {D3DFMT_D32};       // unmatched HAL: replaces SW
  tree.Option(hal, X8, R565, true)->m_depthFormats = {D3DFMT_D15S1};  // unmatched HAL: does not replace
  CD3DSettings settings{};
  ASSERT_TRUE(tree.Windowed(settings));
  EXPECT_EQ(settings.m_windowedSettings.m_depthStencilFormat, D3DFMT_D32);

  tree.Option(hal, X8, X8, true);  // matched HAL: replaces
  tree.Adapter(Mode(800, 600, 60, R565));
  tree.Option(tree.Device(HAL), X8, X8, true);
  ASSERT_TRUE(tree.Windowed(settings));
  // The desktop of adapter 0, the first entry of each list, quality 0.
  const CD3DDisplaySettings expected{
      0, Mode(1600, 1000, 60, X8), HAL, X8, D3DFMT_D24S8, D3DMULTISAMPLE_2_SAMPLES, 0, HARDWARE_VP,
      D3DPRESENT_INTERVAL_IMMEDIATE};
  EXPECT_EQ(settings.m_windowedSettings, expected);
  EXPECT_EQ(tree.DesktopQueries(), (std::vector<UINT>{0, 0})) << "adapter 1 is never visited";
}

TEST(FullScreenSearch, BestOptionRules) {
  // The wanted format is X8 (adapter 0's present mode).
  Tree tree;
  tree.Adapter(Mode(1024, 768, 60, X8), {Mode(1024, 768, 60, X8), Mode(800, 600, 60, R565)});
  tree.Option(tree.Device(D3DDEVTYPE_SW), X8, X8, false);   // a: first
  auto* hal = tree.Device(HAL);
  tree.Option(hal, X8, X8, true);                            // windowed: skipped
  tree.Option(hal, R565, R565, false);                       // b: HAL over SW
  tree.Option(hal, X8, A8, false);                           // c: HAL onto the wanted format
  tree.Option(hal, X8, D3DFMT_X1R5G5B5, false);              // no rule: best already on X8
  tree.Option(hal, R565, R565, false);                       // no rule: matched, but not on X8
  tree.Option(hal, X8, X8, false);                           // d: desktop and matched
  tree.Option(hal, X8, X8, false)->m_depthFormats = {D3DFMT_D16};  // never reached

  // Walk the rules back by taking the later options away.
  auto pickAfterDropping = [&](size_t keep) {
    for (auto& options = hal->m_options; options.size() > keep; options.pop_back()) delete options.back();
    CD3DSettings settings{};
    EXPECT_TRUE(tree.FullScreen(settings));
    return settings.m_fullscreenSettings;
  };
  EXPECT_EQ(pickAfterDropping(7).m_depthStencilFormat, D3DFMT_D24S8) << "rule d";
  EXPECT_EQ(pickAfterDropping(5).m_backBufferFormat, A8) << "rule c, and neither later one replaced it";
  const CD3DDisplaySettings s = pickAfterDropping(2);
  EXPECT_EQ(s.m_deviceType, HAL) << "rule b";
  EXPECT_EQ(s.m_displayMode, Mode(800, 600, 60, R565)) << "the mode comes from the option's format";
}

TEST(FullScreenSearch, ModeWalkRules) {
  // matchHeight: of a 1280-wide match whose rate and format are 0, which take the desktop's 85 and X8.
  const struct { const char* what; UINT matchHeight; std::vector<D3DDISPLAYMODE> modes; D3DDISPLAYMODE expected; }
      cases[] = {
      {"the last mode of width 1280 wins, whatever its height", 800,
       {Mode(800, 600, 60, X8), Mode(1280, 720, 60, X8), Mode(1280, 1024, 60, X8), Mode(1024, 768, 60, X8)},
       Mode(1280, 1024, 60, X8)},
      {"a later mode of the size replaces an earlier one even at a lower rate", 800,
       {Mode(1280, 800, 75, X8), Mode(1280, 800, 60, X8)}, Mode(1280, 800, 60, X8)},
      {"an exact fit stops the walk", 800, {Mode(1280, 800, 85, X8), Mode(1280, 720, 60, X8)}, Mode(1280, 800, 85, X8)},
      {"without the width, the first mode of the option's format", 800,
       {Mode(1600, 1200, 60, R565), Mode(1024, 768, 60, X8), Mode(1600, 900, 60, X8)}, Mode(1024, 768, 60, X8)},
      {"a zero height takes the desktop's, and exact size and rate end the walk", 0,
       {Mode(1280, 1024, 60, X8), Mode(1280, 1200, 85, X8), Mode(1280, 1200, 60, X8)}, Mode(1280, 1200, 85, X8)},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    Tree tree;
    tree.Adapter(Mode(1600, 1200, 85, X8), c.modes);
    tree.Option(tree.Device(HAL), X8, X8, false);
    const D3DDISPLAYMODE match = Mode(1280, c.matchHeight, 0, D3DFMT_UNKNOWN);
    CD3DSettings settings{};
    ASSERT_TRUE(tree.FullScreen(settings, &match));
    EXPECT_EQ(settings.m_fullscreenSettings.m_displayMode, c.expected);
  }
}

TEST(Search, NothingFoundLeavesSettingsAlone) {
  CD3DSettings settings{};
  settings.m_windowedSettings.m_adapterOrdinal = 7;
  settings.m_fullscreenSettings.m_presentInterval = 99;
  const CD3DSettings before = settings;
  CD3DInitialize never;  // never enumerated: no object to ask either
  EXPECT_FALSE(never.FindBestWindowedMode(settings, false, false));

  // No windowed option on the desktop's format; no full-screen HAL.
  Tree tree;
  tree.Adapter(Mode(1024, 768, 60, R565), {Mode(1024, 768, 60, R565)});
  tree.Option(tree.Device(HAL), X8, X8, true);
  tree.Option(tree.Device(D3DDEVTYPE_SW), R565, R565, false);
  EXPECT_FALSE(tree.Windowed(settings));
  EXPECT_FALSE(tree.FullScreen(settings, nullptr, true));
  EXPECT_FALSE(settings.m_windowed);
  EXPECT_EQ(settings.m_windowedSettings, before.m_windowedSettings);
  EXPECT_EQ(settings.m_fullscreenSettings, before.m_fullscreenSettings);
  ASSERT_TRUE(tree.FullScreen(settings));
  EXPECT_EQ(settings.m_fullscreenSettings.m_deviceType, D3DDEVTYPE_SW);
}

}  // namespace
