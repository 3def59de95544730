// CD3DAdapterRecord: one adapter that survived the enumeration, its accepted
// display modes and its device types. Owns its device records.
#pragma once

#include <cstdint>
#include <vector>

#include "device/D3DDeviceRecord.h"
#include "platform/d3d9/d3d9.h"

class CD3DAdapterRecord {
 public:
  CD3DAdapterRecord() = default;
  CD3DAdapterRecord(const CD3DAdapterRecord&) = delete;
  CD3DAdapterRecord& operator=(const CD3DAdapterRecord&) = delete;
  ~CD3DAdapterRecord();

  std::uint32_t m_ordinal = 0;
  D3DADAPTER_IDENTIFIER9 m_identifier{};
  std::vector<D3DDISPLAYMODE> m_modes;        // in the order of enumeration, duplicates kept
  std::vector<CD3DDeviceRecord*> m_devices;  // owned
};
