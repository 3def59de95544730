// CD3DAdapterRecord: frees the device records it owns (and so their options).
#include "device/D3DAdapterRecord.h"

CD3DAdapterRecord::~CD3DAdapterRecord() {
  for (CD3DDeviceRecord* device : m_devices) delete device;
  m_devices.clear();
}
