// The program in a web page: the browser runs its own event loop, and the
// program's frame loop, which never returns to it, must hand it control
// between frames (through Asyncify). Everything here does nothing on the
// desktop.
#pragma once

namespace win32::page {

// Whether this is a web page build.
bool InPage();
// Gives control to the browser until its next animation frame: Present calls
// it, so a page draws at the display's rate and stays responsive.
void AwaitAnimationFrame();
// The frame loop found no more input: if no frame was awaited since the last
// boundary (a loop that presents nothing, as with a lost device), one is
// awaited now, so that no loop can hang the tab.
void FrameBoundary();
// Shows a message box in the page, over the canvas, until it is answered.
// False where there is no page.
bool ShowMessage(const char* caption, const char* text, bool error);

}  // namespace win32::page
