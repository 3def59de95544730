// karvo-assetgen: writes every asset the game reads from its working
// directory (Data/, music/, speech/mp3/) into one output folder.
//
//   karvo-assetgen <output folder>
//
// The output is the same, byte for byte, on every run: all randomness comes
// from fixed seeds and the external encoders write no dates.
#include <cstdio>
#include <filesystem>
#include <string>

#include "AssetSet.h"

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::fprintf(stderr, "usage: %s <output folder>\n", argc > 0 ? argv[0] : "karvo-assetgen");
        return 2;
    }
    return assetgen::WriteAllAssets(std::filesystem::path(argv[1])) ? 0 : 1;
}
