// CD3DDisplaySettings: one full choice of display settings (adapter, mode,
// device type, formats, multisampling, vertex processing, present interval).
// Plain data, copied by value; the zero record is a valid "nothing chosen".
#pragma once

#include <cstdint>

#include "device/VertexProcessingType.h"
#include "platform/d3d9/d3d9.h"

class CD3DDisplaySettings {
 public:
  std::uint32_t m_adapterOrdinal;
  D3DDISPLAYMODE m_displayMode;  // Width, Height, RefreshRate, Format
  D3DDEVTYPE m_deviceType;
  D3DFORMAT m_backBufferFormat;
  D3DFORMAT m_depthStencilFormat;
  D3DMULTISAMPLE_TYPE m_multiSampleType;
  std::uint32_t m_multiSampleQuality;
  VERTEXPROCESSING_TYPE m_vertexProcessing;
  std::uint32_t m_presentInterval;  // a D3DPRESENT_INTERVAL_... value
};
