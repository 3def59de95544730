// CD3DSettings: the display settings of the application, one set for a
// window and one for full screen, and which of the two is in force. Owned by
// CGameApp; the settings dialog edits a copy; device creation and reset read
// the set in force. Plain data, copied by value.
#pragma once

#include "device/D3DDisplaySettings.h"

class CD3DSettings {
 public:
  bool m_windowed;  // true: m_windowedSettings is in force
  CD3DDisplaySettings m_windowedSettings;
  CD3DDisplaySettings m_fullscreenSettings;

  // The set in force, chosen by m_windowed.
  CD3DDisplaySettings& GetCurrentSettings() { return m_windowed ? m_windowedSettings : m_fullscreenSettings; }
  const CD3DDisplaySettings& GetCurrentSettings() const {
    return m_windowed ? m_windowedSettings : m_fullscreenSettings;
  }
};
