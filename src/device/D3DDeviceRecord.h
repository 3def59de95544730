// CD3DDeviceRecord: one device type of an adapter that survived the
// enumeration, its caps and its accepted options. Owns its option records.
#pragma once

#include <vector>

#include "device/D3DOptionRecord.h"
#include "platform/d3d9/d3d9.h"

class CD3DDeviceRecord {
 public:
  CD3DDeviceRecord() = default;
  CD3DDeviceRecord(const CD3DDeviceRecord&) = delete;
  CD3DDeviceRecord& operator=(const CD3DDeviceRecord&) = delete;
  ~CD3DDeviceRecord();

  D3DDEVTYPE m_deviceType{};
  D3DCAPS9 m_caps{};
  std::vector<CD3DOptionRecord*> m_options;  // owned
};
