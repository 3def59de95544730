#include "AssetSet.h"

#include <cstdio>
#include <fstream>
#include <string>
#include <thread>

#include "Landscape.h"
#include "ObjectPictures.h"
#include "SkyBox.h"
#include "Sounds.h"
#include "TerrainTextures.h"

namespace assetgen {
namespace {

bool WriteBytes(const std::filesystem::path& path, const std::vector<uint8_t>& bytes)
{
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    return static_cast<bool>(out);
}

bool Report(bool ok, const std::filesystem::path& path)
{
    if (!ok)
        std::fprintf(stderr, "karvo-assetgen: could not write %s\n", path.string().c_str());
    return ok;
}

} // namespace

bool WriteAllAssets(const std::filesystem::path& root)
{
    const std::filesystem::path data = root / "Data";
    std::error_code error;
    for (const auto& dir : {data, root / "music", root / "speech" / "mp3"}) {
        std::filesystem::create_directories(dir, error);
        if (error) {
            std::fprintf(stderr, "karvo-assetgen: could not create %s\n", dir.string().c_str());
            return false;
        }
    }

    // The sounds wait mostly on external encoders: make them alongside the
    // pictures.
    bool soundsOk = false;
    std::thread sounds([&] { soundsOk = WriteSounds(root, root / ".assetgen-scratch"); });

    bool ok = true;
    const Landscape map = Landscape::Generate();
    ok &= Report(WriteBytes(data / "HeightMap.raw", map.Samples()), data / "HeightMap.raw");
    ok &= Report(WriteBaseTexture((data / "Base_Texture_BigPoint.jpg").string(), map), data / "Base_Texture_BigPoint.jpg");
    ok &= Report(WriteDetailTexture((data / "Detail_Texture.jpg").string()), data / "Detail_Texture.jpg");
    ok &= Report(WriteWaterTexture((data / "Water_Texture.jpg").string()), data / "Water_Texture.jpg");
    ok &= WriteSkyBox(data);
    ok &= WriteObjectPictures(data);
    sounds.join();
    return ok && soundsOk;
}

} // namespace assetgen
