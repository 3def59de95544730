// The landscape must make the game's fixed places work: the start, the flower
// meadow, the big tree, the towers, and room for the trees and weeds that the
// placing scatters at random.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <queue>

#include "AssetFiles.h"
#include "platform/crt/crt.h"

using assettest::HeightMap;

namespace {

constexpr float kWater = 864.0f;

bool InTowerZone(float x, float z)
{
    return ((x > 1800 && x < 4200) || (x > 5800 && x < 8200)) && z > 2800 && z < 5200;
}

class Landscape : public ::testing::Test
{
protected:
    static void SetUpTestSuite() { s_map = new HeightMap(assettest::LoadHeightMap()); }
    static void TearDownTestSuite() { delete s_map; }
    static const HeightMap& Map() { return *s_map; }

private:
    static HeightMap* s_map;
};

HeightMap* Landscape::s_map = nullptr;

TEST_F(Landscape, FileIsOneFullGridOfSamples)
{
    EXPECT_EQ(assettest::ReadFile(assettest::AssetDir() / "Data" / "HeightMap.raw").size(), 257u * 257u);
    ASSERT_TRUE(Map().Valid());
}

TEST_F(Landscape, StartLooksOverOpenCountryToTheSea)
{
    ASSERT_TRUE(Map().Valid());
    const float start = Map().GetHeight(1500, 1500);
    std::printf("start ground %.0f\n", start);
    EXPECT_GT(start, 872.0f + 40.0f) << "the start must be dry land, clear of the shore band";

    // Yaw 45 looks along +x +z. Nothing along the way rises into the view,
    // and the sea comes within a few thousand units.
    float highest = 0.0f;
    float firstWater = -1.0f;
    for (float d = 64.0f; d < 6000.0f; d += 32.0f) {
        const float h = Map().GetHeight(1500 + d * 0.7071f, 1500 + d * 0.7071f);
        highest = std::max(highest, h);
        if (h < kWater && firstWater < 0.0f)
            firstWater = d;
    }
    std::printf("first water ahead at %.0f units, highest ground ahead %.0f\n", firstWater, highest);
    EXPECT_LT(highest, start + 150.0f);
    EXPECT_GT(firstWater, 500.0f) << "some open country before the water";
    EXPECT_LT(firstWater, 4000.0f);
}

TEST_F(Landscape, MeadowAndBigTreeStandOnHighGround)
{
    ASSERT_TRUE(Map().Valid());
    int high = 0, all = 0;
    for (int x = 700; x <= 2199; x += 7) {
        for (int z = 700; z <= 2199; z += 7) {
            ++all;
            high += Map().GetHeight(static_cast<float>(x), static_cast<float>(z)) > 900.0f;
        }
    }
    const double fraction = static_cast<double>(high) / all;
    std::printf("flower meadow above 900: %.3f\n", fraction);
    EXPECT_GT(fraction, 0.97);
    EXPECT_GT(Map().GetHeight(1500, 7000), 900.0f) << "the big tree stands on land";
}

TEST_F(Landscape, TowersStandInTheWaterWithTheirFeetInTheGround)
{
    ASSERT_TRUE(Map().Valid());
    const float towers[2][4] = {{2000, 4000, 3000, 5000}, {6000, 8000, 3000, 5000}};
    for (const auto& t : towers) {
        int wet = 0, all = 0;
        float lowest = 1e9f;
        for (int k = 0; k <= 400; ++k) {
            const float s = k / 400.0f;
            const float x = t[0] + s * (t[1] - t[0]);
            const float z = t[2] + s * (t[3] - t[2]);
            for (const auto& [px, pz] : {std::pair{x, t[2]}, {x, t[3]}, {t[0], z}, {t[1], z}}) {
                const float h = Map().GetHeight(px, pz);
                lowest = std::min(lowest, h);
                wet += h < kWater;
                ++all;
            }
        }
        std::printf("tower at x %.0f: %.2f of its walls stand in water, lowest ground %.0f\n", t[0],
                    static_cast<double>(wet) / all, lowest);
        EXPECT_GT(lowest, 500.0f + 16.0f) << "the walls' feet at 500 must be under the ground";
        EXPECT_GT(static_cast<double>(wet) / all, 0.3) << "a tower stands in a bay or at a shore";
    }
}

TEST_F(Landscape, FirstWorldFindsGroundForTreesAndSeaFloorForWeeds)
{
    ASSERT_TRUE(Map().Valid());
    // The first world is placed from the random source's start state; count
    // what the placing rules find on this map.
    crt::srand(1);
    int trees = 0;
    for (int i = 0; i < 999; ++i) {
        const float x = static_cast<float>((crt::rand() % 1644) * 10);
        const float z = static_cast<float>((crt::rand() % 1644) * 10);
        crt::rand(); // size
        if (Map().GetHeight(x, z) <= 900.0f || InTowerZone(x, z))
            continue;
        crt::rand(); // kind
        ++trees;
    }
    crt::rand(); // the big tree's size
    long tries = 0;
    for (int i = 0; i < 1000 && tries < 1000000; ++i) {
        for (;;) {
            ++tries;
            const float x = static_cast<float>((crt::rand() % 1644) * 10);
            const float z = static_cast<float>((crt::rand() % 1644) * 10);
            crt::rand(); // size
            if (Map().GetHeight(x, z) < 770.0f && !InTowerZone(x, z))
                break;
        }
        crt::rand(); // kind
    }
    std::printf("first world: %d of 999 tree candidates placed, 1000 weeds in %ld tries\n", trees, tries);
    EXPECT_GT(trees, 600) << "most tree candidates find ground above 900";
    EXPECT_LT(tries, 6000) << "the weeds find sea floor below 770 quickly";
}

TEST_F(Landscape, WalkableSquareHasCoastBeachesMountainsAndIslands)
{
    ASSERT_TRUE(Map().Valid());
    const int lo = 16, hi = 234; // grid lines of 1000 .. 15000
    int water = 0, beach = 0, all = 0, peak = 0;
    for (int r = lo; r <= hi; ++r) {
        for (int c = lo; c <= hi; ++c) {
            const int s = Map().Sample(c, r);
            ++all;
            water += s < 54;
            beach += s >= 54 && s <= 57;
            peak = std::max(peak, s * 16);
        }
    }
    std::printf("walkable square: water %.2f, beach %.3f, highest %d\n", static_cast<double>(water) / all,
                static_cast<double>(beach) / all, peak);
    EXPECT_GT(static_cast<double>(water) / all, 0.15);
    EXPECT_LT(static_cast<double>(water) / all, 0.5);
    EXPECT_GT(static_cast<double>(beach) / all, 0.01);
    EXPECT_GT(peak, 3400);

    // Separate summits above 3000, at least 40 cells apart.
    std::vector<std::pair<int, int>> summits;
    for (int r = 1; r < 256; ++r) {
        for (int c = 1; c < 256; ++c) {
            const int s = Map().Sample(c, r);
            if (s * 16 <= 3000)
                continue;
            bool top = true;
            for (int dr = -4; dr <= 4 && top; ++dr)
                for (int dc = -4; dc <= 4 && top; ++dc)
                    top = Map().Sample(std::clamp(c + dc, 0, 256), std::clamp(r + dr, 0, 256)) <= s;
            const bool apart = std::none_of(summits.begin(), summits.end(),
                                            [&](auto p) { return std::hypot(p.first - c, p.second - r) < 40; });
            if (top && apart)
                summits.emplace_back(c, r);
        }
    }
    EXPECT_GE(summits.size(), 2u) << "a few mountains";

    // Islands: pieces of land that the sea cuts off from the mainland.
    std::vector<int> label(257 * 257, -1);
    std::vector<int> sizes;
    for (int start = 0; start < 257 * 257; ++start) {
        if (label[start] >= 0 || Map().Sample(start % 257, start / 257) < 55)
            continue;
        const int id = static_cast<int>(sizes.size());
        sizes.push_back(0);
        std::queue<int> open;
        open.push(start);
        label[start] = id;
        while (!open.empty()) {
            const int at = open.front();
            open.pop();
            ++sizes[id];
            const int c = at % 257, r = at / 257;
            for (const auto& [dc, dr] : {std::pair{1, 0}, {-1, 0}, {0, 1}, {0, -1}}) {
                const int nc = c + dc, nr = r + dr;
                if (nc < 0 || nr < 0 || nc > 256 || nr > 256)
                    continue;
                const int next = nr * 257 + nc;
                if (label[next] < 0 && Map().Sample(nc, nr) >= 55) {
                    label[next] = id;
                    open.push(next);
                }
            }
        }
    }
    std::sort(sizes.rbegin(), sizes.rend());
    const long islands = std::count_if(sizes.begin() + std::min<size_t>(1, sizes.size()), sizes.end(),
                                       [](int s) { return s >= 25; });
    std::printf("summits above 3000: %zu, islands: %ld\n", summits.size(), islands);
    EXPECT_GE(islands, 2);
}

TEST_F(Landscape, SlopesStayBelowCliffWalls)
{
    ASSERT_TRUE(Map().Valid());
    int steepest = 0;
    long steep = 0, pairs = 0;
    for (int r = 0; r < 257; ++r) {
        for (int c = 0; c < 257; ++c) {
            for (const auto& [dc, dr] : {std::pair{1, 0}, {0, 1}}) {
                if (c + dc > 256 || r + dr > 256)
                    continue;
                const int d = std::abs(Map().Sample(c, r) - Map().Sample(c + dc, r + dr));
                steepest = std::max(steepest, d);
                steep += d > 8;
                ++pairs;
            }
        }
    }
    std::printf("steepest step %d samples (%d units over 64), %.4f of steps above 8\n", steepest, steepest * 16,
                static_cast<double>(steep) / pairs);
    EXPECT_LE(steepest, 12);
    EXPECT_LT(static_cast<double>(steep) / pairs, 0.01);
}

} // namespace
