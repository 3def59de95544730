// The capture tool's command line: frames, held keys and the menu commands
// that the options turn into, and clear refusals of bad input.
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

TEST(CaptureOptions, FramesKeysAndMenuCommands) {
  CaptureOptions options;
  std::string error;
  ASSERT_TRUE(Parse({"--frames", "120,1,60,60", "--hold", "up:0-120", "--hold", "left:30", "--camera", "third",
                     "--wireframe", "--multipass", "--colorop", "modulate", "--min", "anisotropic", "--mip", "none",
                     "--anisotropy", "8", "--out", "shots", "--step", "0.05"},
                    options, error))
      << error;
  EXPECT_EQ(options.frames, (std::vector<std::uint32_t>{1, 60, 120}));
  // The program's menu commands, in the order given.
  EXPECT_EQ(options.commands, (std::vector<std::uint32_t>{40012, 40014, 40023, 40028, 40034, 40019, 40042}));
  EXPECT_EQ(options.outDir, "shots");
  EXPECT_DOUBLE_EQ(options.step, 0.05);

  EXPECT_TRUE(options.IsHeld(0x26, 0));  // VK_UP, both ends included
  EXPECT_TRUE(options.IsHeld(0x26, 120));
  EXPECT_FALSE(options.IsHeld(0x26, 121));
  EXPECT_TRUE(options.IsHeld(0x25, 30));  // VK_LEFT for one frame
  EXPECT_FALSE(options.IsHeld(0x25, 31));

  ASSERT_TRUE(Parse({"--frames", "5", "--hold", "a:1-2"}, options, error)) << error;
  EXPECT_TRUE(options.IsHeld('A', 2));  // letters in either case
  EXPECT_TRUE(options.commands.empty());
}

TEST(CaptureOptions, BadInputIsRefusedWithAReason) {
  const std::vector<std::vector<const char*>> bad = {
      {},                                          // no frames
      {"--frames", "0"},                           // frames start at 1
      {"--frames", "1,,2"},                        // empty entry
      {"--frames", "-3"},                          // no sign
      {"--frames", "99999999999"},                 // beyond 32 bits
      {"--frames", "1", "--hold", "up"},           // no range
      {"--frames", "1", "--hold", "up:9-3"},       // backwards
      {"--frames", "1", "--hold", "escape:1-2"},   // unknown key
      {"--frames", "1", "--camera", "fourth"},     // unknown camera
      {"--frames", "1", "--mip", "anisotropic"},   // no such mip filter
      {"--frames", "1", "--anisotropy", "3"},      // not a menu value
      {"--frames", "1", "--step", "0"},            // a clock must move
      {"--frames", "1", "--prefix", "a/b"},        // a name, not a path
      {"--frames", "1", "--shiny"},                // unknown option
  };
  for (const auto& args : bad) {
    CaptureOptions options;
    std::string error;
    EXPECT_FALSE(Parse(args, options, error)) << (args.empty() ? "(none)" : args.back());
    EXPECT_FALSE(error.empty());
  }
}
