#include "SkyBox.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <thread>
#include <vector>

#include "Noise.h"
#include "Raster.h"
#include "Sun.h"

namespace assetgen {
namespace {

struct Corner { float x, y, z; };

// The cube's corners in the order in which the game gives them texture
// coordinates (0,0), (1,0), (1,1), (0,1), face by face.
struct Face
{
    const char* file;
    Corner corners[4];
};

constexpr Face kFaces[6] = {
    {"SkyBox_Front.jpg", {{-10, 10, 10}, {10, 10, 10}, {10, -10, 10}, {-10, -10, 10}}},
    {"SkyBox_Back.jpg", {{10, 10, -10}, {-10, 10, -10}, {-10, -10, -10}, {10, -10, -10}}},
    {"SkyBox_Left.jpg", {{-10, 10, -10}, {-10, 10, 10}, {-10, -10, 10}, {-10, -10, -10}}},
    {"SkyBox_Right.jpg", {{10, 10, 10}, {10, 10, -10}, {10, -10, -10}, {10, -10, 10}}},
    {"SkyBox_Top.jpg", {{-10, 10, -10}, {10, 10, -10}, {10, 10, 10}, {-10, 10, 10}}},
    {"SkyBox_Bottom.jpg", {{-10, -10, 10}, {10, -10, 10}, {10, -10, -10}, {-10, -10, -10}}},
};

// The cube stands this far above the eye.
constexpr float kCubeLift = 1.3f;

const Color kZenith = Color::Bytes(58, 112, 192);
const Color kHorizon = Color::Bytes(200, 216, 230);
const Color kBelow = Color::Bytes(70, 82, 92);
const Color kSunColor = Color::Bytes(255, 247, 222);
const Color kCloudLit = Color::Bytes(250, 250, 252);
const Color kCloudShade = Color::Bytes(168, 176, 192);

Color SkyColor(const Direction& d)
{
    const Direction sun = SunDirection();
    const float toSun = std::max(0.0f, d.x * sun.x + d.y * sun.y + d.z * sun.z);

    if (d.y < 0.0f) // the dim lower half, hazy at the horizon
        return Mix(kHorizon, kBelow, SmoothStep(0.0f, 0.3f, -d.y));

    Color c = Mix(kHorizon, kZenith, std::pow(d.y, 0.55f));
    // Warm glow about the sun, widest near the horizon.
    c = Mix(c, kSunColor, 0.35f * std::pow(toSun, 12.0f) + 0.12f * std::pow(toSun, 3.0f) * (1.0f - d.y));

    // Clouds on a flat layer overhead: noise read where the view ray meets it.
    const float reach = 1.0f / (d.y + 0.09f);
    const float px = d.x * reach;
    const float pz = d.z * reach;
    const float n = Fbm(px * 1.2f, pz * 1.2f, 3.3f, 5);
    const float cover = SmoothStep(0.02f, 0.42f, n) * SmoothStep(0.015f, 0.2f, d.y);
    if (cover > 0.0f) {
        // Thicker parts are greyer underneath, and all of it brightens toward the sun.
        const float thickness = SmoothStep(0.1f, 0.7f, n);
        Color cloud = Mix(kCloudLit, kCloudShade, 0.55f * thickness * (1.0f - toSun));
        cloud = Mix(cloud, kHorizon, 0.5f * SmoothStep(0.3f, 0.02f, d.y));
        c = Mix(c, cloud, 0.92f * cover);
    }

    // The sun's disc and its bright core on top of everything.
    const float disc = SmoothStep(0.99955f, 0.99975f, toSun);
    c = Mix(c, Color(1.0f, 0.99f, 0.95f), std::max(disc, 0.5f * std::pow(toSun, 400.0f)));
    return c;
}

std::vector<uint8_t> PaintFace(const Face& face)
{
    constexpr int n = kSkyFaceSize;
    std::vector<uint8_t> rgb(static_cast<size_t>(n) * n * 3);
    const Corner* v = face.corners;
    for (int py = 0; py < n; ++py) {
        // Edge pixels sit exactly on the cube's edges, so that under clamped
        // sampling both faces of an edge show the same colour there.
        const float t = static_cast<float>(py) / (n - 1);
        for (int px = 0; px < n; ++px) {
            const float s = static_cast<float>(px) / (n - 1);
            const float w0 = (1 - s) * (1 - t), w1 = s * (1 - t), w2 = s * t, w3 = (1 - s) * t;
            const float x = w0 * v[0].x + w1 * v[1].x + w2 * v[2].x + w3 * v[3].x;
            const float y = w0 * v[0].y + w1 * v[1].y + w2 * v[2].y + w3 * v[3].y + kCubeLift;
            const float z = w0 * v[0].z + w1 * v[1].z + w2 * v[2].z + w3 * v[3].z;
            const Color c = SkyColor(Normalized(x, y, z));
            uint8_t* p = &rgb[(static_cast<size_t>(py) * n + px) * 3];
            p[0] = ToByte(c.r);
            p[1] = ToByte(c.g);
            p[2] = ToByte(c.b);
        }
    }
    return rgb;
}

} // namespace

bool WriteSkyBox(const std::filesystem::path& data)
{
    std::vector<std::vector<uint8_t>> faces(6);
    std::thread helper([&] {
        for (int i = 1; i < 6; i += 2)
            faces[i] = PaintFace(kFaces[i]);
    });
    for (int i = 0; i < 6; i += 2)
        faces[i] = PaintFace(kFaces[i]);
    helper.join();

    bool ok = true;
    for (int i = 0; i < 6; ++i) {
        const std::filesystem::path path = data / kFaces[i].file;
        if (!WriteJpeg(path.string(), kSkyFaceSize, kSkyFaceSize, faces[i], 92)) {
            std::fprintf(stderr, "karvo-assetgen: could not write %s\n", path.string().c_str());
            ok = false;
        }
    }
    return ok;
}

} // namespace assetgen
