// The names in the settings dialog's lists that its own tests do not show:
// the ends of the tables, the short format names and the fall-backs for
// values without a name.
#include <gtest/gtest.h>

#include "device/ValueNames.h"

TEST(ValueNames, NamesAndFallBacks) {
  EXPECT_STREQ(DeviceTypeName(static_cast<D3DDEVTYPE>(4)), "Unknown D3DDEVTYPE");
  EXPECT_STREQ(MultiSampleTypeName(D3DMULTISAMPLE_16_SAMPLES), "D3DMULTISAMPLE_16_SAMPLES");
  EXPECT_STREQ(MultiSampleTypeName(static_cast<D3DMULTISAMPLE_TYPE>(17)), "Unknown D3DMULTISAMPLE_TYPE");
  EXPECT_STREQ(VertexProcessingName(static_cast<VERTEXPROCESSING_TYPE>(0)), "Unknown VERTEXPROCESSING_TYPE");
  EXPECT_STREQ(PresentIntervalName(3), "Unknown Present-Interval");
  EXPECT_STREQ(FormatName(D3DFMT_UNKNOWN, false), "UNKNOWN");
  EXPECT_STREQ(FormatName(D3DFMT_UYVY, true), "D3DFMT_UYVY");
  EXPECT_STREQ(FormatName(static_cast<D3DFORMAT>(72), true), "Unknown format");
}
