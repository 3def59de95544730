// The D3DX texture loaders on the real device: the exact-ARGB colour key,
// power-of-two sizes and full mip chains, and a negative result (never a
// crash) for missing, truncated and corrupt files. Test images are written
// with stb_image_write into a fresh folder.
#include <stb_image_write.h>
#include <unistd.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "GLFixture.h"
#include "platform/d3dx9/d3dx9tex.h"

namespace gltest {
namespace {

namespace fs = std::filesystem;

class TextureLoaderTest : public DeviceTest {
 protected:
  void SetUp() override {
    DeviceTest::SetUp();
    dir_ = fs::temp_directory_path() / ("karvo-loader-" + std::to_string(getpid()));
    fs::create_directories(dir_);
  }
  void TearDown() override {
    std::error_code ignored;
    fs::remove_all(dir_, ignored);
    DeviceTest::TearDown();
  }

  // Pixels as bytes R, G, B(, A), `channels` per pixel.
  std::string Png(const char* name, int w, int h, int channels,
                  const std::vector<std::uint8_t>& pixels) {
    std::string path = (dir_ / name).string();
    EXPECT_NE(stbi_write_png(path.c_str(), w, h, channels, pixels.data(), w * channels), 0);
    return path;
  }
  std::string Jpg(const char* name, int w, int h, const std::vector<std::uint8_t>& rgb) {
    std::string path = (dir_ / name).string();
    EXPECT_NE(stbi_write_jpg(path.c_str(), w, h, 3, rgb.data(), 100), 0);
    return path;
  }
  std::string Bytes(const char* name, const std::string& bytes) {
    std::string path = (dir_ / name).string();
    std::ofstream(path, std::ios::binary) << bytes;
    return path;
  }
  static std::string Read(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
  }

  HRESULT Load(const std::string& path, D3DCOLOR key, IDirect3DTexture9** out,
               UINT mips = D3DX_DEFAULT, D3DXIMAGE_INFO* info = nullptr) {
    return D3DXCreateTextureFromFileExA(device_, path.c_str(), D3DX_DEFAULT, D3DX_DEFAULT, mips, 0,
                                        D3DFMT_UNKNOWN, D3DPOOL_MANAGED, D3DX_DEFAULT, D3DX_DEFAULT,
                                        key, info, nullptr, out);
  }
  // The texels of one level, row by row (32-bit formats).
  static std::vector<D3DCOLOR> Texels(IDirect3DTexture9* t, UINT level) {
    D3DSURFACE_DESC desc{};
    EXPECT_EQ(t->GetLevelDesc(level, &desc), D3D_OK);
    D3DLOCKED_RECT locked{};
    EXPECT_EQ(t->LockRect(level, &locked, nullptr, D3DLOCK_READONLY), D3D_OK);
    std::vector<D3DCOLOR> out;
    for (UINT y = 0; y < desc.Height; ++y)
      for (UINT x = 0; x < desc.Width; ++x) {
        D3DCOLOR c;
        std::memcpy(&c, static_cast<const std::uint8_t*>(locked.pBits) + y * locked.Pitch + x * 4,
                    4);
        out.push_back(c);
      }
    t->UnlockRect(level);
    return out;
  }

  fs::path dir_;
};

TEST_F(TextureLoaderTest, ColourKeyMatchesTheWholeArgbWord) {
  const std::string rgba = Png("rgba.png", 2, 2, 4,
                               {255, 255, 255, 0,    // white, alpha 0
                                255, 255, 255, 255,  // opaque white
                                0, 0, 255, 0x64,     // the rain key
                                0, 0, 254, 0x64});   // one step from it
  const std::string rgb = Png("rgb.png", 2, 1, 3, {0, 0, 255, 255, 255, 255});
  const std::string jpg = Jpg("white.jpg", 8, 8, std::vector<std::uint8_t>(8 * 8 * 3, 255));
  struct Case {
    const char* name;
    std::string path;
    D3DCOLOR key;
    D3DFORMAT format;
    std::vector<D3DCOLOR> want;  // first texels of the top level
  };
  const Case cases[] = {
      {"white with alpha 0 becomes transparent black",
       rgba,
       0x00FFFFFF,
       D3DFMT_A8R8G8B8,
       {0x00000000, 0xFFFFFFFF, 0x640000FF, 0x640000FE}},
      {"the rain key",
       rgba,
       0x640000FF,
       D3DFMT_A8R8G8B8,
       {0x00FFFFFF, 0xFFFFFFFF, 0x00000000, 0x640000FE}},
      {"no key changes nothing",
       rgba,
       0,
       D3DFMT_A8R8G8B8,
       {0x00FFFFFF, 0xFFFFFFFF, 0x640000FF, 0x640000FE}},
      {"a file without alpha reads opaque: the rain key misses",
       rgb,
       0x640000FF,
       D3DFMT_A8R8G8B8,
       {0xFF0000FF, 0xFFFFFFFF}},
      {"a file without alpha and no key is X8R8G8B8",
       rgb,
       0,
       D3DFMT_X8R8G8B8,
       {0xFF0000FF, 0xFFFFFFFF}},
      {"the opaque white of a jpg is kept",
       jpg,
       0x00FFFFFF,
       D3DFMT_A8R8G8B8,
       {0xFFFFFFFF, 0xFFFFFFFF}},
      // The same file under an opaque white key: its texels are exactly white.
      {"the jpg under an opaque white key",
       jpg,
       0xFFFFFFFF,
       D3DFMT_A8R8G8B8,
       {0x00000000, 0x00000000}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    IDirect3DTexture9* texture = nullptr;
    ASSERT_EQ(Load(c.path, c.key, &texture), D3D_OK);
    D3DSURFACE_DESC desc{};
    texture->GetLevelDesc(0, &desc);
    EXPECT_EQ(desc.Format, c.format);
    std::vector<D3DCOLOR> texels = Texels(texture, 0);
    texels.resize(c.want.size());
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
    std::string path =
        Png("size.png", c.w, c.h, 3, std::vector<std::uint8_t>(std::size_t(c.w * c.h * 3), 90));
    IDirect3DTexture9* texture = nullptr;
    D3DXIMAGE_INFO info{};
    ASSERT_EQ(Load(path, 0, &texture, c.mips, &info), D3D_OK);
    EXPECT_EQ(info.Width, UINT(c.w));
    EXPECT_EQ(info.Height, UINT(c.h));
    EXPECT_EQ(texture->GetLevelCount(), c.wantLevels);
    D3DSURFACE_DESC top{}, last{};
    texture->GetLevelDesc(0, &top);
    texture->GetLevelDesc(texture->GetLevelCount() - 1, &last);
    EXPECT_EQ(top.Width, c.wantW);
    EXPECT_EQ(top.Height, c.wantH);
    if (c.mips == D3DX_DEFAULT || c.mips == 0) {
      EXPECT_EQ(last.Width * last.Height, 1u);
    }
    texture->Release();
  }
  // The simple loader takes every default; each level averages the one above.
  std::string checker =
      Png("checker.png", 2, 2, 3, {0, 0, 0, 255, 255, 255, 255, 255, 255, 0, 0, 0});
  IDirect3DTexture9* texture = nullptr;
  ASSERT_EQ(D3DXCreateTextureFromFileA(device_, checker.c_str(), &texture), D3D_OK);
  ASSERT_EQ(texture->GetLevelCount(), 2u);
  EXPECT_TRUE(ColorNear(Texels(texture, 1)[0] | 0xFF000000u, 0xFF808080, 1));
  texture->Release();
  // A leaf texel among keyed ones keeps its colour down the chain, its alpha
  // averaged: the key's black does not darken the edge into a fringe.
  std::string leaf = Png("leaf.png", 2, 2, 4,
                         {34, 136, 51, 255, 255, 255, 255, 0, 255, 255, 255, 0, 255, 255, 255, 0});
  ASSERT_EQ(Load(leaf, 0x00FFFFFF, &texture), D3D_OK);
  EXPECT_EQ(Texels(texture, 1)[0], 0x40228833u);
  texture->Release();
}

TEST_F(TextureLoaderTest, BadFilesGiveANegativeResultAndNoTexture) {
  const std::string png =
      Read(Png("good.png", 16, 16, 3, std::vector<std::uint8_t>(16 * 16 * 3, 200)));
  // Noise keeps the scan data much longer than the headers before it.
  std::vector<std::uint8_t> noise(64 * 64 * 3);
  for (std::size_t i = 0; i < noise.size(); ++i) noise[i] = std::uint8_t(i * 37 + i / 7);
  const std::string jpg = Read(Jpg("good.jpg", 64, 64, noise));
  ASSERT_GT(png.size(), 40u);
  ASSERT_GT(jpg.size(), 4000u);
  std::string hugePng = png;  // IHDR width (bytes 16..19) claims 100000 pixels
  hugePng[17] = 0x01, hugePng[18] = char(0x86), hugePng[19] = char(0xA0);
  std::string zeroWideJpg = jpg;  // the frame header (FF C0) says 0 pixels wide
  std::size_t sof = jpg.find("\xFF\xC0");
  ASSERT_NE(sof, std::string::npos);
  zeroWideJpg[sof + 7] = 0, zeroWideJpg[sof + 8] = 0;
  std::string scrambledPng = png;
  for (std::size_t i = 33; i + 12 < png.size(); ++i) scrambledPng[i] = char(i * 91);
  struct Case {
    const char* name;
    std::string path;
  };
  const Case cases[] = {
      {"missing file", (dir_ / "nothing-here.png").string()},
      {"empty file", Bytes("empty.png", "")},
      {"not an image", Bytes("text.png", "just some words, not pixels")},
      {"png cut in half", Bytes("half.png", png.substr(0, png.size() / 2))},
      {"png cut after its signature", Bytes("sig.png", png.substr(0, 8))},
      {"jpg cut inside its scan data", Bytes("cut.jpg", jpg.substr(0, jpg.size() * 3 / 4))},
      {"jpg without its end marker", Bytes("noend.jpg", jpg.substr(0, jpg.size() - 2))},
      {"jpg of width 0", Bytes("zero.jpg", zeroWideJpg)},
      {"png with scrambled data", Bytes("scrambled.png", scrambledPng)},
      {"png claiming 100000 pixels", Bytes("huge.png", hugePng)},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    IDirect3DTexture9* texture = reinterpret_cast<IDirect3DTexture9*>(&texture);
    HRESULT hr = Load(c.path, 0x00FFFFFF, &texture);
    EXPECT_TRUE(FAILED(hr));
    EXPECT_EQ(texture, nullptr);
    if (SUCCEEDED(hr) && texture) texture->Release();
  }
  // The untouched files load, also through a path with backslashes.
  IDirect3DTexture9* texture = nullptr;
  std::string back = Bytes("good2.jpg", jpg);
  back.replace(back.rfind('/'), 1, "\\");
  ASSERT_EQ(Load(back, 0, &texture), D3D_OK);
  texture->Release();
}

}  // namespace
}  // namespace gltest
