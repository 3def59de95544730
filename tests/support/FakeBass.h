// A recording fake of the BASS layer, linked in place of karvo_bass: it keeps
// every load and every play in order, and lets a test choose the version, the
// result of BASS_Init, and which files exist or give no channel. It plays
// nothing, so rule tests run without audio and compare call sequences.
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
  HSAMPLE sample;  // 0 when the fake refused it
};

struct Play {
  DWORD channel;
  BOOL restart;
  std::string path;  // the file behind the channel; empty for an unknown handle
};

// Back to a library that starts, has every file and records nothing.
void Reset();

void SetVersion(DWORD version);
void SetInitResult(BOOL result);
// A file that does not exist: its load gives 0.
void SetMissing(const std::string& path);
// A file that loads but whose sample hands out no channel.
void SetNoChannel(const std::string& path);

int InitCalls();
int GetChannelCalls();
const std::vector<Load>& Loads();
const std::vector<Play>& Plays();
// Recorded calls of each of the ending functions.
int StopCalls();
int SampleFreeCalls();
int FreeCalls();

// The channel handed out for the file, 0 when none was.
HCHANNEL ChannelOf(const std::string& path);
// The files played since the last ClearPlays, in order.
std::vector<std::string> PlayedPaths();
void ClearPlays();

}  // namespace fakebass
