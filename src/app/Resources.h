// The program's resources, what a resource compiler would link into it: the
// main menu (101), the icon (102) and the settings dialog (103). RegisterResources hands them to
// the win32 layer, where LoadMenuA and LoadIconA find them by number; it runs during static
// initialisation, before any code of the program.
#pragma once

#include "platform/win32/windows.h"

constexpr UINT IDR_MAIN_MENU = 101;
constexpr UINT IDI_MAIN_ICON = 102;

// Menu commands.
constexpr UINT ID_FILE_CHANGE_DEVICE = 40009;
constexpr UINT ID_FILE_EXIT = 40006;
constexpr UINT ID_CAMERA_FIRST_PERSON = 40010;
constexpr UINT ID_CAMERA_SPACE_CRAFT = 40011;
constexpr UINT ID_CAMERA_THIRD_PERSON = 40012;

// Registers menu 101, icon 102 and dialog 103; true when all were taken.
bool RegisterResources();
