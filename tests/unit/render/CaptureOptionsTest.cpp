// The capture tool's command line: frames, held keys and the menu commands
// that the options turn into, and a reason for refusing bad input.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "CaptureOptions.h"

namespace {

bool Parse(std::vector<const char*> args, CaptureOptions& options, std::string& error) {
  args.insert(args.begin(), "karvo-capture");
  return ParseCaptureOptions(static_cast<int>(args.size()), args.data(), options, error);
}

}  // namespace

TEST(CaptureOptions, FramesKeysAndMenuCommandsAndRefusals) {
  CaptureOptions options;
  std::string error;
  ASSERT_TRUE(Parse({"--frames", "120,1,60", "--hold", "up:0-120", "--hold", "a:30", "--colorop", "modulate", "--min",
                     "anisotropic", "--mip", "none", "--anisotropy", "8"},
                    options, error))
      << error;
  EXPECT_EQ(options.frames, (std::vector<std::uint32_t>{1, 60, 120}));
  // The program's menu commands, in the order given.
  EXPECT_EQ(options.commands, (std::vector<std::uint32_t>{40028, 40034, 40019, 40042}));
  // Both ends of a range are held; a letter names its key in either case.
  EXPECT_TRUE(options.IsHeld(0x26, 0) && options.IsHeld(0x26, 120) && options.IsHeld('A', 30));
  EXPECT_FALSE(options.IsHeld(0x26, 121) || options.IsHeld('A', 31));

  // Bad input is refused with a reason: no frames, a backward range.
  for (const auto& bad : {std::vector<const char*>{}, {"--frames", "1", "--hold", "up:9-3"}}) {
    error.clear();
    EXPECT_FALSE(Parse(bad, options, error));
    EXPECT_FALSE(error.empty());
  }
}
