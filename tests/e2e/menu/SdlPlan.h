// What the whole-program tests of the menu bar and the keyboard share: the
// real program on the SDL back end (Xvfb in ./test.sh), driven by SDL events
// pushed as a person's mouse and keyboard would send them. A present hook
// draws the bar as the program does, then plays the next step of a plan a
// few frames after the last; the steps check the frames that follow. One run
// per process: there is one g_App.
#pragma once

#include <SDL.h>

#include <cstdint>
#include <functional>
#include <vector>

#include "app/GameApp.h"

namespace sdl_plan {

using Picture = std::vector<std::uint32_t>;  // 0xRRGGBB, top row first

constexpr std::uint32_t kClear = 0x79D3FF;  // the world's clear colour

CGameApp& App();
SDL_Window* Sdl();

void Push(SDL_Event event);
void Mouse(Uint32 type, int x, int y, int dx = 0);
void Click(int x, int y);
// A key goes down and up (a quick tap: both pushed together), or only down
// or only up.
void Key(SDL_Keycode sym, Uint16 mod = KMOD_NONE, bool down = true, bool up = true);

// The device's back buffer, and the window as shown (bar included), its top
// left written as a PNG of width x height when a file is given.
Picture BackBuffer(UINT* width = nullptr, UINT* height = nullptr);
Picture Window(const char* file = nullptr, int width = 0, int height = 0);
double Share(const Picture& picture, std::uint32_t colour);

// Then adds a step to the plan; RunPlan starts the program and plays the plan, one
// step every few frames, and checks that the program ended after the last.
void Then(std::function<void()> step);
// A step that holds the plan until `ready`, asked again every few frames: for
// what the X server or the game clock brings, which no count of frames promises.
void Await(std::function<bool()> ready);
void RunPlan();

// The X server has given the window this drawable size.
bool WindowIs(int width, int height);

}  // namespace sdl_plan
