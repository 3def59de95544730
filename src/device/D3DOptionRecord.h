// CD3DOptionRecord: one accepted combination of adapter format, back buffer
// format and windowed flag on one device type, with everything the device
// allows for it. A leaf of the enumeration tree, owned by its CD3DDeviceRecord.
#pragma once

#include <cstdint>
#include <vector>

#include "device/VertexProcessingType.h"
#include "platform/d3d9/d3d9.h"

class CD3DOptionRecord {
 public:
  CD3DOptionRecord() = default;
  CD3DOptionRecord(const CD3DOptionRecord&) = delete;
  CD3DOptionRecord& operator=(const CD3DOptionRecord&) = delete;

  std::uint32_t m_adapterOrdinal = 0;
  D3DDEVTYPE m_deviceType{};
  D3DCAPS9 m_caps{};  // a copy of the device's
  D3DFORMAT m_adapterFormat{};
  D3DFORMAT m_backBufferFormat{};
  bool m_windowed = false;
  std::vector<D3DMULTISAMPLE_TYPE> m_multiSampleTypes;
  std::vector<std::uint32_t> m_multiSampleQualities;  // quality level count, same index as the types
  std::vector<D3DFORMAT> m_depthFormats;
  std::vector<VERTEXPROCESSING_TYPE> m_vertexProcessingTypes;  // most hardware first
  std::vector<std::uint32_t> m_presentIntervals;                // D3DPRESENT_INTERVAL_... values
};
