// CSoundSlot: one short sound, a loaded sample and its one fixed channel.
// Both are 0 when the file could not be loaded; a rule that finds channel 0
// stays silent.
#pragma once

#include "platform/bass/bass.h"

struct CSoundSlot {
  HSAMPLE m_sample;
  HCHANNEL m_channel;
};
