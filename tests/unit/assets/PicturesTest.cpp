// The 23 pictures: they load, have sizes the texture loader takes as they
// are, keep the colour-key rules, and show what they are for.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <string>

#include "AssetFiles.h"

using assettest::LoadPicture;
using assettest::Picture;

namespace {

bool PowerOfTwo(int v) { return v > 0 && (v & (v - 1)) == 0; }

const char* const kKeyed[] = {"tree.png", "tree3.png", "krilo_right.png", "krilo_left.png", "weads4.png",
                              "weads5.png", "flower1.png", "flower2.png", "flower3.png", "preservativ.png"};
const char* const kOpaque[] = {"Base_Texture_BigPoint.jpg", "Detail_Texture.jpg", "Water_Texture.jpg",
                               "skyscraperwall.jpg", "skyscraperwall2.jpg", "beard.jpg",
                               "SkyBox_Front.jpg", "SkyBox_Back.jpg", "SkyBox_Left.jpg",
                               "SkyBox_Right.jpg", "SkyBox_Top.jpg", "SkyBox_Bottom.jpg"};

TEST(Pictures, AllLoadWithPowerOfTwoSides)
{
    std::vector<std::string> all(std::begin(kKeyed), std::end(kKeyed));
    all.insert(all.end(), std::begin(kOpaque), std::end(kOpaque));
    all.push_back("rain.png");
    ASSERT_EQ(all.size(), 23u);
    for (const std::string& name : all) {
        const Picture p = LoadPicture(name);
        ASSERT_GT(p.width, 0) << name << " does not load";
        EXPECT_TRUE(PowerOfTwo(p.width) && PowerOfTwo(p.height)) << name << " " << p.width << "x" << p.height;
    }
    for (const char* name : kKeyed)
        EXPECT_EQ(LoadPicture(name).channels, 4) << name << " needs an alpha channel";
    EXPECT_GE(LoadPicture("Base_Texture_BigPoint.jpg").width, 2048) << "the base map is stretched over the world";
    for (const char* face : {"SkyBox_Front.jpg", "SkyBox_Top.jpg", "SkyBox_Bottom.jpg"}) {
        const Picture p = LoadPicture(face);
        EXPECT_EQ(p.width, p.height) << face;
        EXPECT_GE(p.width, 512) << face;
    }
}

TEST(Pictures, KeyedPicturesStoreTransparencyAsKeyWhite)
{
    for (const char* name : kKeyed) {
        const Picture p = LoadPicture(name);
        ASSERT_GT(p.width, 0) << name;
        long clear = 0, solid = 0, wrong = 0;
        for (int y = 0; y < p.height; ++y) {
            for (int x = 0; x < p.width; ++x) {
                const uint8_t* px = p.At(x, y);
                if (px[3] == 0) {
                    ++clear;
                    wrong += !(px[0] == 255 && px[1] == 255 && px[2] == 255);
                } else if (px[3] == 255) {
                    ++solid;
                }
            }
        }
        const double total = static_cast<double>(p.width) * p.height;
        EXPECT_EQ(wrong, 0) << name << ": transparent pixels must be white so that the key clears them";
        EXPECT_GT(clear / total, 0.05) << name;
        EXPECT_GT(solid / total, 0.05) << name;
    }
}

TEST(Pictures, RainIsAStreakOnTheExactKeyBackground)
{
    const Picture p = LoadPicture("rain.png");
    ASSERT_GT(p.width, 0);
    ASSERT_EQ(p.channels, 4);
    long key = 0;
    for (int y = 0; y < p.height; ++y) {
        for (int x = 0; x < p.width; ++x) {
            const uint8_t* px = p.At(x, y);
            const bool isKey = px[0] == 0x00 && px[1] == 0x00 && px[2] == 0xFF && px[3] == 0x64;
            key += isKey;
            if (!isKey) {
                EXPECT_GT(px[0], 100) << "streak pixels are light, not a near miss of the key, at " << x << "," << y;
            }
        }
    }
    EXPECT_TRUE(p.At(0, 0)[2] == 0xFF && p.At(0, 0)[3] == 0x64);
    EXPECT_GT(key, p.width * p.height / 3);
    EXPECT_LT(key, p.width * p.height * 19 / 20);
    int streakRows = 0;
    for (int y = 0; y < p.height; ++y)
        streakRows += p.At(p.width / 2, y)[3] != 0x64;
    EXPECT_GT(streakRows, p.height * 9 / 10) << "the streak runs from top to bottom";
}

// Width of the visible part of one row, as a share of the row.
double Coverage(const Picture& p, int y)
{
    int visible = 0;
    for (int x = 0; x < p.width; ++x)
        visible += p.At(x, y)[3] > 128;
    return static_cast<double>(visible) / p.width;
}

TEST(Pictures, WingHingesOnItsBottomRowAndTheLeftOneIsItsMirror)
{
    const Picture right = LoadPicture("krilo_right.png");
    const Picture left = LoadPicture("krilo_left.png");
    ASSERT_GT(right.width, 0);
    ASSERT_EQ(left.width, right.width);
    ASSERT_EQ(left.height, right.height);
    EXPECT_GT(Coverage(right, right.height - 1), 0.6) << "the hinge, v = 1, spans the wing's root";
    EXPECT_LT(Coverage(right, 2), 0.35) << "the tip, v = 0, is narrow";
    for (int y = 0; y < right.height; ++y)
        for (int x = 0; x < right.width; ++x)
            ASSERT_EQ(std::memcmp(right.At(x, y), left.At(right.width - 1 - x, y), 4), 0) << x << "," << y;
}

// Mean difference across the wrap-around seam, against the mean difference
// of neighbouring columns and rows inside: near 1 for a seamless tile.
double SeamRatio(const Picture& p)
{
    double inside = 0, seam = 0;
    for (int y = 0; y < p.height; ++y) {
        for (int x = 0; x < p.width; ++x) {
            const int nx = (x + 1) % p.width, ny = (y + 1) % p.height;
            const double dx = std::abs(p.At(x, y)[1] - p.At(nx, y)[1]);
            const double dy = std::abs(p.At(x, y)[1] - p.At(x, ny)[1]);
            (nx == 0 ? seam : inside) += dx;
            (ny == 0 ? seam : inside) += dy;
        }
    }
    const double seamCount = p.width + p.height;
    const double insideCount = 2.0 * p.width * p.height - seamCount;
    return (seam / seamCount) / (inside / insideCount);
}

TEST(Pictures, DetailIsASeamlessGreyCentredOn128)
{
    const Picture p = LoadPicture("Detail_Texture.jpg");
    ASSERT_GT(p.width, 0);
    double sum = 0, sumSq = 0, tint = 0;
    const double n = static_cast<double>(p.width) * p.height;
    for (int y = 0; y < p.height; ++y) {
        for (int x = 0; x < p.width; ++x) {
            const uint8_t* px = p.At(x, y);
            sum += px[1];
            sumSq += px[1] * px[1];
            tint += std::abs(px[0] - px[1]) + std::abs(px[2] - px[1]);
        }
    }
    const double mean = sum / n;
    const double deviation = std::sqrt(sumSq / n - mean * mean);
    std::printf("detail: mean %.2f, deviation %.1f, seam ratio %.2f\n", mean, deviation, SeamRatio(p));
    EXPECT_NEAR(mean, 128.0, 2.0) << "ADDSIGNED adds (t - 0.5): the mean must keep the base's brightness";
    EXPECT_GT(deviation, 5.0);
    EXPECT_LT(deviation, 40.0);
    EXPECT_LT(tint / n, 3.0) << "grey";
    EXPECT_LT(SeamRatio(p), 1.6);
}

TEST(Pictures, WaterIsSeamlessAndBlue)
{
    const Picture p = LoadPicture("Water_Texture.jpg");
    ASSERT_GT(p.width, 0);
    double red = 0, blue = 0;
    for (int y = 0; y < p.height; y += 4)
        for (int x = 0; x < p.width; x += 4)
            red += p.At(x, y)[0], blue += p.At(x, y)[2];
    EXPECT_GT(blue, red * 1.5);
    std::printf("water seam ratio %.2f\n", SeamRatio(p));
    EXPECT_LT(SeamRatio(p), 1.6);
}

TEST(Pictures, BaseTextureIsColouredByTheHeightMap)
{
    const Picture p = LoadPicture("Base_Texture_BigPoint.jpg");
    const assettest::HeightMap map = assettest::LoadHeightMap();
    ASSERT_GT(p.width, 0);
    ASSERT_TRUE(map.Valid());
    // Texel centres at grid points (u = col / 256, v = row / 256).
    const double scale = p.width / 256.0;
    std::array<double, 3> sea{}, grass{}, snow{};
    int seaN = 0, grassN = 0, snowN = 0;
    for (int r = 2; r < 255; ++r) {
        for (int c = 2; c < 255; ++c) {
            const uint8_t* px = p.At(std::min(p.width - 1, static_cast<int>(c * scale)), std::min(p.height - 1, static_cast<int>(r * scale)));
            const int s = map.Sample(c, r);
            const int flat = std::abs(map.Sample(c + 1, r) - map.Sample(c - 1, r)) + std::abs(map.Sample(c, r + 1) - map.Sample(c, r - 1));
            std::array<double, 3>* bucket = nullptr;
            if (s < 35) bucket = &sea, ++seaN;
            else if (s >= 60 && s <= 75 && flat <= 2) bucket = &grass, ++grassN;
            else if (s > 200 && flat <= 6) bucket = &snow, ++snowN;
            if (bucket)
                for (int k = 0; k < 3; ++k)
                    (*bucket)[k] += px[k];
        }
    }
    ASSERT_GT(seaN, 100);
    ASSERT_GT(grassN, 100);
    ASSERT_GT(snowN, 5);
    for (int k = 0; k < 3; ++k)
        sea[k] /= seaN, grass[k] /= grassN, snow[k] /= snowN;
    std::printf("base colours: sea bed %.0f %.0f %.0f, grass %.0f %.0f %.0f, snow %.0f %.0f %.0f\n", sea[0], sea[1],
                sea[2], grass[0], grass[1], grass[2], snow[0], snow[1], snow[2]);
    EXPECT_GT(grass[1], grass[0]) << "meadows are green";
    EXPECT_GT(grass[1], grass[2]);
    EXPECT_GT(sea[2] - sea[0], grass[2] - grass[0] + 30) << "the deep sea bed is bluer than the meadows";
    EXPECT_GT(snow[0] + snow[1] + snow[2], 3 * 190.0) << "the highest peaks carry snow";
}

// Storeys on a facade: rows of windows (bluish glass or lit warm panes)
// between plain grey wall, counted along u (up the wall).
int CountStoreys(const Picture& p)
{
    int rows = 0;
    bool inWindows = false;
    for (int x = 0; x < p.width; ++x) {
        int glass = 0;
        for (int y = 0; y < p.height; ++y) {
            const uint8_t* px = p.At(x, y);
            glass += px[2] > px[0] + 15 || (px[0] > 190 && px[2] + 40 < px[0]);
        }
        const double share = static_cast<double>(glass) / p.height;
        if (!inWindows && share > 0.4)
            ++rows, inWindows = true;
        else if (inWindows && share < 0.1)
            inWindows = false;
    }
    return rows;
}

TEST(Pictures, SecondTowerHasAboutFourTimesTheStoreys)
{
    const int first = CountStoreys(LoadPicture("skyscraperwall.jpg"));
    const int second = CountStoreys(LoadPicture("skyscraperwall2.jpg"));
    std::printf("storeys: tower 1 %d, tower 2 %d\n", first, second);
    EXPECT_GE(first, 10);
    EXPECT_GT(second, first * 3.5);
    EXPECT_LT(second, first * 4.5);
}

// ---------------------------------------------------------------- sky box

struct Corner { float x, y, z; };
// The cube's corners in texture-coordinate order (0,0), (1,0), (1,1), (0,1).
struct Face { const char* file; Corner v[4]; };
const Face kFaces[6] = {
    {"SkyBox_Front.jpg", {{-10, 10, 10}, {10, 10, 10}, {10, -10, 10}, {-10, -10, 10}}},
    {"SkyBox_Back.jpg", {{10, 10, -10}, {-10, 10, -10}, {-10, -10, -10}, {10, -10, -10}}},
    {"SkyBox_Left.jpg", {{-10, 10, -10}, {-10, 10, 10}, {-10, -10, 10}, {-10, -10, -10}}},
    {"SkyBox_Right.jpg", {{10, 10, 10}, {10, 10, -10}, {10, -10, -10}, {10, -10, 10}}},
    {"SkyBox_Top.jpg", {{-10, 10, -10}, {10, 10, -10}, {10, 10, 10}, {-10, 10, 10}}},
    {"SkyBox_Bottom.jpg", {{-10, -10, 10}, {10, -10, 10}, {10, -10, -10}, {-10, -10, -10}}},
};

bool Same(const Corner& a, const Corner& b) { return a.x == b.x && a.y == b.y && a.z == b.z; }

// The edge texel of `face` at the cube point `c` (which lies on its border).
const uint8_t* TexelAt(const Picture& p, const Face& face, const Corner& c)
{
    const Corner& o = face.v[0];
    const Corner du = {face.v[1].x - o.x, face.v[1].y - o.y, face.v[1].z - o.z};
    const Corner dv = {face.v[3].x - o.x, face.v[3].y - o.y, face.v[3].z - o.z};
    const float u = ((c.x - o.x) * du.x + (c.y - o.y) * du.y + (c.z - o.z) * du.z) / 400.0f;
    const float v = ((c.x - o.x) * dv.x + (c.y - o.y) * dv.y + (c.z - o.z) * dv.z) / 400.0f;
    return p.At(static_cast<int>(std::lround(u * (p.width - 1))), static_cast<int>(std::lround(v * (p.height - 1))));
}

TEST(SkyBox, FacesAgreeAlongEverySharedEdge)
{
    Picture pictures[6];
    for (int i = 0; i < 6; ++i) {
        pictures[i] = LoadPicture(kFaces[i].file);
        ASSERT_GT(pictures[i].width, 0) << kFaces[i].file;
    }
    int edges = 0;
    for (int a = 0; a < 6; ++a) {
        for (int b = a + 1; b < 6; ++b) {
            for (int k = 0; k < 4; ++k) {
                const Corner& p = kFaces[a].v[k];
                const Corner& q = kFaces[a].v[(k + 1) % 4];
                int shared = 0;
                for (const Corner& c : kFaces[b].v)
                    shared += Same(c, p) || Same(c, q);
                if (shared != 2)
                    continue;
                ++edges;
                double total = 0;
                int worst = 0;
                constexpr int steps = 128;
                for (int s = 0; s <= steps; ++s) {
                    const float t = static_cast<float>(s) / steps;
                    const Corner c = {p.x + t * (q.x - p.x), p.y + t * (q.y - p.y), p.z + t * (q.z - p.z)};
                    const uint8_t* x = TexelAt(pictures[a], kFaces[a], c);
                    const uint8_t* y = TexelAt(pictures[b], kFaces[b], c);
                    for (int ch = 0; ch < 3; ++ch) {
                        const int d = std::abs(x[ch] - y[ch]);
                        total += d;
                        worst = std::max(worst, d);
                    }
                }
                const double mean = total / (3.0 * (steps + 1));
                EXPECT_LT(mean, 4.0) << kFaces[a].file << " / " << kFaces[b].file;
                EXPECT_LT(worst, 24) << kFaces[a].file << " / " << kFaces[b].file;
            }
        }
    }
    EXPECT_EQ(edges, 12) << "every cube edge is shared by two faces";
}

TEST(SkyBox, SkyAboveIsBlueAndTheLowerHalfDim)
{
    auto mean = [](const Picture& p, int y0, int y1, int channel) {
        double sum = 0;
        for (int y = y0; y < y1; ++y)
            for (int x = 0; x < p.width; ++x)
                sum += p.At(x, y)[channel];
        return sum / ((y1 - y0) * p.width);
    };
    const Picture top = LoadPicture("SkyBox_Top.jpg");
    const Picture bottom = LoadPicture("SkyBox_Bottom.jpg");
    const Picture front = LoadPicture("SkyBox_Front.jpg");
    ASSERT_GT(top.width, 0);
    ASSERT_GT(bottom.width, 0);
    ASSERT_GT(front.width, 0);
    EXPECT_GT(mean(top, 0, top.height, 2), mean(top, 0, top.height, 0) + 30) << "the zenith is blue";
    EXPECT_LT(mean(bottom, 0, bottom.height, 2) + 60, mean(top, 0, top.height, 2)) << "the lower half is dim";
    EXPECT_GT(mean(front, 0, front.height / 4, 2), mean(front, front.height * 3 / 4, front.height, 2) + 40)
        << "a side face is sky above and dim below";
}

} // namespace
