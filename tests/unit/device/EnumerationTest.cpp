// The enumeration walk against a scripted Direct3D object: what survives at
// each level, in which order, and how failures travel.
#include <gtest/gtest.h>

#include <vector>

#include "device/D3DInitialize.h"
#include "device/MyD3DInit.h"
#include "device/ValueNames.h"
#include "support/FakeDirect3D.h"

namespace {

using Fake = FakeDirect3D;
using Types = std::vector<D3DDEVTYPE>;
constexpr D3DFORMAT X8 = D3DFMT_X8R8G8B8;

// n usable adapters.
Fake Adapters(int n = 1) { return Fake(std::vector(n, Fake::GoodAdapter())); }

Types DeviceTypes(const CD3DAdapterRecord& adapter) {
  Types types;
  for (const CD3DDeviceRecord* device : adapter.m_devices) types.push_back(device->m_deviceType);
  return types;
}

// The smallest mode the application takes is 640 x 480 at 60 Hz; an adapter
// with nothing at or above it is dropped, as is one without a device. The
// modes kept are those of the display formats, in their order.
TEST(Enumeration, AdaptersAndModesThatSurviveAndTheObjectIsHeldOnce) {
  EXPECT_EQ(CMyD3DInit().Enumerate(nullptr), E_FAIL);
  Fake d3d = Adapters(4);
  d3d.adapters[0].modes = {{639, 480, 60, X8}, {640, 479, 60, X8}, {800, 600, 59, X8}};
  d3d.adapters[1].devices.clear();
  d3d.adapters[2].modes = {{640, 480, 60, X8}, {640, 480, 60, X8}};
  d3d.adapters[3].modes = {{800, 600, 60, D3DFMT_R5G6B5}, {800, 600, 60, D3DFMT_A8R8G8B8},
                           {1024, 768, 60, D3DFMT_X1R5G5B5}, {1024, 768, 60, X8}};
  {
    CMyD3DInit init;
    ASSERT_EQ(init.Enumerate(&d3d), S_OK);
    ASSERT_EQ(init.GetAdapterCount(), 2u);
    EXPECT_EQ(init.GetAdapter(0)->m_ordinal, 2u);
    EXPECT_EQ(init.GetAdapter(0)->m_modes.size(), 2u) << "duplicates are kept";
    std::vector<D3DFORMAT> formats;
    for (const D3DDISPLAYMODE& mode : init.GetAdapter(1)->m_modes) formats.push_back(mode.Format);
    EXPECT_EQ(formats, (std::vector<D3DFORMAT>{X8, D3DFMT_X1R5G5B5, D3DFMT_R5G6B5}));
    EXPECT_EQ(d3d.References(), 2u);
  }
  EXPECT_EQ(d3d.References(), 1u);

  // A failing mode list ends the walk.
  Fake failing = Adapters(3);
  failing.FailOn(Fake::CALL_EnumAdapterModes, D3DERR_NOTAVAILABLE, 1);  // the second adapter's
  CMyD3DInit init;
  EXPECT_EQ(init.Enumerate(&failing), D3DERR_NOTAVAILABLE);
  EXPECT_EQ(init.GetAdapterCount(), 1u) << "records already made stay";
  EXPECT_EQ(failing.Calls(Fake::CALL_GetAdapterIdentifier), 2) << "the third adapter is never tried";
}

// Device types in order; one whose caps lack a need or cannot be had is dropped alone.
TEST(Enumeration, DeviceTypesInOrderAndRefusedCapsDropOnlyThatType) {
  Fake d3d = Adapters();
  d3d.adapters[0].devices[D3DDEVTYPE_REF] = d3d.adapters[0].devices[D3DDEVTYPE_SW] = Fake::GoodCaps();
  // Each cap the application needs, missing in turn from HAL only.
  const std::pair<DWORD D3DCAPS9::*, DWORD> needs[] = {
      {&D3DCAPS9::RasterCaps, 0}, {&D3DCAPS9::RasterCaps, D3DPRASTERCAPS_DITHER},
      {&D3DCAPS9::ShadeCaps, D3DPSHADECAPS_COLORGOURAUDRGB}, {&D3DCAPS9::PrimitiveMiscCaps, D3DPMISCCAPS_CULLCCW},
      {&D3DCAPS9::ZCmpCaps, D3DPCMPCAPS_LESSEQUAL}, {&D3DCAPS9::TextureOpCaps, D3DTEXOPCAPS_SELECTARG1}};
  for (const auto& [field, bit] : needs) {
    SCOPED_TRACE(bit);
    Fake lacking = d3d;
    lacking.adapters[0].devices[D3DDEVTYPE_HAL].*field &= ~bit;
    CMyD3DInit init;
    ASSERT_EQ(init.Enumerate(&lacking), S_OK);
    EXPECT_EQ(DeviceTypes(*init.GetAdapter(0)),
              bit ? Types({D3DDEVTYPE_SW, D3DDEVTYPE_REF}) : Types({D3DDEVTYPE_HAL, D3DDEVTYPE_SW, D3DDEVTYPE_REF}));
  }
  d3d.FailOn(Fake::CALL_GetDeviceCaps, D3DERR_INVALIDCALL, 0);  // HAL's
  CMyD3DInit skipped;
  EXPECT_EQ(skipped.Enumerate(&d3d), S_OK);
  EXPECT_EQ(DeviceTypes(*skipped.GetAdapter(0)), Types({D3DDEVTYPE_SW, D3DDEVTYPE_REF}));
}

// A 16-bit desktop: per device type at most 22 options, in the table's order
// of back buffer formats and full screen first, each with its depth formats
// in table order; an option without a depth format is dropped.
TEST(Enumeration, SixteenBitDesktopGivesAtMostTwentyTwoOptionsPerTypeInTableOrderEachWithADepth) {
  Fake d3d = Adapters();
  d3d.adapters[0].modes = {{800, 600, 60, D3DFMT_R5G6B5}, {1024, 768, 60, D3DFMT_R5G6B5}};
  d3d.adapters[0].devices[D3DDEVTYPE_REF] = Fake::GoodCaps();
  const std::vector<D3DFORMAT> table = {D3DFMT_R8G8B8,   D3DFMT_A8R8G8B8, X8, D3DFMT_R5G6B5, D3DFMT_A1R5G5B5,
                                        D3DFMT_X1R5G5B5, D3DFMT_R3G3B2, D3DFMT_A8R3G3B2, D3DFMT_X4R4G4B4,
                                        D3DFMT_A4R4G4B4, D3DFMT_A2B10G10R10};
  d3d.adapters[0].backBufferFormats = {table.begin(), table.end()};
  d3d.adapters[0].backBufferFormats.insert(D3DFMT_A8B8G8R8);  // no candidate
  d3d.adapters[0].depthFormats = {D3DFMT_D15S1,   D3DFMT_D16, D3DFMT_D24S8,       D3DFMT_D24X8,
                                  D3DFMT_D24X4S4, D3DFMT_D32, D3DFMT_D16_LOCKABLE};
  const std::vector<D3DFORMAT> depths = {D3DFMT_D32, D3DFMT_D24X4S4, D3DFMT_D24X8,
                                         D3DFMT_D24S8, D3DFMT_D16, D3DFMT_D15S1};
  CMyD3DInit init;
  ASSERT_EQ(init.Enumerate(&d3d), S_OK);
  for (const CD3DDeviceRecord* device : init.GetAdapter(0)->m_devices) {
    ASSERT_EQ(device->m_options.size(), 22u);
    for (size_t i = 0; i < device->m_options.size(); ++i) {
      const CD3DOptionRecord& option = *device->m_options[i];
      EXPECT_EQ(option.m_backBufferFormat, table[i / 2]);
      EXPECT_EQ(option.m_windowed, i % 2 == 1) << "full screen first";
      EXPECT_EQ(option.m_depthFormats, depths);
      // Hardware before software; mixed never, as the renderer would not use it.
      EXPECT_EQ(option.m_vertexProcessingTypes, (std::vector{HARDWARE_VP, SOFTWARE_VP}));
    }
  }

  Fake unmatched = Adapters();
  unmatched.adapters[0].depthFormats = {D3DFMT_D16};
  unmatched.adapters[0].unmatchedDepth = {{D3DFMT_A8R8G8B8, D3DFMT_D16}};
  CMyD3DInit dropped;
  ASSERT_EQ(dropped.Enumerate(&unmatched), S_OK);
  EXPECT_EQ(dropped.GetAdapter(0)->m_devices[0]->m_options.size(), 2u) << "only X8 back buffers have a depth format";
}

// The names the settings dialog's lists show at the ends of the tables and
// for values without a name: texts the user reads.
TEST(ValueNames, TableEndsAndFallBacks) {
  EXPECT_STREQ(DeviceTypeName(static_cast<D3DDEVTYPE>(4)), "Unknown D3DDEVTYPE");
  EXPECT_STREQ(MultiSampleTypeName(D3DMULTISAMPLE_16_SAMPLES), "D3DMULTISAMPLE_16_SAMPLES");
  EXPECT_STREQ(MultiSampleTypeName(D3DMULTISAMPLE_TYPE(17)), "Unknown D3DMULTISAMPLE_TYPE");
  EXPECT_STREQ(VertexProcessingName(VERTEXPROCESSING_TYPE(0)), "Unknown VERTEXPROCESSING_TYPE");
  EXPECT_STREQ(PresentIntervalName(3), "Unknown Present-Interval");
  EXPECT_STREQ(FormatName(D3DFMT_UNKNOWN, false), "UNKNOWN");
  EXPECT_STREQ(FormatName(D3DFMT_UYVY, true), "D3DFMT_UYVY");
  EXPECT_STREQ(FormatName(static_cast<D3DFORMAT>(72), true), "Unknown format");
}

}  // namespace
