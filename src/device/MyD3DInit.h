// CMyD3DInit: the enumeration the application uses. It refuses display modes
// below 640x480 at 60 Hz, devices that lack the caps the renderer relies on,
// and mixed vertex processing.
#pragma once

#include "device/D3DInitialize.h"

class CMyD3DInit : public CD3DInitialize {
 public:
  bool ValidateDisplayMode(const D3DDISPLAYMODE& mode) override;
  bool ValidateDevice(const D3DDEVTYPE& type, const D3DCAPS9& caps) override;
  bool ValidateVertexProcessing(const VERTEXPROCESSING_TYPE& type) override;
};
