// The BASS calls of bass.h on SDL2_mixer.
//
// A BASS sample is a Mix_Chunk, decoded in full at load. Each sample reserves
// `max` mixer channels of its own for its whole life, so one sample's playback
// never cuts into another's; a BASS channel handle names one of them. Handles
// carry a tag in their top bits (sample or channel) and a serial number that is
// never reused, so a freed handle stays invalid.
//
// Everything here runs on the main thread; SDL_mixer mixes on SDL's audio
// thread and guards its own channel table, which is all that thread touches.
#include "platform/bass/bass.h"

#include <SDL.h>
#include <SDL_mixer.h>

#include "platform/crt/AssetReport.h"

#include <cerrno>
#include <string>
#include <utility>
#include <vector>

namespace {

constexpr DWORD kVersion = 0x02040000;  // 2.4.0.0

constexpr DWORD kSampleTag = 0x10000000u;
constexpr DWORD kChannelTag = 0x20000000u;
constexpr DWORD kTagMask = 0xF0000000u;
// Channel handle: tag | sample serial << 16 | playback index. A sample keeps at
// most 65535 playbacks, and at most 4095 samples can be loaded in one run.
constexpr DWORD kMaxSamples = 0x0FFF;
constexpr DWORD kMaxPlaybacks = 0xFFFF;
constexpr int kChunkSize = 1024;  // mixer buffer in sample frames: ~46 ms at 22050 Hz

struct SampleRecord {
  Mix_Chunk* chunk = nullptr;  // null once freed
  bool loop = false;
  DWORD max = 0;
  std::vector<int> mixChannels;  // reserved mixer channels, one per playback handed out
};

struct BassState {
  bool started = false;
  std::vector<SampleRecord> samples;  // index = serial - 1
  std::vector<int> freeMixChannels;   // reserved channels given back by freed samples
  int mixChannelCount = 0;            // channels allocated in SDL_mixer

  // A process that ends without BASS_Free (the music failed) still gives the
  // decoded samples back, so leak checkers see a clean exit.
  ~BassState() { Shutdown(); }

  void Shutdown() {
    if (!started) return;
    Mix_HaltChannel(-1);
    for (SampleRecord& sample : samples) {
      if (sample.chunk) Mix_FreeChunk(sample.chunk);
      sample.chunk = nullptr;
    }
    samples.clear();
    freeMixChannels.clear();
    mixChannelCount = 0;
    Mix_CloseAudio();
    Mix_Quit();
    SDL_QuitSubSystem(SDL_INIT_AUDIO);
    started = false;
  }
};

BassState& State() {
  static BassState state;
  return state;
}

SampleRecord* FindSample(HSAMPLE handle) {
  BassState& state = State();
  if (!state.started || (handle & kTagMask) != kSampleTag) return nullptr;
  DWORD serial = handle & ~kTagMask;
  if (serial == 0 || serial > state.samples.size()) return nullptr;
  SampleRecord& sample = state.samples[serial - 1];
  return sample.chunk ? &sample : nullptr;
}

// The mixer channel behind a channel handle, or -1; `sampleOut` gets its sample.
int FindMixChannel(DWORD handle, SampleRecord** sampleOut) {
  BassState& state = State();
  if (!state.started || (handle & kTagMask) != kChannelTag) return -1;
  DWORD serial = (handle >> 16) & kMaxSamples;
  DWORD playback = handle & 0xFFFF;
  if (serial == 0 || serial > state.samples.size()) return -1;
  SampleRecord& sample = state.samples[serial - 1];
  if (!sample.chunk || playback >= sample.mixChannels.size()) return -1;
  if (sampleOut) *sampleOut = &sample;
  return sample.mixChannels[playback];
}

int ReserveMixChannel() {
  BassState& state = State();
  if (!state.freeMixChannels.empty()) {
    int channel = state.freeMixChannels.back();
    state.freeMixChannels.pop_back();
    return channel;
  }
  int channel = state.mixChannelCount;
  if (Mix_AllocateChannels(channel + 1) != channel + 1) return -1;
  state.mixChannelCount = channel + 1;
  return channel;
}

// The platform writes paths with backslashes; the file system here wants slashes.
std::string NativePath(const char* path) {
  std::string native(path);
  for (char& c : native)
    if (c == '\\') c = '/';
  return native;
}

// Decodes a whole source with the decoder's own messages caught: libmpg123
// writes its warnings straight to standard error.
Mix_Chunk* Decode(SDL_RWops* rw, std::string& chatter) {
  struct Load {
    SDL_RWops* rw;
    Mix_Chunk* chunk;
  } load{rw, nullptr};
  chatter = crt::CaptureStandardError(
      [](void* context) {
        auto* l = static_cast<Load*>(context);
        l->chunk = Mix_LoadWAV_RW(l->rw, 1);
      },
      &load);
  return load.chunk;
}

// Decodes the whole source of a load: `length` bytes from `offset` (0: to the
// end of the file). Null when the source cannot be read or decoded; `problem`
// then says why in plain words. A file that decoded with the decoder's
// complaints comes back with a `problem` too.
Mix_Chunk* LoadChunk(BOOL mem, const void* file, QWORD offset, DWORD length, std::string& problem) {
  std::string chatter;
  if (!file) return nullptr;
  if (mem) {
    // A memory block has no end of its own, so it needs its size.
    if (length == 0 || length > 0x7FFFFFFFu) return nullptr;
    SDL_RWops* rw = SDL_RWFromConstMem(static_cast<const char*>(file) + offset, static_cast<int>(length));
    return rw ? Decode(rw, chatter) : nullptr;
  }
  errno = 0;
  SDL_RWops* rw = SDL_RWFromFile(NativePath(static_cast<const char*>(file)).c_str(), "rb");
  if (!rw) {
    problem = crt::DescribeOpenError(errno);
    return nullptr;
  }
  Sint64 size = SDL_RWsize(rw);
  Mix_Chunk* chunk = nullptr;
  if (size == 0) {
    SDL_RWclose(rw);
    problem = "the file is empty";
    return nullptr;
  }
  if (offset == 0 && length == 0) {
    chunk = Decode(rw, chatter);
  } else {
    // A part of a file: read that part into memory and decode it from there.
    QWORD count = length ? length : (size >= 0 && offset <= static_cast<QWORD>(size) ? size - offset : 0);
    std::vector<unsigned char> data;
    bool ok = size >= 0 && count > 0 && count <= 0x7FFFFFFFu && offset + count <= static_cast<QWORD>(size);
    if (ok) {
      data.resize(static_cast<size_t>(count));
      ok = SDL_RWseek(rw, static_cast<Sint64>(offset), RW_SEEK_SET) >= 0 &&
           SDL_RWread(rw, data.data(), 1, data.size()) == data.size();
    }
    SDL_RWclose(rw);
    if (!ok) {
      problem = "the file is shorter than the part asked for";
      return nullptr;
    }
    SDL_RWops* memRw = SDL_RWFromConstMem(data.data(), static_cast<int>(data.size()));
    chunk = memRw ? Decode(memRw, chatter) : nullptr;  // the chunk holds its own copy
  }
  if (!chunk) {
    problem = "it is not a sound that can be decoded (mp3, ogg or wav)";
  } else if (chatter.find("Xing stream size") != std::string::npos) {
    problem = "the file ends early; what is there plays";
  } else if (!chatter.empty()) {
    problem = "the sound data is damaged in places; what can be decoded plays";
  }
  return chunk;
}

}  // namespace

DWORD BASS_GetVersion() { return kVersion; }

BOOL BASS_Init(int device, DWORD freq, DWORD /*flags*/, HWND /*win*/, const void* /*dsguid*/) {
  BassState& state = State();
  if (state.started) return FALSE;
  if (device != -1 && device != 1) return FALSE;  // only the default output exists here
  if (freq == 0) freq = 44100;
  if (freq < 4000 || freq > 192000) return FALSE;
  if (SDL_InitSubSystem(SDL_INIT_AUDIO) != 0) return FALSE;
  Mix_Init(MIX_INIT_MP3);  // the mp3 decoder also serves Mix_LoadWAV
  if (Mix_OpenAudio(static_cast<int>(freq), AUDIO_S16SYS, 2, kChunkSize) != 0) {
    Mix_Quit();
    SDL_QuitSubSystem(SDL_INIT_AUDIO);
    return FALSE;
  }
  Mix_AllocateChannels(0);  // channels are reserved per sample as they are loaded
  state.started = true;
  return TRUE;
}

BOOL BASS_Free() {
  BassState& state = State();
  if (!state.started) return FALSE;
  state.Shutdown();
  return TRUE;
}

HSAMPLE BASS_SampleLoad(BOOL mem, const void* file, QWORD offset, DWORD length, DWORD max,
                        DWORD flags) {
  BassState& state = State();
  if (!state.started || max == 0 || max > kMaxPlaybacks) return 0;
  if (state.samples.size() >= kMaxSamples) return 0;
  std::string problem;
  Mix_Chunk* chunk = LoadChunk(mem, file, offset, length, problem);
  if (chunk && chunk->alen == 0) {  // a file that decodes to nothing is no sound
    Mix_FreeChunk(chunk);
    chunk = nullptr;
    problem = "it holds no sound";
  }
  if (!problem.empty() && !mem) crt::ReportAsset(static_cast<const char*>(file), problem);
  if (!chunk) return 0;
  SampleRecord sample;
  sample.chunk = chunk;
  sample.loop = (flags & BASS_SAMPLE_LOOP) != 0;
  sample.max = max;
  state.samples.push_back(std::move(sample));
  return kSampleTag | static_cast<DWORD>(state.samples.size());
}

BOOL BASS_SampleFree(HSAMPLE handle) {
  SampleRecord* sample = FindSample(handle);
  if (!sample) return FALSE;
  BassState& state = State();
  for (int channel : sample->mixChannels) {
    Mix_HaltChannel(channel);
    state.freeMixChannels.push_back(channel);
  }
  sample->mixChannels.clear();
  Mix_FreeChunk(sample->chunk);
  sample->chunk = nullptr;
  return TRUE;
}

HCHANNEL BASS_SampleGetChannel(HSAMPLE handle, BOOL onlynew) {
  SampleRecord* sample = FindSample(handle);
  if (!sample) return 0;
  DWORD base = kChannelTag | ((handle & kMaxSamples) << 16);
  if (!onlynew) {
    for (size_t i = 0; i < sample->mixChannels.size(); ++i)
      if (!Mix_Playing(sample->mixChannels[i])) return base | static_cast<DWORD>(i);
  }
  if (sample->mixChannels.size() >= sample->max) return 0;
  int channel = ReserveMixChannel();
  if (channel < 0) return 0;
  Mix_HaltChannel(channel);
  sample->mixChannels.push_back(channel);
  return base | static_cast<DWORD>(sample->mixChannels.size() - 1);
}

BOOL BASS_ChannelPlay(DWORD handle, BOOL restart) {
  SampleRecord* sample = nullptr;
  int channel = FindMixChannel(handle, &sample);
  if (channel < 0) return FALSE;
  if (Mix_Playing(channel) && !restart) {
    if (Mix_Paused(channel)) Mix_Resume(channel);
    return TRUE;
  }
  if (Mix_PlayChannel(channel, sample->chunk, sample->loop ? -1 : 0) != channel) return FALSE;
  return TRUE;
}

BOOL BASS_ChannelStop(DWORD handle) {
  int channel = FindMixChannel(handle, nullptr);
  if (channel < 0) return FALSE;
  Mix_HaltChannel(channel);
  return TRUE;
}

DWORD BASS_ChannelIsActive(DWORD handle) {
  int channel = FindMixChannel(handle, nullptr);
  if (channel < 0 || !Mix_Playing(channel)) return BASS_ACTIVE_STOPPED;
  return Mix_Paused(channel) ? BASS_ACTIVE_PAUSED : BASS_ACTIVE_PLAYING;
}
