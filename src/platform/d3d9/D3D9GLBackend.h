// Back-end contract of the Direct3D 9 layer on OpenGL, for tests, benchmarks
// and the capture tool only: system code never includes this.
//
// Contract:
//  - CreateDevice makes an OpenGL 3.3 core context on the SDL window behind
//    the focus window (win32::SdlWindowOf, or the lookup set here). The back
//    buffer is an offscreen framebuffer, multisampled when asked; Present
//    shows it in the window's client area (below the menu bar) and swaps.
//  - Setters only record; draws translate. Redundant setter calls cost a
//    compare. Consecutive DrawPrimitiveUP calls with equal state are merged
//    into one GL draw, up to kBatchTextures different stage-0 textures each.
//  - The GL context survives Reset, so every resource survives it too; Reset
//    still refuses while D3DPOOL_DEFAULT resources live, as the platform does.
//  - All calls on the thread that created the device.
#pragma once

#include <cstdint>
#include <vector>

#include "platform/d3d9/d3d9.h"

namespace d3d9gl {

// Stage-0 textures one merged UP draw can hold. The fragment shader picks a
// draw's texture by its slot in a chain of branches, and software GL runs
// every branch of the chain for every fragment, so each slot costs a texture
// fetch per pixel there. Four hold the world's objects in six draws a frame;
// eight made the frame among the trees 1.7 times as slow for two draws less.
constexpr int kBatchTextures = 4;

// Reads the back buffer (after resolving multisampling) as D3DCOLOR words
// 0xAARRGGBB, top row first. Pending draws are carried out first. False for a
// device that is not of this back end.
bool ReadBackBuffer(IDirect3DDevice9* device, std::vector<std::uint32_t>& argb, UINT& width,
                    UINT& height);
// The same as bytes R, G, B, A per pixel, top row first (for PNG writers).
bool ReadBackBufferRGBA(IDirect3DDevice9* device, std::vector<std::uint8_t>& rgba, UINT& width,
                        UINT& height);

// Makes the device lost as a full-screen device that lost focus would be:
// Present gives D3DERR_DEVICELOST and drawing does nothing. TestCooperativeLevel
// gives D3DERR_DEVICENOTRESET when canResetNow, else D3DERR_DEVICELOST until
// AllowReset. Reset ends the loss.
void SimulateDeviceLost(IDirect3DDevice9* device, bool canResetNow = true);
void AllowReset(IDirect3DDevice9* device);

// Merged draws pick their textures by the chain of slot tests that GPUs
// need, also where the GL could index them (software GL).
void UseSlotTests(IDirect3DDevice9* device);

// After UsePlainPath(true) every frame from the next Clear on is drawn call by
// call as the calls come, in their order: the plain reference that the faster
// path must match pixel for pixel (tests), and the baseline it is timed
// against (benchmarks).
void UsePlainPath(bool plain);

// With OfferDepth32(false) CheckDeviceFormat refuses D3DFMT_D32 as a depth
// buffer, so that a program which takes the first depth format it is offered
// takes a 24-bit one, the only kind that the background draws are held back
// on (tests and benchmarks).
void OfferDepth32(bool offer);

// With UseEsContext(true) devices draw on an OpenGL ES 3.0 context, as they
// do in a web page (WebGL2), with that API's limits: the desktop's way to
// test the page's drawing path. Call before Direct3DCreate9; a page always
// has ES.
void UseEsContext(bool es);

// Counters of the GL work done, for benchmarks and tests.
struct FrameStats {
  std::uint32_t glDrawCalls = 0;           // GL draw calls since the last Present
  std::uint32_t lastFrameGlDrawCalls = 0;  // GL draw calls of the frame before it
  // DrawPrimitiveUP calls, and the GL draws they became, since the last
  // Present and in the frame before it: how well the merging works.
  std::uint32_t upCalls = 0;
  std::uint32_t upGlDraws = 0;
  std::uint32_t lastFrameUpCalls = 0;
  std::uint32_t lastFrameUpGlDraws = 0;
  std::uint32_t presents = 0;
  std::uint32_t shaderPrograms = 0;  // generated programs in the cache
};
bool GetFrameStats(IDirect3DDevice9* device, FrameStats& stats);
// Carries out pending merged draws now (e.g. before timing glFinish).
void Flush(IDirect3DDevice9* device);

// How the back end finds the SDL window (as void*) of a window handle. The
// default asks the win32 layer. Tests that make their own SDL window set a
// lookup; null restores the default. The client area is then the whole window.
using WindowLookup = void* (*)(HWND hWnd);
void SetWindowLookup(WindowLookup lookup);

// Called by Present after the back buffer is drawn into the window and before
// the buffers swap, with the GL context current: the overlay UI draws here.
// The default draws the window's menu bar (win32::overlay::DrawWindowOverlay);
// null restores it.
using PresentHook = void (*)(HWND hWnd, void* user);
void SetPresentHook(PresentHook hook, void* user);

}  // namespace d3d9gl
