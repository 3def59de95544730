#include "support/FakeBass.h"

#include <algorithm>
#include <utility>

namespace fakebass {
namespace {

constexpr DWORD kSampleBase = 0x1000;
constexpr DWORD kChannelBase = 0x2000;

struct State {
  DWORD version = 0x02040000;
  bool started = false;
  std::vector<std::string> missing;
  int getChannelCalls = 0;
  std::vector<Load> loads;
  std::vector<std::string> samplePaths;  // index n - 1 for sample n
  std::vector<bool> channelGiven;
  std::vector<Play> plays;
};

State& S() {
  static State state;
  return state;
}

bool Contains(const std::vector<std::string>& list, const std::string& path) {
  return std::find(list.begin(), list.end(), path) != list.end();
}

// Sample number behind a handle of the given base, 0 when it is not one.
std::size_t Index(DWORD handle, DWORD base) {
  if (handle <= base || handle > base + S().samplePaths.size()) return 0;
  return handle - base;
}

}  // namespace

void Reset() { S() = State(); }
void SetVersion(DWORD version) { S().version = version; }
void SetMissing(const std::string& path) { S().missing.push_back(path); }
int GetChannelCalls() { return S().getChannelCalls; }
const std::vector<Load>& Loads() { return S().loads; }
const std::vector<Play>& Plays() { return S().plays; }
void ClearPlays() { S().plays.clear(); }

HCHANNEL ChannelOf(const std::string& path) {
  for (std::size_t i = 0; i < S().samplePaths.size(); ++i)
    if (S().samplePaths[i] == path && S().channelGiven[i]) return kChannelBase + DWORD(i + 1);
  return 0;
}

std::vector<std::string> PlayedPaths() {
  std::vector<std::string> paths;
  for (const Play& play : S().plays) paths.push_back(play.path);
  return paths;
}

}  // namespace fakebass

using namespace fakebass;

DWORD BASS_GetVersion() { return S().version; }

// A second start fails, as the library's does.
BOOL BASS_Init(int, DWORD, DWORD, HWND, const void*) { return std::exchange(S().started, true) ? FALSE : TRUE; }

BOOL BASS_Free() { return std::exchange(S().started, false) ? TRUE : FALSE; }

HSAMPLE BASS_SampleLoad(BOOL mem, const void* file, QWORD, DWORD, DWORD max, DWORD flags) {
  std::string path = (!mem && file) ? static_cast<const char*>(file) : "";
  HSAMPLE sample = 0;
  if (S().started && !path.empty() && !Contains(S().missing, path)) {
    S().samplePaths.push_back(path);
    S().channelGiven.push_back(false);
    sample = kSampleBase + DWORD(S().samplePaths.size());
  }
  S().loads.push_back(Load{path, max, flags});
  return sample;
}

BOOL BASS_SampleFree(HSAMPLE handle) { return Index(handle, kSampleBase) ? TRUE : FALSE; }

HCHANNEL BASS_SampleGetChannel(HSAMPLE handle, BOOL) {
  ++S().getChannelCalls;
  std::size_t n = Index(handle, kSampleBase);
  if (n == 0) return 0;
  S().channelGiven[n - 1] = true;
  return kChannelBase + DWORD(n);
}

BOOL BASS_ChannelPlay(DWORD handle, BOOL restart) {
  std::size_t n = Index(handle, kChannelBase);
  S().plays.push_back(Play{restart, n ? S().samplePaths[n - 1] : std::string()});
  return n ? TRUE : FALSE;
}

BOOL BASS_ChannelStop(DWORD handle) { return Index(handle, kChannelBase) ? TRUE : FALSE; }

DWORD BASS_ChannelIsActive(DWORD) { return BASS_ACTIVE_STOPPED; }
