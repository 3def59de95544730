#include "ObjectPictures.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <string>
#include <vector>

#include "Noise.h"
#include "Raster.h"

namespace assetgen {
namespace {

constexpr float kPi = 3.14159265f;

// Billboards are drawn 1.2 times as tall as wide, so shapes that should look
// round are squeezed by this much in y on the square canvas.
constexpr float kBillboardStretch = 1.2f;

// Per-pixel jitter for leaves, needles and the like: a cheap hash, no state.
float Speckle(float x, float y, uint32_t salt)
{
    // Multiplied as unsigned: the same bits as the wrapping product, without
    // the signed overflow.
    uint32_t h = static_cast<uint32_t>(static_cast<int>(x)) * 73856093u ^
                 static_cast<uint32_t>(static_cast<int>(y)) * 19349663u ^ salt;
    h ^= h >> 13;
    h *= 0x5bd1e995u;
    h ^= h >> 15;
    return (h & 0xFFFF) / 65535.0f * 2.0f - 1.0f;
}

// ---------------------------------------------------------------- trees

Canvas DrawBroadleafTree()
{
    constexpr int n = 512;
    Canvas c(n, n);
    Random rng(0x7EE1);
    const Color bark = Color::Bytes(92, 68, 48);
    const Color barkLight = Color::Bytes(128, 98, 70);

    // The foot lies 50 units below the ground, so the trunk runs to the bottom.
    auto barkShade = [&](float x, float) {
        return Mix(bark, barkLight, Clamp01(0.5f + 0.5f * std::sin(x * 0.35f)) * 0.5f);
    };
    c.CapsuleShaded(256, 512, 250, 250, 24, 13, barkShade);
    // Main limbs spreading into the crown.
    const float limbs[][4] = {{250, 300, 150, 170}, {252, 290, 360, 160}, {250, 260, 215, 110},
                              {252, 270, 300, 100}, {250, 320, 110, 250}, {252, 315, 390, 240}};
    for (const auto& l : limbs)
        c.CapsuleShaded(l[0], l[1], l[2], l[3], 9, 4, barkShade);

    // Leaf clusters inside a lumpy crown, back ones first and darker, the
    // ones toward the light (upper right) brighter.
    struct Cluster { float x, y, r, depth; };
    std::vector<Cluster> clusters;
    while (clusters.size() < 460) {
        const float x = static_cast<float>(rng.Range(30, 482));
        const float y = static_cast<float>(rng.Range(20, 360));
        const float dx = (x - 256) / 226.0f;
        const float dy = (y - 190) / 170.0f;
        const float lump = 0.25f * Fbm(x / 70.0f, y / 70.0f, 2.5f, 3);
        if (dx * dx + dy * dy > 1.0f + lump)
            continue;
        clusters.push_back({x, y, static_cast<float>(rng.Range(14, 30)), static_cast<float>(rng.Unit())});
    }
    std::sort(clusters.begin(), clusters.end(), [](const Cluster& a, const Cluster& b) { return a.depth < b.depth; });
    const Color dark = Color::Bytes(34, 70, 28);
    const Color mid = Color::Bytes(66, 112, 42);
    const Color light = Color::Bytes(128, 168, 70);
    for (const Cluster& k : clusters) {
        const float toLight = Clamp01(0.5f + 0.5f * ((k.x - 256) * 0.6f - (k.y - 190) * 0.8f) / 200.0f);
        const Color base = Mix(dark, mid, 0.35f + 0.65f * k.depth);
        const float cx = k.x, cy = k.y, r = k.r;
        c.EllipseShaded(cx, cy, r, r / kBillboardStretch, [=](float x, float y) {
            const float inner = Clamp01(0.5f + ((x - cx) * 0.6f - (y - cy) * 0.8f * kBillboardStretch) / (2.0f * r));
            Color col = Mix(base, light, 0.55f * toLight * inner * k.depth + 0.1f * inner);
            return col.Scaled(1.0f + 0.12f * Speckle(x, y, 11));
        });
    }
    return c;
}

Canvas DrawConiferTree()
{
    constexpr int n = 512;
    Canvas c(n, n);
    Random rng(0xF1A);
    c.Capsule(256, 512, 256, 40, 14, 4, Color::Bytes(84, 58, 40));
    const Color shadow = Color::Bytes(22, 52, 36);
    const Color needle = Color::Bytes(40, 86, 52);
    const Color lit = Color::Bytes(82, 128, 70);
    // Tiers of drooping boughs, lowest first so that each upper tier hangs
    // over the one below it.
    constexpr int tiers = 10;
    for (int i = 0; i < tiers; ++i) {
        const float f = static_cast<float>(i) / (tiers - 1); // 0 lowest, 1 top
        const float bottom = Lerp(452, 92, f);
        const float top = bottom - Lerp(150, 80, f);
        const float half = Lerp(205, 46, f);
        std::vector<float> pts = {256, top};
        // Right side, then a ragged hem of needle tips, then the left side.
        pts.insert(pts.end(), {256 + half * 0.55f, bottom - (bottom - top) * 0.45f});
        constexpr int tips = 14;
        for (int k = 0; k <= tips; ++k) {
            const float s = 1.0f - 2.0f * k / tips;
            const float x = 256 + half * s + static_cast<float>(rng.Range(-6, 6));
            const float droop = (k % 2 == 0 ? 14.0f : 0.0f) + static_cast<float>(rng.Range(-4, 4));
            pts.insert(pts.end(), {x, bottom + droop - 16.0f * (1.0f - s * s)});
        }
        pts.insert(pts.end(), {256 - half * 0.55f, bottom - (bottom - top) * 0.45f});
        c.Polygon(pts, [=](float x, float y) {
            const float side = Clamp01(0.5f + (x - 256) / (2.0f * half)); // lit from the right
            const float under = SmoothStep(top + (bottom - top) * 0.5f, bottom + 10, y);
            Color col = Mix(needle, lit, 0.6f * side * (1.0f - under));
            col = Mix(col, shadow, 0.55f * under);
            return col.Scaled(1.0f + 0.18f * Speckle(x * 0.7f, y * 2.0f, 23));
        });
    }
    return c;
}

// ---------------------------------------------------------------- water plants

// A ribbon following a wavy path from (x, 256) upwards.
void Frond(Canvas& c, float x, float topY, float width, float wave, float phase, const Color& color, const Color& rib)
{
    constexpr int steps = 24;
    float px = x, py = 256.0f;
    for (int i = 1; i <= steps; ++i) {
        const float t = static_cast<float>(i) / steps;
        const float nx = x + wave * std::sin(phase + t * 5.5f) * t;
        const float ny = Lerp(256.0f, topY, t);
        const float w0 = width * (1.0f - 0.7f * (t - 1.0f / steps));
        const float w1 = width * (1.0f - 0.7f * t);
        c.CapsuleShaded(px, py, nx, ny, w0, w1, [=](float xx, float) {
            const float mid = std::fabs(xx - (px + nx) * 0.5f) / std::max(w0, 1.0f);
            return Mix(rib, color, SmoothStep(0.0f, 0.35f, mid)).Scaled(1.0f + 0.08f * Speckle(xx, t * 90, 5));
        });
        px = nx;
        py = ny;
    }
}

Canvas DrawKelp()
{
    Canvas c(256, 256);
    Random rng(0x4E1);
    for (int i = 0; i < 7; ++i) {
        const float x = 128.0f + static_cast<float>(rng.Range(-60, 60));
        const float shade = static_cast<float>(rng.Unit());
        const Color color = Mix(Color::Bytes(92, 104, 36), Color::Bytes(138, 138, 54), shade);
        Frond(c, x, static_cast<float>(rng.Range(8, 70)), static_cast<float>(rng.Range(7, 12)),
              static_cast<float>(rng.Range(14, 30)), static_cast<float>(rng.Range(0, 6.28)), color, color.Scaled(0.7f));
    }
    return c;
}

Canvas DrawSeagrass()
{
    Canvas c(256, 256);
    Random rng(0x5EA);
    for (int i = 0; i < 34; ++i) {
        const float lean = static_cast<float>(rng.Range(-1.0, 1.0));
        const float shade = static_cast<float>(rng.Unit());
        const Color color = Mix(Color::Bytes(36, 110, 72), Color::Bytes(96, 168, 96), shade);
        float px = 128.0f + lean * 20.0f, py = 256.0f;
        const float height = static_cast<float>(rng.Range(120, 235));
        for (int k = 1; k <= 12; ++k) {
            const float t = k / 12.0f;
            const float nx = 128.0f + lean * (20.0f + 90.0f * t * t);
            const float ny = 256.0f - height * t;
            c.Capsule(px, py, nx, ny, 4.0f * (1.0f - 0.6f * (t - 1.0f / 12)), 4.0f * (1.0f - 0.6f * t), color);
            px = nx;
            py = ny;
        }
    }
    // A few round seed pods among the blades.
    for (int i = 0; i < 6; ++i)
        c.Ellipse(static_cast<float>(rng.Range(70, 186)), static_cast<float>(rng.Range(90, 200)), 6, 6 / kBillboardStretch,
                  Color::Bytes(176, 150, 70));
    return c;
}

// ---------------------------------------------------------------- flowers

// Petals radiating from the centre of a 128 x 128 head seen from above.
void Petals(Canvas& c, int count, float inner, float outer, float width, float turn, const Color& base, const Color& tip)
{
    for (int i = 0; i < count; ++i) {
        const float a = turn + 2.0f * kPi * i / count;
        const float x0 = 64 + inner * std::cos(a), y0 = 64 + inner * std::sin(a);
        const float x1 = 64 + outer * std::cos(a), y1 = 64 + outer * std::sin(a);
        c.CapsuleShaded(x0, y0, x1, y1, width * 0.6f, width, [=](float x, float y) {
            const float r = std::hypot(x - 64, y - 64);
            return Mix(base, tip, SmoothStep(inner, outer, r)).Scaled(1.0f + 0.05f * Speckle(x, y, 3));
        });
    }
}

Canvas DrawDaisy()
{
    Canvas c(128, 128);
    Petals(c, 20, 14, 54, 6.5f, 0.1f, Color::Bytes(236, 232, 214), Color::Bytes(250, 248, 240));
    c.EllipseShaded(64, 64, 17, 17, [](float x, float y) {
        return Mix(Color::Bytes(236, 176, 30), Color::Bytes(196, 128, 20), Clamp01(std::hypot(x - 64, y - 64) / 17)).Scaled(1.0f + 0.15f * Speckle(x, y, 9));
    });
    return c;
}

Canvas DrawPoppy()
{
    Canvas c(128, 128);
    for (int i = 0; i < 5; ++i) {
        const float a = 0.3f + 2.0f * kPi * i / 5;
        const float cx = 64 + 26 * std::cos(a), cy = 64 + 26 * std::sin(a);
        c.EllipseShaded(cx, cy, 34, 34, [=](float x, float y) {
            const float r = std::hypot(x - 64, y - 64);
            const float edge = std::hypot(x - cx, y - cy) / 34;
            return Mix(Color::Bytes(150, 16, 18), Color::Bytes(222, 40, 30), SmoothStep(8, 40, r)).Scaled(1.0f - 0.25f * edge * edge);
        });
    }
    c.Ellipse(64, 64, 11, 11, Color::Bytes(30, 24, 28));
    Petals(c, 12, 8, 15, 1.2f, 0.0f, Color::Bytes(40, 32, 40), Color::Bytes(60, 50, 60));
    c.Ellipse(64, 64, 6, 6, Color::Bytes(96, 110, 60));
    return c;
}

Canvas DrawBellflower()
{
    Canvas c(128, 128);
    // Five pointed violet petals as a star polygon, veined toward the middle.
    std::vector<float> star;
    for (int i = 0; i < 10; ++i) {
        const float a = -kPi / 2 + kPi * i / 5;
        const float r = (i % 2 == 0) ? 58.0f : 26.0f;
        star.insert(star.end(), {64 + r * std::cos(a), 64 + r * std::sin(a)});
    }
    c.Polygon(star, [](float x, float y) {
        const float r = std::hypot(x - 64, y - 64);
        const float ang = std::atan2(y - 64, x - 64);
        const float vein = 0.12f * std::pow(std::fabs(std::cos(ang * 5.0f * 0.5f + kPi / 4)), 8.0f);
        return Mix(Color::Bytes(88, 60, 170), Color::Bytes(150, 120, 226), SmoothStep(10, 55, r)).Scaled(1.0f - vein);
    });
    c.Ellipse(64, 64, 12, 12, Color::Bytes(238, 232, 190));
    c.Ellipse(64, 64, 5, 5, Color::Bytes(214, 190, 60));
    return c;
}

// ---------------------------------------------------------------- wing

// One feathered wing: the hinge along the bottom row (v = 1), the tip at the
// top (v = 0), the leading edge at the left (u = 0, the front), the trailing
// edge at the right.
Canvas DrawWing()
{
    constexpr int n = 256;
    Canvas c(n, n);
    const Color feather = Color::Bytes(238, 238, 234);
    const Color featherShade = Color::Bytes(178, 182, 192);
    const Color tipDark = Color::Bytes(54, 54, 62);

    // Leading and trailing edges, from the hinge (s = 0) to the tip (s = 1).
    auto leading = [](float s, float& x, float& y) {
        x = Lerp(14.0f, 92.0f, s) - 18.0f * std::sin(kPi * s);
        y = Lerp(255.0f, 6.0f, s);
    };
    auto trailing = [](float s, float& x, float& y) {
        x = Lerp(242.0f, 100.0f, s * s);
        y = Lerp(255.0f, 6.0f, std::pow(s, 0.8f));
    };

    // The flight feathers, hinge first so that the outer ones overlap.
    constexpr int feathers = 26;
    for (int i = 0; i < feathers; ++i) {
        const float s = static_cast<float>(i) / (feathers - 1);
        float lx, ly, tx, ty;
        leading(s, lx, ly);
        trailing(s, tx, ty);
        const float rootX = Lerp(lx, tx, 0.3f), rootY = Lerp(ly, ty, 0.3f);
        // Primaries near the tip point outwards, toward the tip.
        const float endX = tx + 6.0f, endY = ty - 10.0f * s;
        const float dark = SmoothStep(0.45f, 0.9f, s);
        const float width = Lerp(11.0f, 6.0f, s);
        c.CapsuleShaded(rootX, rootY, endX, endY, width, width * 0.7f, [=](float x, float y) {
            const float len2 = (endX - rootX) * (endX - rootX) + (endY - rootY) * (endY - rootY);
            const float along = Clamp01(((x - rootX) * (endX - rootX) + (y - rootY) * (endY - rootY)) / len2);
            // Each feather darkens toward its rim, so neighbours stand apart.
            const float rim = SmoothStep(-3.0f, 0.0f, SdSegment(x, y, rootX, rootY, endX, endY, width, width * 0.7f));
            const Color col = Mix(feather, featherShade, 0.45f * along + 0.4f * rim);
            return Mix(col, tipDark, dark * SmoothStep(0.45f, 0.8f, along));
        });
    }
    // Coverts: the smooth front part of the wing over the feathers' roots.
    std::vector<float> coverts;
    constexpr int steps = 16;
    for (int i = 0; i <= steps; ++i) {
        float x, y;
        leading(static_cast<float>(i) / steps, x, y);
        coverts.insert(coverts.end(), {x, y});
    }
    for (int i = steps; i >= 0; --i) {
        const float s = static_cast<float>(i) / steps;
        float lx, ly, tx, ty;
        leading(s, lx, ly);
        trailing(s, tx, ty);
        coverts.insert(coverts.end(), {Lerp(lx, tx, 0.42f), Lerp(ly, ty, 0.42f)});
    }
    coverts.insert(coverts.end(), {14.0f, 256.0f});
    c.Polygon(coverts, [&](float x, float y) {
        return Mix(feather, featherShade, 0.25f * SmoothStep(40, 140, x)).Scaled(1.0f + 0.03f * Speckle(x, y, 7));
    });
    // The root along the hinge, closing the wing against the body.
    c.Capsule(14, 253, 240, 253, 4, 4, featherShade);
    // The bony front edge.
    for (int i = 0; i < steps; ++i) {
        float x0, y0, x1, y1;
        leading(static_cast<float>(i) / steps, x0, y0);
        leading(static_cast<float>(i + 1) / steps, x1, y1);
        c.Capsule(x0, y0, x1, y1, 3.0f - 1.5f * i / steps, 3.0f - 1.5f * (i + 1) / steps, featherShade);
    }
    return c;
}

Canvas Mirrored(const Canvas& source)
{
    Canvas out(source.Width(), source.Height());
    for (int y = 0; y < source.Height(); ++y)
        for (int x = 0; x < source.Width(); ++x)
            out.Set(source.Width() - 1 - x, y, source.At(x, y));
    return out;
}

// ---------------------------------------------------------------- rain

// A falling streak, faint on top, on the exact colour-key background.
std::vector<uint8_t> DrawRain(int width, int height)
{
    std::vector<uint8_t> rgba(static_cast<size_t>(width) * height * 4);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            uint8_t* p = &rgba[(static_cast<size_t>(y) * width + x) * 4];
            const float across = std::fabs(x + 0.5f - width * 0.5f) / (width * 0.22f);
            const float body = Clamp01(1.0f - across * across);
            const float along = SmoothStep(0.0f, 0.8f, (y + 0.5f) / height);
            const float a = body * (0.25f + 0.55f * along);
            if (a < 0.02f) {
                p[0] = 0x00; p[1] = 0x00; p[2] = 0xFF; p[3] = 0x64; // the key
                continue;
            }
            p[0] = 196;
            p[1] = 210;
            p[2] = 232;
            p[3] = ToByte(a);
        }
    }
    return rgba;
}

// ---------------------------------------------------------------- tower walls

// A window facade lying on its side: x of the picture runs up the wall
// (u = 0 at the foot), y along it. `floors` storeys over the whole height.
std::vector<uint8_t> DrawFacade(int upPixels, int alongPixels, int floors, int bays, uint64_t seed)
{
    Random rng(seed);
    std::vector<uint8_t> rgb(static_cast<size_t>(upPixels) * alongPixels * 3);
    std::vector<float> lit(static_cast<size_t>(floors) * bays);
    for (float& l : lit)
        l = static_cast<float>(rng.Unit());
    const Color concrete = Color::Bytes(168, 164, 156);
    const Color concreteDark = Color::Bytes(120, 118, 114);
    const Color glassLow = Color::Bytes(46, 62, 84);
    const Color glassHigh = Color::Bytes(120, 150, 180);
    const Color warm = Color::Bytes(236, 204, 130);
    const float floorPx = static_cast<float>(upPixels) / floors;
    const float bayPx = static_cast<float>(alongPixels) / bays;
    for (int a = 0; a < alongPixels; ++a) {
        for (int u = 0; u < upPixels; ++u) {
            const float storey = u / floorPx;
            const int floor = std::min(static_cast<int>(storey), floors - 1);
            const float inFloor = storey - floor;       // 0 at the slab, 1 at the next
            const float bay = a / bayPx;
            const int bayIndex = std::min(static_cast<int>(bay), bays - 1);
            const float inBay = bay - bayIndex;
            const float weather = 0.06f * Fbm(u / 40.0f, a / 9.0f, static_cast<float>(seed % 97), 3);
            Color c = Mix(concrete, concreteDark, 0.5f + weather * 4.0f);
            const bool window = inFloor > 0.28f && inFloor < 0.9f && inBay > 0.14f && inBay < 0.86f && floor > 0;
            if (window) {
                // Glass mirrors the sky: darker low in each pane, some rooms lit.
                const float l = lit[static_cast<size_t>(floor) * bays + bayIndex];
                c = Mix(glassLow, glassHigh, 0.25f + 0.6f * inFloor + 0.15f * (l - 0.5f));
                if (l > 0.86f)
                    c = Mix(c, warm, 0.75f);
                const float mullion = std::fabs(inBay - 0.5f);
                if (mullion < 0.025f)
                    c = concreteDark;
            } else if (floor == 0) {
                c = c.Scaled(0.8f); // the plinth at the foot
            }
            if (inFloor < 0.08f)
                c = c.Scaled(0.85f); // slab edge between storeys
            uint8_t* p = &rgb[(static_cast<size_t>(a) * upPixels + u) * 3];
            p[0] = ToByte(c.r);
            p[1] = ToByte(c.g);
            p[2] = ToByte(c.b);
        }
    }
    return rgb;
}

// ---------------------------------------------------------------- unused pictures

Canvas DrawBeard()
{
    Canvas c(128, 128);
    Random rng(0xBEA4D);
    // A full beard hanging from a moustache: many short curly strokes.
    for (int i = 0; i < 420; ++i) {
        const float t = static_cast<float>(rng.Unit());
        const float across = static_cast<float>(rng.Range(-1.0, 1.0));
        const float width = Lerp(50, 20, t * t);
        const float x = 64 + across * width;
        const float y = 26 + t * 92;
        if (y < 46 && std::fabs(across) < 0.45f)
            continue; // the mouth
        const float shade = static_cast<float>(rng.Unit());
        c.Capsule(x, y, x + static_cast<float>(rng.Range(-5, 5)), y + static_cast<float>(rng.Range(4, 10)), 1.6f, 1.0f,
                  Mix(Color::Bytes(96, 58, 30), Color::Bytes(150, 100, 56), shade));
    }
    c.Capsule(30, 30, 60, 38, 5, 4, Color::Bytes(110, 68, 36));
    c.Capsule(98, 30, 68, 38, 5, 4, Color::Bytes(110, 68, 36));
    return c;
}

Canvas DrawPacket()
{
    Canvas c(128, 128);
    // A square foil packet with a serrated rim and the ring pressed into it.
    std::vector<float> rim;
    for (int i = 0; i < 4 * 24; ++i) {
        const int side = i / 24;
        const float t = (i % 24) / 24.0f;
        const float out = (i % 2 == 0) ? 0.0f : 3.0f;
        float x = 0, y = 0;
        switch (side) {
        case 0: x = 12 + 104 * t; y = 12 - out; break;
        case 1: x = 116 + out; y = 12 + 104 * t; break;
        case 2: x = 116 - 104 * t; y = 116 + out; break;
        default: x = 12 - out; y = 116 - 104 * t; break;
        }
        rim.insert(rim.end(), {x, y});
    }
    c.Polygon(rim, [](float x, float y) {
        const float sheen = 0.5f + 0.5f * std::sin((x + y) * 0.05f);
        return Mix(Color::Bytes(60, 92, 168), Color::Bytes(150, 178, 226), sheen);
    });
    c.Fill(20, 20, 108, 108, [](float x, float y) { return std::fabs(std::hypot(x - 64, y - 64) - 32) - 4; },
           [](float x, float y) { return Mix(Color::Bytes(190, 206, 236), Color::Bytes(90, 118, 186), Clamp01((x + y - 128) / 60 + 0.5f)); });
    return c;
}

bool Keyed(const std::filesystem::path& path, const Canvas& canvas)
{
    return WritePng(path.string(), canvas.Width(), canvas.Height(), 4, canvas.KeyedRgba());
}

} // namespace

bool WriteObjectPictures(const std::filesystem::path& data)
{
    struct Job { const char* file; bool ok; };
    std::vector<Job> jobs;
    auto note = [&](const char* file, bool ok) { jobs.push_back({file, ok}); };

    note("tree.png", Keyed(data / "tree.png", DrawBroadleafTree()));
    note("tree3.png", Keyed(data / "tree3.png", DrawConiferTree()));
    note("weads4.png", Keyed(data / "weads4.png", DrawKelp()));
    note("weads5.png", Keyed(data / "weads5.png", DrawSeagrass()));
    note("flower1.png", Keyed(data / "flower1.png", DrawDaisy()));
    note("flower2.png", Keyed(data / "flower2.png", DrawPoppy()));
    note("flower3.png", Keyed(data / "flower3.png", DrawBellflower()));
    const Canvas wing = DrawWing();
    note("krilo_right.png", Keyed(data / "krilo_right.png", wing));
    note("krilo_left.png", Keyed(data / "krilo_left.png", Mirrored(wing)));
    note("rain.png", WritePng((data / "rain.png").string(), 16, 128, 4, DrawRain(16, 128)));
    // Tower 1 is 6500 high with 22 storeys, tower 2 27500 high with 92, so
    // both have storeys of about the same height.
    note("skyscraperwall.jpg", WriteJpeg((data / "skyscraperwall.jpg").string(), 512, 256, DrawFacade(512, 256, 22, 12, 0x51), 90));
    note("skyscraperwall2.jpg", WriteJpeg((data / "skyscraperwall2.jpg").string(), 2048, 256, DrawFacade(2048, 256, 92, 12, 0x52), 90));
    note("beard.jpg", WriteJpeg((data / "beard.jpg").string(), 128, 128, DrawBeard().Rgb(Color(1, 1, 1)), 90));
    note("preservativ.png", Keyed(data / "preservativ.png", DrawPacket()));

    bool ok = true;
    for (const Job& job : jobs) {
        if (!job.ok) {
            std::fprintf(stderr, "karvo-assetgen: could not write %s\n", (data / job.file).string().c_str());
            ok = false;
        }
    }
    return ok;
}

} // namespace assetgen
