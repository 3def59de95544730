// BASS 2.4: the subset of the audio library's interface that the system uses,
// with the published names and values. Implemented on SDL2_mixer (BassMixer.cpp).
//
// Contract of this back end, where the system relies on it:
//  - Handles are 32-bit numbers; 0 is none. Sample and channel handles never
//    repeat within a run, so a stale handle fails instead of reaching another
//    sound.
//  - BASS_SampleLoad decodes the whole file at load; nothing is decoded while
//    playing. A path written with backslashes is opened with forward slashes.
//  - A sample owns `max` fixed playback channels. BASS_ChannelPlay(ch, FALSE)
//    starts a stopped channel from its beginning and leaves a playing one alone;
//    BASS_SAMPLE_LOOP makes its channels loop.
//  - Every call fails cleanly (0 or FALSE) when BASS_Init has not succeeded, when
//    a handle is unknown or freed, or when a file is missing or cannot be decoded.
//  - The mix is 16-bit stereo at the frequency given to BASS_Init. SDL's audio
//    driver is chosen as SDL does it, so SDL_AUDIODRIVER=dummy or disk work for
//    headless runs (disk writes the mixed output to SDL_DISKAUDIOFILE).
//  - All calls come from the main thread; SDL mixes on a thread of its own.
#pragma once

#include <cstdint>

#include "platform/win32/windows.h"

typedef std::uint64_t QWORD;
typedef DWORD HSAMPLE;   // a loaded sample
typedef DWORD HCHANNEL;  // a playback channel of a sample

#define BASSVERSION 0x204  // the API version whose calls these are

// BASS_Init flags
#define BASS_DEVICE_3D 4  // enable 3D functionality (accepted; positions are not used)

// BASS_SampleLoad flags
#define BASS_SAMPLE_LOOP 4  // looped playback

// BASS_ChannelIsActive results
#define BASS_ACTIVE_STOPPED 0
#define BASS_ACTIVE_PLAYING 1
#define BASS_ACTIVE_STALLED 2
#define BASS_ACTIVE_PAUSED 3

// Version of the library: high word 0x0204 for 2.4, low word the revision.
DWORD BASS_GetVersion();

// Starts the output on `device` (-1 the default device, 1 the first real one)
// at `freq` Hz. `win` and `dsguid` are accepted and not used. FALSE when the
// library is started already or no audio device can be opened.
BOOL BASS_Init(int device, DWORD freq, DWORD flags, HWND win, const void* dsguid);

// Stops all playback, frees all samples and closes the output. FALSE when the
// library was not started.
BOOL BASS_Free();

// Loads and decodes a whole file (`mem` FALSE: `file` is a path; TRUE: `file`
// points at `length` bytes in memory) from `offset` on; `length` 0 means to the
// end. `max` (1 to 65535) is the number of simultaneous playbacks. 0 on failure.
HSAMPLE BASS_SampleLoad(BOOL mem, const void* file, QWORD offset, DWORD length, DWORD max,
                        DWORD flags);

// Stops the sample's channels and frees it; its channel handles become invalid.
BOOL BASS_SampleFree(HSAMPLE handle);

// A channel to play the sample on: one that is not playing, a new one while
// fewer than `max` exist, else 0. With `onlynew` TRUE only a new one.
HCHANNEL BASS_SampleGetChannel(HSAMPLE handle, BOOL onlynew);

// Starts or resumes a channel. With `restart` FALSE a playing channel goes on
// undisturbed and a stopped one starts from its beginning.
BOOL BASS_ChannelPlay(DWORD handle, BOOL restart);

// Stops a channel; the next play starts it from its beginning.
BOOL BASS_ChannelStop(DWORD handle);

// BASS_ACTIVE_PLAYING while the channel plays, else BASS_ACTIVE_STOPPED.
DWORD BASS_ChannelIsActive(DWORD handle);
