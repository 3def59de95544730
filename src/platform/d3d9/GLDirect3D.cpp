// The Direct3D object: adapters are SDL displays, their modes SDL display
// modes, and caps and format checks say what the GL back end really does on
// this machine (probed once: see Limits()). One device type, HAL.
#include <SDL.h>

#include <algorithm>
#include <cstdio>
#include <vector>

#include "platform/d3d9/GLDevice.h"

namespace d3d9gl {

namespace {

// An SDL mode's pixel depth as a display format: 24- and 32-bit desktops are
// X8R8G8B8, 16-bit R5G6B5, 15-bit X1R5G5B5.
D3DFORMAT FormatOfMode(const SDL_DisplayMode& m) {
  switch (SDL_BITSPERPIXEL(m.format)) {
    case 24:
    case 32: return D3DFMT_X8R8G8B8;
    case 16: return D3DFMT_R5G6B5;
    case 15: return D3DFMT_X1R5G5B5;
    default: return D3DFMT_UNKNOWN;
  }
}

D3DDISPLAYMODE ToD3D(const SDL_DisplayMode& m) {
  // SDL says 0 where the rate is unknown (virtual displays); such a display
  // refreshes as often as it is drawn, and 60 Hz is the rate it promises.
  return D3DDISPLAYMODE{UINT(m.w), UINT(m.h), UINT(m.refresh_rate > 0 ? m.refresh_rate : 60), FormatOfMode(m)};
}

// A display without a screen (SDL's offscreen driver on a GPU server) names a
// single mode of 0 x 0 pixels and no depth. Its windows are GL drawables of 32
// bits all the same, so it gets one usable mode: the desktop's size where it
// has one, else this one.
constexpr int kHeadlessWidth = 1920;
constexpr int kHeadlessHeight = 1080;

bool HasSize(const SDL_DisplayMode& m) { return m.w > 0 && m.h > 0; }

D3DDISPLAYMODE HeadlessMode(int adapter) {
  SDL_DisplayMode desktop{};
  const bool known = SDL_GetDesktopDisplayMode(adapter, &desktop) == 0 && HasSize(desktop);
  D3DDISPLAYMODE mode = ToD3D(known ? desktop : SDL_DisplayMode{0, kHeadlessWidth, kHeadlessHeight, 0, nullptr});
  if (mode.Format == D3DFMT_UNKNOWN) mode.Format = D3DFMT_X8R8G8B8;
  return mode;
}

class GLDirect3D final : public IDirect3D9 {
 public:
  ULONG AddRef() override { return ++refs_; }
  ULONG Release() override {
    ULONG left = --refs_;
    if (left == 0) delete this;
    return left;
  }

  UINT GetAdapterCount() override {
    int n = SDL_GetNumVideoDisplays();
    return n > 0 ? UINT(n) : 0;
  }

  HRESULT GetAdapterIdentifier(UINT adapter, DWORD flags, D3DADAPTER_IDENTIFIER9* id) override {
    (void)flags;
    if (id == nullptr || adapter >= GetAdapterCount()) return D3DERR_INVALIDCALL;
    *id = D3DADAPTER_IDENTIFIER9{};
    const char* name = SDL_GetDisplayName(int(adapter));
    std::snprintf(id->Driver, sizeof id->Driver, "OpenGL %s", Limits().version);
    std::snprintf(id->Description, sizeof id->Description, "%s", Limits().valid ? Limits().renderer : "no OpenGL");
    std::snprintf(id->DeviceName, sizeof id->DeviceName, "%s", name ? name : "display");
    return D3D_OK;
  }

  UINT GetAdapterModeCount(UINT adapter, D3DFORMAT format) override { return UINT(Modes(adapter, format).size()); }

  HRESULT EnumAdapterModes(UINT adapter, D3DFORMAT format, UINT mode, D3DDISPLAYMODE* out) override {
    if (out == nullptr || adapter >= GetAdapterCount()) return D3DERR_INVALIDCALL;
    std::vector<D3DDISPLAYMODE> modes = Modes(adapter, format);
    if (mode >= modes.size()) return D3DERR_INVALIDCALL;
    *out = modes[mode];
    return D3D_OK;
  }

  HRESULT GetAdapterDisplayMode(UINT adapter, D3DDISPLAYMODE* out) override {
    SDL_DisplayMode m;
    if (out == nullptr || adapter >= GetAdapterCount() || SDL_GetDesktopDisplayMode(int(adapter), &m) != 0)
      return D3DERR_INVALIDCALL;
    *out = HasSize(m) && FormatOfMode(m) != D3DFMT_UNKNOWN ? ToD3D(m) : HeadlessMode(int(adapter));
    return D3D_OK;
  }

  HRESULT CheckDeviceType(UINT adapter, D3DDEVTYPE type, D3DFORMAT adapterFormat, D3DFORMAT backBuffer,
                          BOOL windowed) override {
    HRESULT hr = CheckAdapter(adapter, type);
    if (FAILED(hr)) return hr;
    if (!AdapterHasFormat(adapter, adapterFormat)) return D3DERR_NOTAVAILABLE;
    if (windowed && backBuffer == D3DFMT_UNKNOWN) backBuffer = adapterFormat;
    if (!BackBufferFitsDisplay(adapterFormat, backBuffer) || BackBufferInternalFormat(backBuffer) == 0)
      return D3DERR_NOTAVAILABLE;
    return D3D_OK;
  }

  HRESULT CheckDeviceFormat(UINT adapter, D3DDEVTYPE type, D3DFORMAT adapterFormat, DWORD usage,
                            D3DRESOURCETYPE rtype, D3DFORMAT format) override {
    HRESULT hr = CheckAdapter(adapter, type);
    if (FAILED(hr)) return hr;
    if (!AdapterHasFormat(adapter, adapterFormat)) return D3DERR_NOTAVAILABLE;
    if (usage & D3DUSAGE_DEPTHSTENCIL)
      return rtype == D3DRTYPE_SURFACE && DepthInternalFormat(format) && (format != D3DFMT_D32 || Depth32Offered())
                 ? D3D_OK
                 : D3DERR_NOTAVAILABLE;
    if (usage & D3DUSAGE_RENDERTARGET)
      return rtype == D3DRTYPE_SURFACE && BackBufferInternalFormat(format) ? D3D_OK : D3DERR_NOTAVAILABLE;
    if (rtype == D3DRTYPE_TEXTURE) return FindTextureFormat(format) ? D3D_OK : D3DERR_NOTAVAILABLE;
    if (rtype == D3DRTYPE_VERTEXBUFFER) return format == D3DFMT_VERTEXDATA ? D3D_OK : D3DERR_NOTAVAILABLE;
    if (rtype == D3DRTYPE_INDEXBUFFER)
      return format == D3DFMT_INDEX16 || format == D3DFMT_INDEX32 ? D3D_OK : D3DERR_NOTAVAILABLE;
    return D3DERR_NOTAVAILABLE;
  }

  HRESULT CheckDeviceMultiSampleType(UINT adapter, D3DDEVTYPE type, D3DFORMAT surface, BOOL windowed,
                                     D3DMULTISAMPLE_TYPE ms, DWORD* quality) override {
    (void)windowed;
    HRESULT hr = CheckAdapter(adapter, type);
    if (FAILED(hr)) return hr;
    if (BackBufferInternalFormat(surface) == 0 && DepthInternalFormat(surface) == 0) return D3DERR_NOTAVAILABLE;
    DWORD levels = 0;
    if (ms == D3DMULTISAMPLE_NONE) {
      levels = 1;
    } else if (ms == D3DMULTISAMPLE_NONMASKABLE) {
      for (int n = 2; n <= 16; ++n) levels += Limits().sampleCounts >> n & 1;
    } else if (DWORD(ms) <= 16 && (Limits().sampleCounts >> ms & 1)) {
      levels = 1;
    }
    if (levels == 0) return D3DERR_NOTAVAILABLE;
    if (quality) *quality = levels;
    return D3D_OK;
  }

  HRESULT CheckDepthStencilMatch(UINT adapter, D3DDEVTYPE type, D3DFORMAT adapterFormat, D3DFORMAT target,
                                 D3DFORMAT depth) override {
    HRESULT hr = CheckAdapter(adapter, type);
    if (FAILED(hr)) return hr;
    if (!AdapterHasFormat(adapter, adapterFormat)) return D3DERR_NOTAVAILABLE;
    // Any colour buffer of ours pairs with any depth buffer of ours in GL.
    return BackBufferInternalFormat(target) && DepthInternalFormat(depth) ? D3D_OK : D3DERR_NOTAVAILABLE;
  }

  HRESULT GetDeviceCaps(UINT adapter, D3DDEVTYPE type, D3DCAPS9* caps) override {
    if (caps == nullptr) return D3DERR_INVALIDCALL;
    HRESULT hr = CheckAdapter(adapter, type);
    if (FAILED(hr)) return hr;
    const GLLimits& l = Limits();
    *caps = D3DCAPS9{};
    caps->DeviceType = D3DDEVTYPE_HAL;
    caps->AdapterOrdinal = adapter;
    caps->PresentationIntervals = (l.swapImmediate ? D3DPRESENT_INTERVAL_IMMEDIATE : 0) |
                                  (l.swapOne ? D3DPRESENT_INTERVAL_ONE : 0);
    // Transforms run in the generated vertex shader; the device keeps no
    // state for Get calls, which is what a pure device promises.
    caps->DevCaps = D3DDEVCAPS_HWTRANSFORMANDLIGHT | D3DDEVCAPS_PUREDEVICE;
    caps->PrimitiveMiscCaps = D3DPMISCCAPS_CULLNONE | D3DPMISCCAPS_CULLCW | D3DPMISCCAPS_CULLCCW;
    caps->RasterCaps = D3DPRASTERCAPS_DITHER | (l.anisotropic ? D3DPRASTERCAPS_ANISOTROPY : 0);
    caps->ZCmpCaps = D3DPCMPCAPS_NEVER | D3DPCMPCAPS_LESS | D3DPCMPCAPS_EQUAL | D3DPCMPCAPS_LESSEQUAL |
                     D3DPCMPCAPS_GREATER | D3DPCMPCAPS_NOTEQUAL | D3DPCMPCAPS_GREATEREQUAL | D3DPCMPCAPS_ALWAYS;
    DWORD blend = D3DPBLENDCAPS_ZERO | D3DPBLENDCAPS_ONE | D3DPBLENDCAPS_SRCCOLOR | D3DPBLENDCAPS_INVSRCCOLOR |
                  D3DPBLENDCAPS_SRCALPHA | D3DPBLENDCAPS_INVSRCALPHA | D3DPBLENDCAPS_DESTALPHA |
                  D3DPBLENDCAPS_INVDESTALPHA | D3DPBLENDCAPS_DESTCOLOR | D3DPBLENDCAPS_INVDESTCOLOR;
    caps->SrcBlendCaps = caps->DestBlendCaps = blend;
    caps->ShadeCaps = D3DPSHADECAPS_COLORGOURAUDRGB;
    caps->TextureFilterCaps = D3DPTFILTERCAPS_MINFPOINT | D3DPTFILTERCAPS_MINFLINEAR | D3DPTFILTERCAPS_MIPFPOINT |
                              D3DPTFILTERCAPS_MIPFLINEAR | D3DPTFILTERCAPS_MAGFPOINT | D3DPTFILTERCAPS_MAGFLINEAR;
    if (l.anisotropic)
      caps->TextureFilterCaps |= D3DPTFILTERCAPS_MINFANISOTROPIC | D3DPTFILTERCAPS_MAGFANISOTROPIC;
    caps->TextureAddressCaps = D3DPTADDRESSCAPS_WRAP | D3DPTADDRESSCAPS_MIRROR | D3DPTADDRESSCAPS_CLAMP;
    caps->MaxTextureWidth = caps->MaxTextureHeight = DWORD(l.maxTextureSize);
    caps->MaxAnisotropy = l.anisotropic ? DWORD(l.maxAnisotropy) : 1;
    caps->TextureOpCaps = D3DTEXOPCAPS_DISABLE | D3DTEXOPCAPS_SELECTARG1 | D3DTEXOPCAPS_SELECTARG2 |
                          D3DTEXOPCAPS_MODULATE | D3DTEXOPCAPS_MODULATE2X | D3DTEXOPCAPS_MODULATE4X |
                          D3DTEXOPCAPS_ADD | D3DTEXOPCAPS_ADDSIGNED | D3DTEXOPCAPS_ADDSIGNED2X | D3DTEXOPCAPS_SUBTRACT;
    caps->MaxTextureBlendStages = kShaderStages;
    caps->MaxSimultaneousTextures = kShaderStages;
    return D3D_OK;
  }

  HRESULT CreateDevice(UINT adapter, D3DDEVTYPE type, HWND focus, DWORD flags, D3DPRESENT_PARAMETERS* pp,
                       IDirect3DDevice9** out) override {
    if (out) *out = nullptr;
    HRESULT hr = CheckAdapter(adapter, type);
    if (FAILED(hr)) return hr;
    if (focus == nullptr && (pp == nullptr || pp->hDeviceWindow == nullptr)) return D3DERR_INVALIDCALL;
    return GLDevice::Create(focus, flags, pp, out);
  }

 private:
  ~GLDirect3D() = default;

  HRESULT CheckAdapter(UINT adapter, D3DDEVTYPE type) {
    if (adapter >= GetAdapterCount()) return D3DERR_INVALIDCALL;
    // One device type: the GL driver. Reference and software rasterisers of
    // the platform do not exist here.
    if (type != D3DDEVTYPE_HAL || !Limits().valid) return D3DERR_NOTAVAILABLE;
    return D3D_OK;
  }

  bool AdapterHasFormat(UINT adapter, D3DFORMAT format) {
    return IsDisplayFormat(format) && !Modes(adapter, format).empty();
  }

  // Modes of one format, ascending by width, height and rate, without repeats.
  std::vector<D3DDISPLAYMODE> Modes(UINT adapter, D3DFORMAT format) {
    std::vector<D3DDISPLAYMODE> out;
    if (adapter >= GetAdapterCount()) return out;
    int n = SDL_GetNumDisplayModes(int(adapter));
    bool usable = false;
    for (int i = 0; i < n; ++i) {
      SDL_DisplayMode m;
      if (SDL_GetDisplayMode(int(adapter), i, &m) != 0 || !HasSize(m) || FormatOfMode(m) == D3DFMT_UNKNOWN) continue;
      usable = true;
      D3DDISPLAYMODE d = ToD3D(m);
      if (d.Format != format) continue;
      bool seen = std::any_of(out.begin(), out.end(), [&](const D3DDISPLAYMODE& o) {
        return o.Width == d.Width && o.Height == d.Height && o.RefreshRate == d.RefreshRate;
      });
      if (!seen) out.push_back(d);
    }
    if (!usable && HeadlessMode(int(adapter)).Format == format) out.push_back(HeadlessMode(int(adapter)));
    std::sort(out.begin(), out.end(), [](const D3DDISPLAYMODE& a, const D3DDISPLAYMODE& b) {
      if (a.Width != b.Width) return a.Width < b.Width;
      if (a.Height != b.Height) return a.Height < b.Height;
      return a.RefreshRate < b.RefreshRate;
    });
    return out;
  }

  ULONG refs_ = 1;
};

}  // namespace

}  // namespace d3d9gl

IDirect3D9* Direct3DCreate9(UINT SDKVersion) {
  if (SDKVersion != D3D_SDK_VERSION) return nullptr;
  if (SDL_InitSubSystem(SDL_INIT_VIDEO) != 0) {
    d3d9gl::Log(d3d9gl::LogLevel::Error, "Direct3DCreate9", "SDL video: %s", SDL_GetError());
    return nullptr;
  }
  d3d9gl::Limits();  // probe now, before any device context exists
  return new d3d9gl::GLDirect3D();
}
