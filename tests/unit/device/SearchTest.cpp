// The first choice of settings, on hand-built trees: which option wins under
// each rule, which display mode the full-screen set gets, and what the
// searches leave alone.
#include <gtest/gtest.h>

#include <cstring>

#include "device/D3DInitialize.h"
#include "support/FakeDirect3D.h"

namespace {

using Fake = FakeDirect3D;

D3DDISPLAYMODE Mode(UINT w, UINT h, UINT r, D3DFORMAT f) { return Fake::Mode(w, h, r, f); }

// A tree built by hand, answering desktop modes through a fake object.
class Tree {
 public:
  Tree() {
    m_init.m_d3d = &m_d3d;
    m_d3d.AddRef();
  }

  // An adapter whose present mode is desktop.
  CD3DAdapterRecord* Adapter(D3DDISPLAYMODE desktop, std::vector<D3DDISPLAYMODE> modes = {}) {
    Fake::Adapter fake;
    fake.desktop = desktop;
    m_d3d.adapters.push_back(fake);
    auto* adapter = new CD3DAdapterRecord;
    adapter->m_ordinal = static_cast<std::uint32_t>(m_init.m_adapters.size());
    adapter->m_modes = std::move(modes);
    m_init.m_adapters.push_back(adapter);
    return adapter;
  }

  CD3DDeviceRecord* Device(CD3DAdapterRecord* adapter, D3DDEVTYPE type) {
    auto* device = new CD3DDeviceRecord;
    device->m_deviceType = type;
    adapter->m_devices.push_back(device);
    return device;
  }

  // An option; its lists start with a recognisable first entry.
  CD3DOptionRecord* Option(CD3DAdapterRecord* adapter, CD3DDeviceRecord* device, D3DFORMAT adapterFormat,
                           D3DFORMAT backBufferFormat, bool windowed) {
    auto* option = new CD3DOptionRecord;
    option->m_adapterOrdinal = adapter->m_ordinal;
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

  CD3DInitialize& Init() { return m_init; }
  Fake& D3D() { return m_d3d; }

 private:
  Fake m_d3d;  // outlives m_init, which releases it
  CD3DInitialize m_init;
};

// Whole settings records alike (the display sets have no padding; the flag
// is compared on its own).
bool Same(const CD3DSettings& a, const CD3DSettings& b) {
  return a.m_windowed == b.m_windowed &&
         std::memcmp(&a.m_windowedSettings, &b.m_windowedSettings, sizeof a.m_windowedSettings) == 0 &&
         std::memcmp(&a.m_fullscreenSettings, &b.m_fullscreenSettings, sizeof a.m_fullscreenSettings) == 0;
}

constexpr D3DFORMAT X8 = D3DFMT_X8R8G8B8;
constexpr D3DFORMAT A8 = D3DFMT_A8R8G8B8;
constexpr D3DFORMAT R565 = D3DFMT_R5G6B5;

// ---- windowed -----------------------------------------------------------------

TEST(WindowedSearch, FirstMatchedHalEndsTheWalk) {
  Tree tree;
  auto* a0 = tree.Adapter(Mode(1600, 1000, 60, X8));
  tree.Option(a0, tree.Device(a0, D3DDEVTYPE_HAL), X8, X8, true);
  auto* a1 = tree.Adapter(Mode(800, 600, 60, R565));
  tree.Option(a1, tree.Device(a1, D3DDEVTYPE_HAL), X8, X8, true);

  CD3DSettings settings{};
  ASSERT_TRUE(tree.Init().FindBestWindowedMode(settings, false, false));
  EXPECT_TRUE(settings.m_windowed);
  const CD3DDisplaySettings& s = settings.m_windowedSettings;
  EXPECT_EQ(s.m_adapterOrdinal, 0u);
  EXPECT_EQ(s.m_deviceType, D3DDEVTYPE_HAL);
  EXPECT_EQ(s.m_backBufferFormat, X8);
  // The desktop of adapter 0, the first entry of each list, quality 0.
  EXPECT_EQ(s.m_displayMode.Width, 1600u);
  EXPECT_EQ(s.m_displayMode.Format, X8);
  EXPECT_EQ(s.m_depthStencilFormat, D3DFMT_D24S8);
  EXPECT_EQ(s.m_multiSampleType, D3DMULTISAMPLE_2_SAMPLES);
  EXPECT_EQ(s.m_multiSampleQuality, 0u);
  EXPECT_EQ(s.m_vertexProcessing, HARDWARE_VP);
  EXPECT_EQ(s.m_presentInterval, static_cast<std::uint32_t>(D3DPRESENT_INTERVAL_IMMEDIATE));
  EXPECT_EQ(tree.D3D().displayModeQueries, std::vector<UINT>{0});
}

TEST(WindowedSearch, SoftwareGivesWayToHalAndHalOnlyToMatchedHal) {
  Tree tree;
  auto* a = tree.Adapter(Mode(1024, 768, 60, X8));
  tree.Option(a, tree.Device(a, D3DDEVTYPE_SW), X8, X8, true);
  auto* hal = tree.Device(a, D3DDEVTYPE_HAL);
  tree.Option(a, hal, X8, A8, true)->m_depthFormats = {D3DFMT_D32};  // unmatched HAL: replaces SW
  tree.Option(a, hal, X8, R565, true)->m_depthFormats = {D3DFMT_D15S1};  // unmatched HAL: does not replace

  CD3DSettings settings{};
  ASSERT_TRUE(tree.Init().FindBestWindowedMode(settings, false, false));
  EXPECT_EQ(settings.m_windowedSettings.m_deviceType, D3DDEVTYPE_HAL);
  EXPECT_EQ(settings.m_windowedSettings.m_backBufferFormat, A8);
  EXPECT_EQ(settings.m_windowedSettings.m_depthStencilFormat, D3DFMT_D32);

  tree.Option(a, hal, X8, X8, true);  // matched HAL: replaces
  ASSERT_TRUE(tree.Init().FindBestWindowedMode(settings, false, false));
  EXPECT_EQ(settings.m_windowedSettings.m_backBufferFormat, X8);
}

TEST(WindowedSearch, ReferenceOnlyTakesTheFirstFitOfTheDesktopFormat) {
  Tree tree;
  auto* a = tree.Adapter(Mode(1024, 768, 60, X8));
  auto* ref = tree.Device(a, D3DDEVTYPE_REF);
  tree.Option(a, ref, R565, R565, true);  // other format
  tree.Option(a, ref, X8, X8, false);     // full screen
  tree.Option(a, ref, X8, A8, true);      // the one
  tree.Option(a, ref, X8, X8, true);      // matched, but not HAL

  CD3DSettings settings{};
  ASSERT_TRUE(tree.Init().FindBestWindowedMode(settings, false, false));
  EXPECT_EQ(settings.m_windowedSettings.m_deviceType, D3DDEVTYPE_REF);
  EXPECT_EQ(settings.m_windowedSettings.m_backBufferFormat, A8);

  EXPECT_FALSE(tree.Init().FindBestWindowedMode(settings, true, false)) << "HAL required";
  EXPECT_TRUE(tree.Init().FindBestWindowedMode(settings, false, true));
}

TEST(WindowedSearch, NoWindowedOptionOnTheDesktopFormatLeavesSettingsAlone) {
  Tree tree;
  auto* a = tree.Adapter(Mode(1024, 768, 60, R565));
  auto* hal = tree.Device(a, D3DDEVTYPE_HAL);
  tree.Option(a, hal, X8, X8, true);
  tree.Option(a, hal, R565, R565, false);

  CD3DSettings settings{};
  settings.m_windowed = false;
  settings.m_windowedSettings.m_adapterOrdinal = 7;
  settings.m_windowedSettings.m_presentInterval = 99;
  const CD3DSettings before = settings;
  EXPECT_FALSE(tree.Init().FindBestWindowedMode(settings, false, false));
  EXPECT_TRUE(Same(settings, before));
}

// ---- full screen --------------------------------------------------------------

TEST(FullScreenSearch, MatchedHalOnTheWantedFormatEndsAllLoops) {
  Tree tree;
  auto* a0 = tree.Adapter(Mode(1024, 768, 60, X8), {Mode(1024, 768, 60, X8)});
  tree.Option(a0, tree.Device(a0, D3DDEVTYPE_HAL), X8, X8, false);
  auto* a1 = tree.Adapter(Mode(1024, 768, 60, X8), {Mode(1024, 768, 60, X8)});
  tree.Option(a1, tree.Device(a1, D3DDEVTYPE_HAL), X8, X8, false);

  CD3DSettings settings{};
  settings.m_windowed = true;
  ASSERT_TRUE(tree.Init().FindBestFullScreenMode(settings, nullptr, false, false));
  EXPECT_FALSE(settings.m_windowed);
  EXPECT_EQ(settings.m_fullscreenSettings.m_adapterOrdinal, 0u);
  EXPECT_EQ(settings.m_fullscreenSettings.m_multiSampleQuality, 0u);
  EXPECT_EQ(tree.D3D().displayModeQueries, std::vector<UINT>{0}) << "adapter 1 is never visited";
}

TEST(FullScreenSearch, BestOptionRules) {
  // The wanted format is X8 (adapter 0's present mode).
  Tree tree;
  auto* a = tree.Adapter(Mode(1024, 768, 60, X8), {Mode(1024, 768, 60, X8), Mode(800, 600, 60, R565)});
  tree.Option(a, tree.Device(a, D3DDEVTYPE_SW), X8, X8, false);         // a: first
  auto* hal = tree.Device(a, D3DDEVTYPE_HAL);
  tree.Option(a, hal, X8, X8, true);                                     // windowed: skipped
  CD3DOptionRecord* r565 = tree.Option(a, hal, R565, R565, false);       // b: HAL over SW
  CD3DOptionRecord* x8a8 = tree.Option(a, hal, X8, A8, false);           // c: HAL onto the wanted format
  tree.Option(a, hal, X8, D3DFMT_X1R5G5B5, false);                       // no rule: best already on X8
  CD3DOptionRecord* x8x8 = tree.Option(a, hal, X8, X8, false);           // d: desktop and matched
  tree.Option(a, hal, X8, X8, false)->m_depthFormats = {D3DFMT_D16};      // never reached

  CD3DSettings settings{};
  auto pick = [&] {
    EXPECT_TRUE(tree.Init().FindBestFullScreenMode(settings, nullptr, false, false));
    return settings.m_fullscreenSettings;
  };
  // Walk the rules by taking the later options away one by one.
  auto& options = hal->m_options;
  EXPECT_EQ(pick().m_backBufferFormat, X8);
  EXPECT_EQ(pick().m_depthStencilFormat, D3DFMT_D24S8);
  EXPECT_EQ(pick().m_displayMode.Width, 1024u);

  delete options.back();
  options.pop_back();
  ASSERT_EQ(options.back(), x8x8);
  delete options.back();
  options.pop_back();
  EXPECT_EQ(pick().m_backBufferFormat, A8) << "rule c, and X1R5G5B5 did not replace it";
  ASSERT_EQ(options[2], x8a8);

  delete options[3];
  delete options[2];
  options.resize(2);
  ASSERT_EQ(options.back(), r565);
  const CD3DDisplaySettings s = pick();
  EXPECT_EQ(s.m_deviceType, D3DDEVTYPE_HAL) << "rule b";
  EXPECT_EQ(s.m_backBufferFormat, R565);
  EXPECT_EQ(s.m_displayMode.Format, R565) << "the mode comes from the option's format";
  EXPECT_EQ(s.m_displayMode.Width, 800u);
}

TEST(FullScreenSearch, ZeroMatchFieldsKeepThePresentMode) {
  Tree tree;
  auto* a = tree.Adapter(Mode(1024, 768, 75, X8),
                         {Mode(1280, 1024, 60, X8), Mode(1280, 768, 75, X8), Mode(1280, 768, 60, X8)});
  tree.Option(a, tree.Device(a, D3DDEVTYPE_HAL), X8, X8, false);
  const D3DDISPLAYMODE match = Mode(1280, 0, 0, D3DFMT_UNKNOWN);
  CD3DSettings settings{};
  ASSERT_TRUE(tree.Init().FindBestFullScreenMode(settings, &match, false, false));
  const D3DDISPLAYMODE found = settings.m_fullscreenSettings.m_displayMode;
  EXPECT_EQ(found.Width, 1280u);
  EXPECT_EQ(found.Height, 768u);
  EXPECT_EQ(found.RefreshRate, 75u) << "exact size and rate end the mode walk";
}

TEST(FullScreenSearch, ModeWalkRules) {
  struct Case {
    const char* what;
    std::vector<D3DDISPLAYMODE> modes;
    D3DDISPLAYMODE expected;
  };
  const Case cases[] = {
      {"the last mode of width 1280 wins, whatever its height",
       {Mode(800, 600, 60, X8), Mode(1280, 720, 60, X8), Mode(1280, 1024, 60, X8), Mode(1024, 768, 60, X8)},
       Mode(1280, 1024, 60, X8)},
      {"a later mode of the size replaces an earlier one even at a lower rate",
       {Mode(1280, 800, 75, X8), Mode(1280, 800, 60, X8)},
       Mode(1280, 800, 60, X8)},
      {"an exact fit stops the walk",
       {Mode(1280, 800, 85, X8), Mode(1280, 720, 60, X8)},
       Mode(1280, 800, 85, X8)},
      {"without the width, the first mode of the option's format",
       {Mode(1600, 1200, 60, R565), Mode(1024, 768, 60, X8), Mode(1600, 900, 60, X8)},
       Mode(1024, 768, 60, X8)},
  };
  for (const Case& c : cases) {
    Tree tree;
    auto* a = tree.Adapter(Mode(1600, 1200, 85, X8), c.modes);
    tree.Option(a, tree.Device(a, D3DDEVTYPE_HAL), X8, X8, false);
    const D3DDISPLAYMODE match = Mode(1280, 800, 0, D3DFMT_UNKNOWN);
    CD3DSettings settings{};
    ASSERT_TRUE(tree.Init().FindBestFullScreenMode(settings, &match, false, false)) << c.what;
    EXPECT_EQ(std::memcmp(&settings.m_fullscreenSettings.m_displayMode, &c.expected, sizeof c.expected), 0) << c.what;
  }
}

TEST(FullScreenSearch, NothingFoundLeavesSettingsAlone) {
  Tree tree;
  auto* a = tree.Adapter(Mode(1024, 768, 60, X8), {Mode(1024, 768, 60, X8)});
  tree.Option(a, tree.Device(a, D3DDEVTYPE_HAL), X8, X8, true);  // windowed only
  tree.Option(a, tree.Device(a, D3DDEVTYPE_SW), X8, X8, false);

  CD3DSettings settings{};
  settings.m_windowed = true;
  settings.m_fullscreenSettings.m_adapterOrdinal = 3;
  const CD3DSettings before = settings;
  EXPECT_FALSE(tree.Init().FindBestFullScreenMode(settings, nullptr, true, false));
  EXPECT_TRUE(Same(settings, before));
  EXPECT_TRUE(tree.Init().FindBestFullScreenMode(settings, nullptr, false, false));
  EXPECT_EQ(settings.m_fullscreenSettings.m_deviceType, D3DDEVTYPE_SW);
}

TEST(Search, EmptyTreeFindsNothing) {
  CD3DInitialize init;  // never enumerated: no object to ask either
  CD3DSettings settings{};
  EXPECT_FALSE(init.FindBestWindowedMode(settings, false, false));
  EXPECT_FALSE(init.FindBestFullScreenMode(settings, nullptr, false, false));
  EXPECT_EQ(init.GetDevice(), nullptr);
}

}  // namespace
