#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <string>

#include "platform/crt/FileIo.h"
#include "platform/crt/crt.h"

// The first results from the start state pin the constants of the generator.
TEST(Rand, FirstResultsAfterASeedOfOne) {
  crt::srand(1);
  for (int value : {41, 18467, 6334, 26500, 19169}) EXPECT_EQ(crt::rand(), value);
}

// A short read names the file and tells an empty file from one cut short.
TEST(FileIo, AShortReadNamesTheFileAndWhyItFellShort) {
  const struct { const char* path; std::string bytes, report; } cases[] = {
      {"crt_empty.raw", "", "karvo-terrain: crt_empty.raw: the file is empty\n"},
      {"crt_short.raw", "ab", "karvo-terrain: crt_short.raw: the file ends early\n"},
  };
  for (const auto& c : cases) {
    std::ofstream(c.path, std::ios::binary) << c.bytes;
    std::FILE* file = crt::fopen(c.path, "rb");
    ASSERT_NE(file, nullptr);
    char buffer[4];
    ::testing::internal::CaptureStderr();
    EXPECT_EQ(crt::fread(buffer, 1, sizeof buffer, file), c.bytes.size());
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), c.report);
    crt::fclose(file);
  }
}
