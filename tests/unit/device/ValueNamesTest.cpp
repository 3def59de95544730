// The names in the settings dialog's lists: exact texts and the fall-backs.
#include <gtest/gtest.h>

#include <string>

#include "device/ValueNames.h"

namespace {

TEST(ValueNames, NamesAndFallBacks) {
  const struct {
    const char* got;
    const char* expected;
  } cases[] = {
      {DeviceTypeName(D3DDEVTYPE_HAL), "D3DDEVTYPE_HAL"},
      {DeviceTypeName(D3DDEVTYPE_SW), "D3DDEVTYPE_SW"},
      {DeviceTypeName(static_cast<D3DDEVTYPE>(4)), "Unknown D3DDEVTYPE"},
      {MultiSampleTypeName(D3DMULTISAMPLE_NONE), "D3DMULTISAMPLE_NONE"},
      {MultiSampleTypeName(D3DMULTISAMPLE_NONMASKABLE), "D3DMULTISAMPLE_NONMASKABLE"},
      {MultiSampleTypeName(D3DMULTISAMPLE_2_SAMPLES), "D3DMULTISAMPLE_2_SAMPLES"},
      {MultiSampleTypeName(D3DMULTISAMPLE_16_SAMPLES), "D3DMULTISAMPLE_16_SAMPLES"},
      {MultiSampleTypeName(static_cast<D3DMULTISAMPLE_TYPE>(17)), "Unknown D3DMULTISAMPLE_TYPE"},
      {VertexProcessingName(PURE_HARDWARE_VP), "PURE_HARDWARE_VP"},
      {VertexProcessingName(static_cast<VERTEXPROCESSING_TYPE>(0)),
       "Unknown VERTEXPROCESSING_TYPE"},
      {PresentIntervalName(0), "D3DPRESENT_INTERVAL_DEFAULT"},
      {PresentIntervalName(4), "D3DPRESENT_INTERVAL_THREE"},
      {PresentIntervalName(8), "D3DPRESENT_INTERVAL_FOUR"},
      {PresentIntervalName(0x80000000u), "D3DPRESENT_INTERVAL_IMMEDIATE"},
      {PresentIntervalName(3), "Unknown Present-Interval"},
      {FormatName(D3DFMT_UNKNOWN, true), "D3DFMT_UNKNOWN"},
      {FormatName(D3DFMT_UNKNOWN, false), "UNKNOWN"},
      {FormatName(D3DFMT_A8R8G8B8, false), "A8R8G8B8"},
      {FormatName(D3DFMT_D24S8, true), "D3DFMT_D24S8"},
      {FormatName(D3DFMT_UYVY, true), "D3DFMT_UYVY"},
      {FormatName(D3DFMT_MULTI2_ARGB8, false), "MULTI2_ARGB8"},
      {FormatName(static_cast<D3DFORMAT>(72), true), "Unknown format"},
      {FormatName(static_cast<D3DFORMAT>(72), false), "Unknown format"},
  };
  for (const auto& c : cases) EXPECT_STREQ(c.got, c.expected);
}

}  // namespace
