// CMyD3DInit: the application's refusals during enumeration.
#include "device/MyD3DInit.h"

bool CMyD3DInit::ValidateDisplayMode(const D3DDISPLAYMODE& mode) {
  return mode.Width >= 640 && mode.Height >= 480 && mode.RefreshRate >= 60;
}

bool CMyD3DInit::ValidateDevice(const D3DDEVTYPE& /*type*/, const D3DCAPS9& caps) {
  // Dithering, Gouraud colour shading, counter-clockwise culling, a LESSEQUAL
  // depth test and SELECTARG1 are what the renderer uses without asking.
  if (!(caps.RasterCaps & D3DPRASTERCAPS_DITHER)) return false;
  if (!(caps.ShadeCaps & D3DPSHADECAPS_COLORGOURAUDRGB)) return false;
  if (!(caps.PrimitiveMiscCaps & D3DPMISCCAPS_CULLCCW)) return false;
  if (!(caps.ZCmpCaps & D3DPCMPCAPS_LESSEQUAL)) return false;
  if (!(caps.TextureOpCaps & D3DTEXOPCAPS_SELECTARG1)) return false;
  return true;
}

bool CMyD3DInit::ValidateVertexProcessing(const VERTEXPROCESSING_TYPE& type) {
  // Mixed processing would let the renderer switch per draw; it never does.
  return type != MIXED_VP;
}
