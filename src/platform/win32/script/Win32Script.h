// The scripted back end of the win32 layer: input and time for tests and the
// capture tool, deterministic and without a person at the keyboard.
//
// While it is enabled:
//  - Keys, mouse buttons, cursor motion and posted messages come from a
//    schedule by frame number; SDL's own input is read and dropped, except
//    game controller events, which act on the fixed clock as they would live.
//  - A frame boundary is a PeekMessageA that finds nothing to deliver: the
//    caller is about to run a frame. Frames count from 0 at Enable. The events
//    of frame N are delivered before frame N runs: when PeekMessageA first
//    finds the queue empty after frame N-1 (messages the program posted
//    itself come first). Events scheduled for a frame that has passed are
//    delivered with the next frame's.
//  - The clock is QueryPerformanceCounter at the frequency of the real one
//    (10^9 counts per second); it reads clockStart before frame 0 and
//    advances by the fixed step at every boundary, so during frame N it reads
//    clockStart + (N + 1) * step. timeGetTime and GetTickCount read the same
//    clock in milliseconds.
//  - Keys and buttons going down post WM_KEYDOWN / WM_LBUTTONDOWN /
//    WM_RBUTTONDOWN to the target window (the window created last that still
//    lives) and going up the matching up messages, as the real keyboard does;
//    GetKeyboardState, GetKeyState and GetAsyncKeyState read the same table.
//  - The cursor is a point in screen coordinates that MoveCursor shifts and
//    SetCursorPos sets.
//  - Windows are real SDL windows (a device can draw into them) unless
//    Options::realWindows is false: then they are records only, and no
//    display is needed.
#pragma once

#include <cstdint>
#include <functional>
#include <initializer_list>

#include "platform/win32/windows.h"

namespace win32::script {

struct Options {
  double fixedStep = 1.0 / 60.0;  // seconds the clock advances per frame
  double clockStart = 0.0;        // clock reading before frame 0, in seconds
  bool realWindows = true;        // SDL windows, or records without a display
  std::uint32_t maxFrames = 0;    // quit once this many frames ran; 0: no limit
  POINT cursorStart = {400, 300};
};

// Switches to the scripted back end with an empty schedule, an empty message
// queue, no key held, no pending quit and frame count 0. Windows that exist
// stay. May be called again to start a new script.
void Enable(const Options& options = {});
// Back to the SDL back end; the schedule is dropped.
void Disable();
bool IsEnabled();

// Changes the step for the frames still to come.
void SetFixedStep(double seconds);
// Frames started since Enable: the index of the frame that runs now plus one,
// or, between frames, the index of the next frame.
std::uint32_t FramesStarted();

// ---- schedule --------------------------------------------------------------------
// Virtual key (or VK_LBUTTON, VK_RBUTTON, VK_MBUTTON) goes down / up before `frame`.
void KeyDown(std::uint32_t frame, BYTE vk);
void KeyUp(std::uint32_t frame, BYTE vk);
// From `frame` on exactly these keys are held: the others go up, the new ones
// go down, in that order.
void HoldKeys(std::uint32_t frame, std::initializer_list<BYTE> vks);
// Shifts the cursor by (dx, dy) screen pixels before `frame`.
void MoveCursor(std::uint32_t frame, int dx, int dy);
// Posts a message to the target window before `frame`.
void PostAt(std::uint32_t frame, UINT message, WPARAM wParam = 0, LPARAM lParam = 0);
// A menu command: WM_COMMAND with the command number.
void Command(std::uint32_t frame, UINT id);

// Called at every frame boundary with the index of the frame about to run,
// after that frame's events were delivered. Null removes it.
void SetFrameCallback(std::function<void(std::uint32_t frame)> callback);

// The script's hand in modal dialogs (see Win32Dialogs.h). Called whenever
// an open dialog has no message waiting, with the turn's number counted from
// 0 in each dialog; it acts through win32::UserSelect and win32::UserClick
// and answers true, or answers false to have Cancel pressed. Without a
// callback every dialog is cancelled. Null removes it; Enable drops it.
void SetDialogCallback(std::function<bool(HWND dialog, std::uint32_t turn)> callback);

}  // namespace win32::script
