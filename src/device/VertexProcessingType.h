// VERTEXPROCESSING_TYPE: how a device transforms vertices. The enumeration
// lists the kinds a device option allows, from the most to the least hardware;
// the chosen kind decides the creation flags of the device.
#pragma once

enum VERTEXPROCESSING_TYPE {
  SOFTWARE_VP = 1,       // D3DCREATE_SOFTWARE_VERTEXPROCESSING
  MIXED_VP = 2,          // D3DCREATE_MIXED_VERTEXPROCESSING
  HARDWARE_VP = 3,       // D3DCREATE_HARDWARE_VERTEXPROCESSING
  PURE_HARDWARE_VP = 4,  // hardware processing on a pure device
};
