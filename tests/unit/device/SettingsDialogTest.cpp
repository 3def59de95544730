// The settings dialog's cascade on scripted enumeration trees, run through
// the real modal loop of the win32 layer on record-only windows; the script
// plays the user.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <tuple>
#include <vector>

#include "app/Resources.h"
#include "device/D3DSettingsDlg.h"
#include "platform/win32/Win32Dialogs.h"
#include "platform/win32/script/Win32Script.h"
#include "support/FakeDirect3D.h"

namespace {

using Fake = FakeDirect3D;
using Texts = std::vector<std::string>;
using Step = std::function<void(HWND)>;

constexpr D3DFORMAT X8 = D3DFMT_X8R8G8B8;
constexpr D3DFORMAT R5 = D3DFMT_R5G6B5;

const win32::DialogControlInfo* Find(const win32::DialogInfo& info, int id) {
  for (const auto& control : info.controls)
    if (control.id == id) return &control;
  return nullptr;
}

// A user's selection of the entry with this text.
Step Pick(int id, const std::string& text) {
  return [id, text](HWND dlg) {
    const win32::DialogInfo info = win32::DescribeDialog(dlg);
    const auto* list = Find(info, id);
    for (std::size_t i = 0; list && i < list->entries.size(); ++i)
      if (list->entries[i] == text) win32::UserSelect(list->handle, static_cast<int>(i));
  };
}
Step Click(int id) { return [id](HWND dlg) { win32::UserClick(GetDlgItem(dlg, id)); }; }

// One dialog run: the steps run one per turn, once the cascade has settled;
// a snapshot of the dialog is taken before each step and after the last,
// then the last step's button ends it (OK unless the steps end it).
struct DialogRun { int result = 0; CD3DSettings settings{}; std::vector<win32::DialogInfo> shots; };

DialogRun Open(Fake& d3d, const CD3DSettings* start, std::vector<Step> steps = {}) {
  RegisterResources();
  win32::script::Enable({.realWindows = false});
  DialogRun run;
  CD3DInitialize init;
  EXPECT_EQ(init.Enumerate(&d3d), S_OK);
  win32::script::SetDialogCallback([&](HWND dlg, std::uint32_t turn) {
    run.shots.push_back(win32::DescribeDialog(dlg));
    turn < steps.size() ? steps[turn](dlg) : win32::UserClick(GetDlgItem(dlg, IDOK));
    return true;
  });
  CD3DSettingsDlg dialog;
  run.result = dialog.ShowDialog(&init, start, nullptr);
  run.settings = dialog.GetSettings();
  win32::script::SetDialogCallback(nullptr);
  return run;
}

// Full-screen settings on the good adapter's desktop mode.
CD3DSettings FullScreen(const Fake& d3d) {
  CD3DSettings settings{};
  settings.m_fullscreenSettings = {0, d3d.adapters[0].desktop, D3DDEVTYPE_HAL, X8, D3DFMT_D24S8,
                                   D3DMULTISAMPLE_NONE, 0, HARDWARE_VP, 0};
  return settings;
}

Fake ModesAdapter() {
  Fake d3d({Fake::GoodAdapter()});
  d3d.adapters[0].modes = {
      {800, 600, 60, X8}, {1024, 768, 60, X8}, {800, 600, 75, X8}, {1024, 768, 85, X8}, {640, 480, 60, R5}};
  d3d.adapters[0].backBufferFormats.insert(R5);
  // A pure device that cannot wait three retraces.
  D3DCAPS9& caps = d3d.adapters[0].devices[D3DDEVTYPE_HAL] = Fake::GoodCaps(true, true);
  caps.PresentationIntervals &= ~D3DPRESENT_INTERVAL_THREE;
  return d3d;
}

// A device that cannot draw in a window turns a windowed start into full screen.
TEST(SettingsDialog, OpensWithEveryListFilledInFullScreenForAFullScreenOnlyDeviceAndOkGivesTheSettingsBack) {
  Fake d3d = ModesAdapter();
  d3d.adapters[0].fullscreenOnly = true;
  d3d.adapters[0].multiSample = {
      {D3DMULTISAMPLE_NONE, 1}, {D3DMULTISAMPLE_2_SAMPLES, 0}, {D3DMULTISAMPLE_4_SAMPLES, 3}};
  CD3DSettings start = FullScreen(d3d);
  start.m_windowed = true;
  start.m_fullscreenSettings.m_displayMode = {1024, 768, 85, X8};
  start.m_fullscreenSettings.m_multiSampleType = D3DMULTISAMPLE_4_SAMPLES;
  start.m_fullscreenSettings.m_multiSampleQuality = 2;
  const DialogRun run = Open(d3d, &start, {Pick(IDC_MULTISAMPLE_TYPE_COMBO, "D3DMULTISAMPLE_NONE"),
                                           Pick(IDC_MULTISAMPLE_TYPE_COMBO, "D3DMULTISAMPLE_2_SAMPLES")});
  ASSERT_EQ(run.shots.size(), 3u);
  EXPECT_FALSE(Find(run.shots[0], IDC_WINDOW)->enabled);
  EXPECT_TRUE(Find(run.shots[0], IDC_FULLSCREEN)->checked);
  const struct { int id; Texts entries; int selected; } lists[] = {
      {IDC_ADAPTERFORMAT_COMBO, {"D3DFMT_X8R8G8B8", "D3DFMT_R5G6B5"}, 0},
      // one entry per size; the rates of the chosen size only
      {IDC_RESOLUTION_COMBO, {"800 x 600", "1024 x 768"}, 1},
      {IDC_REFRESHRATE_COMBO, {"60 Hz", "85 Hz"}, 1},
      {IDC_BACKBUFFERFORMAT_COMBO, {"D3DFMT_A8R8G8B8", "D3DFMT_X8R8G8B8", "D3DFMT_R5G6B5"}, 1},
      {IDC_DEPTHSTENCILFORMAT_COMBO, {"D3DFMT_D24S8", "D3DFMT_D16"}, 0},
      {IDC_MULTISAMPLE_TYPE_COMBO, {"D3DMULTISAMPLE_NONE", "D3DMULTISAMPLE_2_SAMPLES", "D3DMULTISAMPLE_4_SAMPLES"}, 2},
      {IDC_MULTISAMPLE_QUALITY_COMBO, {"0", "1", "2"}, 2},
      // from the most to the least hardware; mixed too for the base class
      {IDC_VERTEXPROCESSING_COMBO, {"PURE_HARDWARE_VP", "HARDWARE_VP", "MIXED_VP", "SOFTWARE_VP"}, 1},
      // DEFAULT whatever the caps say, the others only where the caps have them
      {IDC_PRESENTINTERVAL_COMBO,
       {"D3DPRESENT_INTERVAL_IMMEDIATE", "D3DPRESENT_INTERVAL_DEFAULT", "D3DPRESENT_INTERVAL_ONE",
        "D3DPRESENT_INTERVAL_TWO", "D3DPRESENT_INTERVAL_FOUR"}, 1},
  };
  for (const auto& list : lists) {
    SCOPED_TRACE(list.id);
    const auto* shown = Find(run.shots[0], list.id);
    EXPECT_EQ(shown->entries, list.entries);
    EXPECT_EQ(shown->selected, list.selected);
    EXPECT_TRUE(shown->enabled);
  }
  // A type counted with one quality level gives the single entry 0; one with
  // none leaves the list empty.
  EXPECT_EQ(Find(run.shots[1], IDC_MULTISAMPLE_QUALITY_COMBO)->entries, Texts{"0"});
  EXPECT_TRUE(Find(run.shots[2], IDC_MULTISAMPLE_QUALITY_COMBO)->entries.empty());

  EXPECT_EQ(run.result, IDOK);
  EXPECT_FALSE(run.settings.m_windowed);
  // The last quality stored comes from the one-level type.
  const CD3DDisplaySettings& s = run.settings.m_fullscreenSettings;
  EXPECT_EQ(std::tie(s.m_multiSampleType, s.m_multiSampleQuality, s.m_displayMode.RefreshRate),
            std::make_tuple(D3DMULTISAMPLE_2_SAMPLES, 0u, 85u));
}

TEST(SettingsDialog, TheWindowedSwitchGreysTheModeListsAndBackRefillsThemFromTheFullScreenSide) {
  Fake d3d = ModesAdapter();
  CD3DSettings start = FullScreen(d3d);
  start.m_fullscreenSettings.m_displayMode = {800, 600, 75, X8};
  start.m_windowedSettings = start.m_fullscreenSettings;
  start.m_windowedSettings.m_displayMode = d3d.adapters[0].desktop;
  const DialogRun run = Open(d3d, &start, {Click(IDC_WINDOW), Click(IDC_FULLSCREEN)});
  ASSERT_EQ(run.shots.size(), 3u);
  const struct { int id; std::string windowed; Texts full; int selected; } lists[] = {
      {IDC_ADAPTERFORMAT_COMBO, "D3DFMT_X8R8G8B8", {"D3DFMT_X8R8G8B8", "D3DFMT_R5G6B5"}, 0},
      {IDC_RESOLUTION_COMBO, "1024 x 768", {"800 x 600", "1024 x 768"}, 0},
      {IDC_REFRESHRATE_COMBO, "60 Hz", {"60 Hz", "75 Hz"}, 1},
  };
  for (const auto& list : lists) {
    SCOPED_TRACE(list.id);
    const auto* windowed = Find(run.shots[1], list.id);
    EXPECT_EQ(windowed->entries, Texts{list.windowed});
    EXPECT_FALSE(windowed->enabled);
    const auto* back = Find(run.shots[2], list.id);
    EXPECT_EQ(back->entries, list.full);
    EXPECT_EQ(back->selected, list.selected);
  }
  // The side not shown kept its values.
  EXPECT_EQ(run.settings.m_windowedSettings.m_displayMode.Width, 1024u);
  EXPECT_EQ(run.settings.m_fullscreenSettings.m_displayMode.RefreshRate, 75u);
}

TEST(SettingsDialog, AStartValueMissingFromAListFallsBackToItsFirstEntry) {
  Fake d3d({Fake::GoodAdapter(), Fake::GoodAdapter()});
  d3d.adapters[1].desktop = {1280, 1024, 60, X8};
  CD3DSettings start{};
  start.m_windowed = true;
  start.m_windowedSettings.m_adapterOrdinal = 1;
  start.m_windowedSettings.m_deviceType = D3DDEVTYPE_REF;  // not offered
  start.m_windowedSettings.m_backBufferFormat = R5;        // not offered
  start.m_windowedSettings.m_depthStencilFormat = D3DFMT_D32;
  const DialogRun run = Open(d3d, &start, {Pick(IDC_ADAPTER_COMBO, "Fake adapter 0")});
  // The windowed resolution shows the desktop of the adapter chosen.
  EXPECT_EQ(Find(run.shots[0], IDC_RESOLUTION_COMBO)->entries, Texts{"1280 x 1024"});
  EXPECT_EQ(Find(run.shots[1], IDC_RESOLUTION_COMBO)->entries, Texts{"1024 x 768"});
  const CD3DDisplaySettings& s = run.settings.m_windowedSettings;
  EXPECT_EQ(std::tie(s.m_deviceType, s.m_backBufferFormat, s.m_depthStencilFormat),
            std::make_tuple(D3DDEVTYPE_HAL, D3DFMT_A8R8G8B8, D3DFMT_D24S8));
}

TEST(SettingsDialog, CancelAnswersTwoAndANullStartIsTheDesktopOfAdapterZeroInAWindowOfAtMostOneRetrace) {
  Fake d3d = ModesAdapter();
  const DialogRun run = Open(d3d, nullptr, {Pick(IDC_BACKBUFFERFORMAT_COMBO, "D3DFMT_A8R8G8B8"), Click(IDCANCEL)});
  EXPECT_EQ(run.result, IDCANCEL);
  EXPECT_TRUE(Find(run.shots[0], IDC_WINDOW)->checked);
  EXPECT_EQ(Find(run.shots[0], IDC_RESOLUTION_COMBO)->entries, Texts{"1024 x 768"});
  // A window never waits more than one retrace.
  EXPECT_EQ(Find(run.shots[0], IDC_PRESENTINTERVAL_COMBO)->entries,
            (Texts{"D3DPRESENT_INTERVAL_IMMEDIATE", "D3DPRESENT_INTERVAL_DEFAULT", "D3DPRESENT_INTERVAL_ONE"}));
}

}  // namespace
