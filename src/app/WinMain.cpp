// The process's life: start, background music, the frame loop, the end of
// the music and of BASS, shut down, and the exit code (0 after a normal end
// and after a failed start, 1 when the music cannot be started).
#include "app/GameApp.h"
#include "platform/bass/bass.h"

int WINAPI WinMain(HINSTANCE hInstance, HINSTANCE, LPSTR lpCmdLine, int nCmdShow) {
  CGameApp& app = *GetGameApp();
  if (!app.Startup(hInstance, lpCmdLine, nCmdShow)) return 0;

  // The music is no sound slot: its sample and channel live here. Without
  // it the process ends at once; the destructor of g_App takes the world
  // and the window away, and BASS is left as it is.
  const HSAMPLE music = BASS_SampleLoad(FALSE, "music\\1.mp3", 0, 0, 1, BASS_SAMPLE_LOOP);
  if (!music) return 1;
  const HCHANNEL channel = BASS_SampleGetChannel(music, FALSE);
  if (!channel) return 1;
  if (!BASS_ChannelPlay(channel, FALSE)) return 1;

  const int result = app.RunLoop();

  BASS_ChannelStop(channel);
  BASS_SampleFree(music);
  BASS_Free();

  if (!app.Shutdown()) {
    MessageBoxA(nullptr,
                "Failed to shut system down correctly, please check file named 'debug.txt'.\r\n\r\n"
                "If the problem persists, please contact technical support.",
                "Non-Fatal Error", MB_ICONEXCLAMATION);
  }
  return result;
}
