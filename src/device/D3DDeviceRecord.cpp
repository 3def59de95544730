// CD3DDeviceRecord: frees the option records it owns.
#include "device/D3DDeviceRecord.h"

CD3DDeviceRecord::~CD3DDeviceRecord() {
  for (CD3DOptionRecord* option : m_options) delete option;
  m_options.clear();
}
