// CGameApp render-state control: the one place that gives the device its base
// state, the check of the user's render options against what the device can
// do, and the menu marks that show which options are really in force.
//
// Every drawing routine of the frame starts from the state set here and
// changes only what it needs; a reset, a change of size or a new device loses
// device state, so every such path ends in ApplyRenderStates again.
#include <cstdint>
#include <iterator>

#include "app/GameApp.h"
#include "view/Camera.h"

namespace {

// Menu commands of the Render States menu.
constexpr UINT ID_FILL_SOLID = 40013;
constexpr UINT ID_FILL_WIREFRAME = 40014;
constexpr UINT ID_MIP_NONE = 40019;
constexpr UINT ID_MIP_POINT = 40020;
constexpr UINT ID_MIP_LINEAR = 40021;
constexpr UINT ID_SINGLE_PASS = 40022;
constexpr UINT ID_MULTI_PASS = 40023;
constexpr UINT ID_OP_ADDSIGNED = 40024;
constexpr UINT ID_OP_ADDSIGNED2X = 40025;
constexpr UINT ID_OP_ADD = 40026;
constexpr UINT ID_OP_SUBTRACT = 40027;
constexpr UINT ID_OP_MODULATE = 40028;
constexpr UINT ID_OP_MODULATE2X = 40029;
constexpr UINT ID_OP_MODULATE4X = 40030;
constexpr UINT ID_MIN_NONE = 40031;
constexpr UINT ID_MIN_POINT = 40032;
constexpr UINT ID_MIN_LINEAR = 40033;
constexpr UINT ID_MIN_ANISOTROPIC = 40034;
constexpr UINT ID_MAG_NONE = 40035;
constexpr UINT ID_MAG_POINT = 40036;
constexpr UINT ID_MAG_LINEAR = 40037;
constexpr UINT ID_MAG_ANISOTROPIC = 40038;
constexpr UINT ID_ANISOTROPY_1 = 40039;
constexpr UINT ID_ANISOTROPY_64 = 40045;

// The menu's anisotropy values, one per command from ID_ANISOTROPY_1 on.
constexpr std::uint32_t kAnisotropySteps[] = {1, 2, 4, 8, 16, 32, 64};

// "&Render States" is the third popup of the menu bar; "&Color Blending Ops"
// sits at position 5 inside it.
constexpr int RENDER_STATES_POPUP = 2;
constexpr UINT COLOR_OPS_POSITION = 5;

// The colour operations of the Color Blending Ops menu in the order in which
// one takes the place of another the device lacks.
constexpr D3DTEXTUREOP kColorOpOrder[] = {D3DTOP_ADDSIGNED, D3DTOP_MODULATE2X, D3DTOP_MODULATE, D3DTOP_ADD,
                                          D3DTOP_ADDSIGNED2X, D3DTOP_MODULATE4X, D3DTOP_SUBTRACT};

// Texture formats worth having, best first.
constexpr D3DFORMAT kOpaqueFormats[] = {D3DFMT_DXT1, D3DFMT_X8R8G8B8, D3DFMT_R5G6B5, D3DFMT_X1R5G5B5};
constexpr D3DFORMAT kAlphaFormats[] = {D3DFMT_DXT3, D3DFMT_A8R8G8B8, D3DFMT_A1R5G5B5, D3DFMT_A4R4G4B4};

// Index of a table entry, or -1 when the value lies outside the table, so that
// an out-of-range option can never index past a validity table.
int TableIndex(std::uint32_t value, std::uint32_t size) {
  return value < size ? static_cast<int>(value) : -1;
}

// Greys or enables one command and tells whether the capability holds.
bool EnableIf(HMENU menu, UINT command, bool capable) {
  EnableMenuItem(menu, command, MF_BYCOMMAND | (capable ? MF_ENABLED : (MF_GRAYED | MF_DISABLED)));
  return capable;
}

// The first filter of order, best first, that the table accepts. Entry 0
// (no filtering) is always accepted, so a correction always finds one.
D3DTEXTUREFILTERTYPE BestFilter(const bool (&valid)[10], D3DTEXTUREFILTERTYPE current, std::uint32_t best) {
  int index = TableIndex(static_cast<std::uint32_t>(current), 10);
  if (index >= 0 && valid[index]) return current;
  for (std::uint32_t value = best + 1; value-- > 0;) {
    if (valid[value]) return static_cast<D3DTEXTUREFILTERTYPE>(value);
  }
  return D3DTEXF_NONE;
}

}  // namespace

void CGameApp::ApplyRenderStates() {
  if (!ValidateRenderOptions()) {
    PostQuitMessage(0);
    return;
  }
  if (m_device == nullptr) return;

  m_device->SetRenderState(D3DRS_ZENABLE, D3DZB_TRUE);
  m_device->SetRenderState(D3DRS_DITHERENABLE, TRUE);
  m_device->SetRenderState(D3DRS_SHADEMODE, D3DSHADE_GOURAUD);
  m_device->SetRenderState(D3DRS_CULLMODE, D3DCULL_CCW);
  m_device->SetRenderState(D3DRS_LIGHTING, FALSE);

  m_device->SetSamplerState(0, D3DSAMP_MINFILTER, m_minFilter);
  m_device->SetSamplerState(0, D3DSAMP_MAGFILTER, m_magFilter);
  m_device->SetSamplerState(0, D3DSAMP_MIPFILTER, m_mipFilter);
  m_device->SetSamplerState(0, D3DSAMP_MAXANISOTROPY, m_maxAnisotropy);

  // Stage 0 shows the base texture as it is.
  m_device->SetTextureStageState(0, D3DTSS_COLORARG1, D3DTA_TEXTURE);
  m_device->SetTextureStageState(0, D3DTSS_COLOROP, D3DTOP_SELECTARG1);
  m_device->SetTextureStageState(0, D3DTSS_TEXCOORDINDEX, 0);

  m_terrain.SetSinglePass(m_singlePass);
  if (m_singlePass) {
    // Stage 1 lays the detail texture, by the second coordinate pair, over
    // stage 0's result with the menu's colour operation.
    m_device->SetTextureStageState(1, D3DTSS_COLORARG1, D3DTA_CURRENT);
    m_device->SetTextureStageState(1, D3DTSS_COLORARG2, D3DTA_TEXTURE);
    m_device->SetTextureStageState(1, D3DTSS_COLOROP, m_colorOp);
    m_device->SetTextureStageState(1, D3DTSS_TEXCOORDINDEX, 1);
    m_device->SetSamplerState(1, D3DSAMP_MINFILTER, m_minFilter);
    m_device->SetSamplerState(1, D3DSAMP_MAGFILTER, m_magFilter);
    m_device->SetSamplerState(1, D3DSAMP_MIPFILTER, m_mipFilter);
    m_device->SetSamplerState(1, D3DSAMP_MAXANISOTROPY, m_maxAnisotropy);
  } else {
    // Two passes: the terrain blends the detail in itself; stage 1 stays off.
    m_device->SetTextureStageState(1, D3DTSS_COLOROP, D3DTOP_DISABLE);
    m_device->SetTexture(1, nullptr);
  }

  m_device->SetRenderState(D3DRS_FILLMODE, m_fillMode);
  m_device->SetFVF(D3DFVF_XYZ | D3DFVF_TEX2);

  RECT client{};
  GetClientRect(m_hWnd, &client);
  m_viewWidth = static_cast<std::uint32_t>(client.right - client.left);
  m_viewHeight = static_cast<std::uint32_t>(client.bottom - client.top);

  // A WM_SIZE during OpenDisplay comes before the camera exists: the states
  // above are set, the camera and the menu marks wait for a later call.
  if (m_camera != nullptr) {
    m_camera->SetViewport(m_viewX, m_viewY, m_viewWidth, m_viewHeight, 1.01f, 5000.0f, nullptr);
    m_camera->UpdateRenderView(m_device);
    m_camera->UpdateRenderProj(m_device);
    UpdateMenuChecks();
  }
}

bool CGameApp::ValidateRenderOptions() {
  if (m_d3d == nullptr) return false;
  const CD3DDisplaySettings& settings = m_settings.GetCurrentSettings();

  D3DCAPS9 caps{};
  if (FAILED(m_d3d->GetDeviceCaps(settings.m_adapterOrdinal, settings.m_deviceType, &caps))) return false;

  for (bool& entry : m_magFilterValid) entry = false;
  for (bool& entry : m_minFilterValid) entry = false;
  for (bool& entry : m_mipFilterValid) entry = false;
  for (bool& entry : m_colorOpValid) entry = false;
  m_magFilterValid[D3DTEXF_NONE] = true;
  m_minFilterValid[D3DTEXF_NONE] = true;
  m_mipFilterValid[D3DTEXF_NONE] = true;
  m_maxTextures = 0;
  m_maxAnisotropyLimit = 0;

  // Each command is enabled or greyed by one capability, in menu order.
  const DWORD filters = caps.TextureFilterCaps;
  struct FilterRow {
    UINT command;
    DWORD cap;
    bool* entry;
  };
  const FilterRow filterRows[] = {
      {ID_MIN_ANISOTROPIC, D3DPTFILTERCAPS_MINFANISOTROPIC, &m_minFilterValid[D3DTEXF_ANISOTROPIC]},
      {ID_MIN_LINEAR, D3DPTFILTERCAPS_MINFLINEAR, &m_minFilterValid[D3DTEXF_LINEAR]},
      {ID_MIN_POINT, D3DPTFILTERCAPS_MINFPOINT, &m_minFilterValid[D3DTEXF_POINT]},
      {ID_MAG_ANISOTROPIC, D3DPTFILTERCAPS_MAGFANISOTROPIC, &m_magFilterValid[D3DTEXF_ANISOTROPIC]},
      {ID_MAG_LINEAR, D3DPTFILTERCAPS_MAGFLINEAR, &m_magFilterValid[D3DTEXF_LINEAR]},
      {ID_MAG_POINT, D3DPTFILTERCAPS_MAGFPOINT, &m_magFilterValid[D3DTEXF_POINT]},
      {ID_MIP_LINEAR, D3DPTFILTERCAPS_MIPFLINEAR, &m_mipFilterValid[D3DTEXF_LINEAR]},
      {ID_MIP_POINT, D3DPTFILTERCAPS_MIPFPOINT, &m_mipFilterValid[D3DTEXF_POINT]},
  };
  for (const FilterRow& row : filterRows) {
    if (EnableIf(m_hMenu, row.command, (filters & row.cap) != 0)) *row.entry = true;
  }

  const DWORD ops = caps.TextureOpCaps;
  struct OpRow {
    UINT command;
    DWORD cap;
    D3DTEXTUREOP op;
  };
  const OpRow opRows[] = {
      {ID_OP_ADDSIGNED, D3DTEXOPCAPS_ADDSIGNED, D3DTOP_ADDSIGNED},
      {ID_OP_MODULATE2X, D3DTEXOPCAPS_MODULATE2X, D3DTOP_MODULATE2X},
      {ID_OP_MODULATE, D3DTEXOPCAPS_MODULATE, D3DTOP_MODULATE},
      {ID_OP_ADD, D3DTEXOPCAPS_ADD, D3DTOP_ADD},
      {ID_OP_ADDSIGNED2X, D3DTEXOPCAPS_ADDSIGNED2X, D3DTOP_ADDSIGNED2X},
      {ID_OP_MODULATE4X, D3DTEXOPCAPS_MODULATE4X, D3DTOP_MODULATE4X},
      {ID_OP_SUBTRACT, D3DTEXOPCAPS_SUBTRACT, D3DTOP_SUBTRACT},
  };
  for (const OpRow& row : opRows) {
    if (EnableIf(m_hMenu, row.command, (ops & row.cap) != 0)) m_colorOpValid[row.op] = true;
  }

  if (EnableIf(m_hMenu, ID_SINGLE_PASS, caps.MaxSimultaneousTextures >= 2)) {
    m_maxTextures = caps.MaxSimultaneousTextures;
  }
  // 1 needs a non-zero limit, every later step the step's own value.
  for (UINT i = 0; i < std::size(kAnisotropySteps); ++i) {
    const std::uint32_t step = kAnisotropySteps[i];
    const bool capable = i == 0 ? caps.MaxAnisotropy != 0 : caps.MaxAnisotropy >= step;
    if (EnableIf(m_hMenu, ID_ANISOTROPY_1 + i, capable)) m_maxAnisotropyLimit = step;
  }

  // Replace what the device cannot do: the best filter it has, not the
  // nearest one, and the first colour operation of the fallback order.
  m_minFilter = BestFilter(m_minFilterValid, m_minFilter, D3DTEXF_ANISOTROPIC);
  m_magFilter = BestFilter(m_magFilterValid, m_magFilter, D3DTEXF_ANISOTROPIC);
  m_mipFilter = BestFilter(m_mipFilterValid, m_mipFilter, D3DTEXF_LINEAR);

  const int opIndex = TableIndex(static_cast<std::uint32_t>(m_colorOp), 30);
  if (opIndex < 0 || !m_colorOpValid[opIndex]) {
    bool found = false;
    for (D3DTEXTUREOP op : kColorOpOrder) {
      if (m_colorOpValid[op]) {
        m_colorOp = op;
        found = true;
        break;
      }
    }
    if (!found) return false;
  }

  if (m_maxTextures < 2) m_singlePass = false;
  if (m_maxAnisotropyLimit < m_maxAnisotropy) m_maxAnisotropy = m_maxAnisotropyLimit;

  // Nothing loads textures in these formats; a device without any of them
  // is simply not good enough for the world and ends the run.
  m_textureFormat = static_cast<D3DFORMAT>(0);
  m_alphaFormat = static_cast<D3DFORMAT>(0);
  const D3DFORMAT adapterFormat = settings.m_displayMode.Format;
  auto firstUsable = [&](const D3DFORMAT(&candidates)[4]) {
    for (D3DFORMAT format : candidates) {
      if (SUCCEEDED(m_d3d->CheckDeviceFormat(settings.m_adapterOrdinal, settings.m_deviceType, adapterFormat, 0,
                                             D3DRTYPE_TEXTURE, format))) {
        return format;
      }
    }
    return static_cast<D3DFORMAT>(0);
  };
  m_textureFormat = firstUsable(kOpaqueFormats);
  if (m_textureFormat == 0) {
    MessageBoxA(nullptr, "No valid texture formats could be found.", "Error.", MB_ICONERROR);
    return false;
  }
  m_alphaFormat = firstUsable(kAlphaFormats);
  if (m_alphaFormat == 0) {
    MessageBoxA(nullptr, "No valid alpha texture formats could be found.", "Error.", MB_ICONERROR);
    return false;
  }
  return true;
}

void CGameApp::UpdateMenuChecks() {
  // A value outside a group's list leaves that group's mark alone.
  auto mark = [this](UINT first, UINT last, UINT item) {
    if (item != 0) CheckMenuRadioItem(m_hMenu, first, last, item, MF_BYCOMMAND);
  };
  auto filterItem = [](D3DTEXTUREFILTERTYPE value, UINT first, std::uint32_t count) -> UINT {
    return static_cast<std::uint32_t>(value) < count ? first + static_cast<UINT>(value) : 0;
  };
  mark(ID_MIN_NONE, ID_MIN_ANISOTROPIC, filterItem(m_minFilter, ID_MIN_NONE, 4));
  mark(ID_MAG_NONE, ID_MAG_ANISOTROPIC, filterItem(m_magFilter, ID_MAG_NONE, 4));
  mark(ID_MIP_NONE, ID_MIP_LINEAR, filterItem(m_mipFilter, ID_MIP_NONE, 3));

  UINT opItem = 0;
  switch (m_colorOp) {
    case D3DTOP_MODULATE: opItem = ID_OP_MODULATE; break;
    case D3DTOP_MODULATE2X: opItem = ID_OP_MODULATE2X; break;
    case D3DTOP_MODULATE4X: opItem = ID_OP_MODULATE4X; break;
    case D3DTOP_ADD: opItem = ID_OP_ADD; break;
    case D3DTOP_ADDSIGNED: opItem = ID_OP_ADDSIGNED; break;
    case D3DTOP_ADDSIGNED2X: opItem = ID_OP_ADDSIGNED2X; break;
    case D3DTOP_SUBTRACT: opItem = ID_OP_SUBTRACT; break;
    default: break;
  }
  mark(ID_OP_ADDSIGNED, ID_OP_MODULATE4X, opItem);
  mark(ID_SINGLE_PASS, ID_MULTI_PASS, m_singlePass ? ID_SINGLE_PASS : ID_MULTI_PASS);

  UINT fillItem = 0;
  if (m_fillMode == D3DFILL_WIREFRAME) fillItem = ID_FILL_WIREFRAME;
  if (m_fillMode == D3DFILL_SOLID) fillItem = ID_FILL_SOLID;
  mark(ID_FILL_SOLID, ID_FILL_WIREFRAME, fillItem);

  UINT anisotropyItem = 0;
  for (UINT i = 0; i < std::size(kAnisotropySteps); ++i) {
    if (m_maxAnisotropy == kAnisotropySteps[i]) anisotropyItem = ID_ANISOTROPY_1 + i;
  }
  mark(ID_ANISOTROPY_1, ID_ANISOTROPY_64, anisotropyItem);

  // Multi pass ignores the colour operation, so its popup is greyed as a whole.
  HMENU renderStates = GetSubMenu(m_hMenu, RENDER_STATES_POPUP);
  EnableMenuItem(renderStates, COLOR_OPS_POSITION,
                 MF_BYPOSITION | (m_singlePass ? MF_ENABLED : (MF_GRAYED | MF_DISABLED)));
}
