// A recording fake of the BASS layer, linked in place of karvo_bass: it keeps
// every load and every play in order, and lets a test choose the version and
// which files exist. It plays nothing, so rule tests run without audio and
// compare call sequences.
//
// Like the library, it loads nothing before a successful BASS_Init. Handles:
// sample n (in load order, from 1) is 0x1000 + n, its channel 0x2000 + n.
#pragma once

#include <string>
#include <vector>

#include "platform/bass/bass.h"

namespace fakebass {

struct Load {
  std::string path;  // as the caller wrote it
  DWORD max;
  DWORD flags;
};

struct Play {
  BOOL restart;
  std::string path;  // the file behind the channel; empty for an unknown handle
};

// Back to a library that starts, has every file and records nothing.
void Reset();

void SetVersion(DWORD version);
// A file that does not exist: its load gives 0.
void SetMissing(const std::string& path);

int GetChannelCalls();
const std::vector<Load>& Loads();
const std::vector<Play>& Plays();

// The channel handed out for the file, 0 when none was.
HCHANNEL ChannelOf(const std::string& path);
// The files played since the last ClearPlays, in order.
std::vector<std::string> PlayedPaths();
void ClearPlays();

}  // namespace fakebass
