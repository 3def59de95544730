// The D3DX texture loaders on the real device: the exact-ARGB colour key,
// power-of-two sizes and full mip chains, and a negative result (never a
// crash) for truncated and corrupt files. Test images are written
// with stb_image_write into a fresh folder.
#include <stb_image_write.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <utility>

#include "GLFixture.h"
#include "platform/d3dx9/d3dx9tex.h"

namespace gltest {
namespace {

namespace fs = std::filesystem;

class TextureLoaderTest : public DeviceTest {
 protected:
  void SetUp() override {
    DeviceTest::SetUp();
    fs::create_directories(dir_);
  }
  void TearDown() override {
    std::error_code ignored;
    fs::remove_all(dir_, ignored);
    DeviceTest::TearDown();
  }

  // A picture in memory from bytes R, G, B(, A), `channels` per pixel; a jpg
  // has three.
  static std::string Encode(bool jpg, int w, int h, int channels,
                            const std::vector<std::uint8_t>& pixels) {
    std::string out;
    auto append = [](void* to, void* data, int size) {
      static_cast<std::string*>(to)->append(static_cast<const char*>(data), std::size_t(size));
    };
    EXPECT_NE(
        jpg ? stbi_write_jpg_to_func(append, &out, w, h, 3, pixels.data(), 100)
            : stbi_write_png_to_func(append, &out, w, h, channels, pixels.data(), w * channels),
        0);
    return out;
  }
  std::string File(const char* name, const std::string& bytes) {
    const std::string path = (dir_ / name).string();
    std::ofstream(path, std::ios::binary) << bytes;
    return path;
  }
  HRESULT Load(const std::string& path, D3DCOLOR key, IDirect3DTexture9** out,
               UINT mips = D3DX_DEFAULT, D3DXIMAGE_INFO* info = nullptr) {
    return D3DXCreateTextureFromFileExA(device_, path.c_str(), D3DX_DEFAULT, D3DX_DEFAULT, mips, 0,
                                        D3DFMT_UNKNOWN, D3DPOOL_MANAGED, D3DX_DEFAULT, D3DX_DEFAULT,
                                        key, info, nullptr, out);
  }
  // The first `count` texels of one level, row by row.
  static std::vector<D3DCOLOR> Texels(IDirect3DTexture9* t, UINT level, std::size_t count) {
    D3DLOCKED_RECT locked{};
    EXPECT_EQ(t->LockRect(level, &locked, nullptr, D3DLOCK_READONLY), D3D_OK);
    const auto* texels = static_cast<const D3DCOLOR*>(locked.pBits);
    std::vector<D3DCOLOR> out(texels, texels + count);
    t->UnlockRect(level);
    return out;
  }

  const fs::path dir_ = fs::temp_directory_path() / ("karvo-loader-" + std::to_string(getpid()));
};

TEST_F(TextureLoaderTest, ColourKeyMatchesTheWholeArgbWord) {
  // White with alpha 0, opaque white, the rain key, one step from the key.
  const std::string rgba = File(
      "rgba.png", Encode(false, 4, 1, 4,
                         {255, 255, 255, 0, 255, 255, 255, 255, 0, 0, 255, 0x64, 0, 0, 254, 0x64}));
  const std::string rgb = File("rgb.png", Encode(false, 2, 1, 3, {0, 0, 255, 255, 255, 255}));
  const std::string jpg =
      File("white.jpg", Encode(true, 8, 8, 3, std::vector<std::uint8_t>(8 * 8 * 3, 255)));
  constexpr D3DFORMAT A8 = D3DFMT_A8R8G8B8, X8 = D3DFMT_X8R8G8B8;
  struct Case {
    std::string path;
    D3DCOLOR key;
    D3DFORMAT format;
    std::vector<D3DCOLOR> want;  // first texels of the top level
  };
  const Case cases[] = {
      // White with alpha 0 becomes transparent black; then the rain key; no key.
      {rgba, 0x00FFFFFF, A8, {0x00000000, 0xFFFFFFFF, 0x640000FF, 0x640000FE}},
      {rgba, 0x640000FF, A8, {0x00FFFFFF, 0xFFFFFFFF, 0x00000000, 0x640000FE}},
      {rgba, 0, A8, {0x00FFFFFF, 0xFFFFFFFF, 0x640000FF, 0x640000FE}},
      // A file without alpha reads opaque: the rain key misses. With no key it
      // is X8R8G8B8.
      {rgb, 0x640000FF, A8, {0xFF0000FF, 0xFFFFFFFF}},
      {rgb, 0, X8, {0xFF0000FF, 0xFFFFFFFF}},
      // The opaque white of a jpg is kept, unless the key is opaque white.
      {jpg, 0x00FFFFFF, A8, {0xFFFFFFFF}},
      {jpg, 0xFFFFFFFF, A8, {0x00000000}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(::testing::Message() << c.path << std::hex << ", key " << c.key);
    IDirect3DTexture9* texture = nullptr;
    ASSERT_EQ(Load(c.path, c.key, &texture), D3D_OK);
    D3DSURFACE_DESC desc{};
    texture->GetLevelDesc(0, &desc);
    EXPECT_EQ(desc.Format, c.format);
    std::vector<D3DCOLOR> texels = Texels(texture, 0, c.want.size());
    // X8R8G8B8 keeps whatever is in the unused byte: compare colour only there.
    if (c.format == D3DFMT_X8R8G8B8)
      for (D3DCOLOR& t : texels) t |= 0xFF000000u;
    EXPECT_EQ(texels, c.want);
    texture->Release();
  }
}

TEST_F(TextureLoaderTest, SizesRoundUpToPowersOfTwoWithAFullMipChain) {
  struct Case {
    int w, h;
    UINT mips;  // asked for
    UINT wantW, wantH, wantLevels;
  };
  const Case cases[] = {
      {3, 5, D3DX_DEFAULT, 4, 8, 4},     {16, 16, D3DX_DEFAULT, 16, 16, 5},
      {100, 1, D3DX_DEFAULT, 128, 1, 8}, {33, 17, 0, 64, 32, 7},
      {1, 1, D3DX_DEFAULT, 1, 1, 1},     {16, 16, 2, 16, 16, 2},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(std::to_string(c.w) + "x" + std::to_string(c.h));
    const std::string path =
        File("size.png",
             Encode(false, c.w, c.h, 3, std::vector<std::uint8_t>(std::size_t(c.w * c.h * 3), 90)));
    IDirect3DTexture9* texture = nullptr;
    D3DXIMAGE_INFO info{};
    ASSERT_EQ(Load(path, 0, &texture, c.mips, &info), D3D_OK);
    EXPECT_EQ(std::pair(info.Width, info.Height), std::pair(UINT(c.w), UINT(c.h))) << "the file's";
    D3DSURFACE_DESC top{};
    texture->GetLevelDesc(0, &top);
    EXPECT_EQ(std::pair(top.Width, top.Height), std::pair(c.wantW, c.wantH));
    EXPECT_EQ(texture->GetLevelCount(), c.wantLevels);
    texture->Release();
  }
  // The simple loader takes every default; each level averages the one above.
  const std::string checker =
      File("checker.png", Encode(false, 2, 2, 3, {0, 0, 0, 255, 255, 255, 255, 255, 255, 0, 0, 0}));
  IDirect3DTexture9* texture = nullptr;
  ASSERT_EQ(D3DXCreateTextureFromFileA(device_, checker.c_str(), &texture), D3D_OK);
  ASSERT_EQ(texture->GetLevelCount(), 2u);
  EXPECT_TRUE(ColorNear(Texels(texture, 1, 1)[0] | 0xFF000000u, 0xFF808080, 1));
  texture->Release();
  // A leaf texel among keyed ones keeps its colour down the chain, its alpha
  // averaged: the key's black does not darken the edge into a fringe.
  const std::string leaf = File(
      "leaf.png", Encode(false, 2, 2, 4,
                         {34, 136, 51, 255, 255, 255, 255, 0, 255, 255, 255, 0, 255, 255, 255, 0}));
  ASSERT_EQ(Load(leaf, 0x00FFFFFF, &texture), D3D_OK);
  EXPECT_EQ(Texels(texture, 1, 1)[0], 0x40228833u);
  texture->Release();
}

// Missing, empty, random and half files are the asset matrix's cases, on
// every picture of the world; these are the damages it does not make. (The
// terrain's load reads its pictures through backslash paths.)
TEST_F(TextureLoaderTest, BadFilesGiveANegativeResultAndNoTexture) {
  const std::string png = Encode(false, 16, 16, 3, std::vector<std::uint8_t>(16 * 16 * 3, 200));
  // Noise keeps the scan data much longer than the headers before it.
  std::vector<std::uint8_t> noise(64 * 64 * 3);
  for (std::size_t i = 0; i < noise.size(); ++i) noise[i] = std::uint8_t(i * 37 + i / 7);
  const std::string jpg = Encode(true, 64, 64, 3, noise);
  // Whole, the noise loads: what fails below fails for its damage.
  IDirect3DTexture9* whole = nullptr;
  ASSERT_EQ(Load(File("whole.jpg", jpg), 0, &whole), D3D_OK);
  whole->Release();
  std::string hugePng = png;  // IHDR width (bytes 16..19) claims 100000 pixels
  hugePng[17] = 0x01, hugePng[18] = char(0x86), hugePng[19] = char(0xA0);
  const std::string paths[] = {
      File("cut.jpg", jpg.substr(0, jpg.size() * 3 / 4)),
      File("noend.jpg", jpg.substr(0, jpg.size() - 2)),
      File("huge.png", hugePng),
  };
  for (const std::string& path : paths) {
    SCOPED_TRACE(path);
    IDirect3DTexture9* texture = reinterpret_cast<IDirect3DTexture9*>(&texture);
    EXPECT_TRUE(FAILED(Load(path, 0x00FFFFFF, &texture)));
    EXPECT_EQ(texture, nullptr);
  }
}

}  // namespace
}  // namespace gltest
