// Win32: the subset of the window, message, menu, input, time and message-box
// interface that this program uses, with the platform's names and published
// numeric values. Declarations only; the calls live in Win32*.cpp beside
// this header, the back ends in sdl/, script/ and overlay/.
//
// Two back ends share these calls (see Win32Backend.h and script/Win32Script.h):
//  - SDL: real windows (SDL2, created with SDL_WINDOW_OPENGL), events from
//    SDL turned into window messages, the monotonic clock of the machine;
//  - script: the same windows (or window records without SDL), but keys,
//    mouse and posted messages come from a per-frame script and the clock
//    advances by a fixed step per frame. Used by tests and the capture tool.
//
// Where the platform's own behaviour matters, this layer keeps it:
//  - Posted messages are FIFO; a quit request (PostQuitMessage) is found after
//    the posted messages and before new input.
//  - SetWindowPos, ShowWindow and SetMenu deliver WM_SIZE synchronously, into
//    the call, when the client size changes or the window is first shown.
//  - CreateWindowExA sends WM_NCCREATE, then WM_CREATE with a CREATESTRUCTA.
//  - The keyboard is a 256-byte table by virtual-key code (held: 0x80, toggle:
//    0x01), filled from SDL key codes, so letters follow the keyboard layout.
//  - Values that Win32 stores in a LONG (SetWindowLongA, SetClassLongA) are
//    pointer-wide here, as their Ptr forms are on 64-bit Windows, so that
//    GWL_USERDATA and GCL_HICON can hold addresses and handles.
//  - The menu bar is drawn inside the window above the client area;
//    GetClientRect gives the area below it.
//  - MessageBoxA always writes its caption and text to standard error and shows
//    a real box only when a person can answer it; it never blocks a headless run.
#pragma once

#include <cstddef>
#include <cstdint>

// ---- calling conventions (none on this platform) ---------------------------
#define WINAPI
#define CALLBACK
#define APIENTRY

// ---- basic types -------------------------------------------------------------
typedef int BOOL;
typedef unsigned char BYTE;
typedef std::uint16_t WORD;
typedef std::uint32_t DWORD;
typedef std::int16_t SHORT;
typedef std::uint16_t USHORT;
typedef int INT;
typedef unsigned int UINT;
typedef std::int32_t LONG;
typedef std::uint32_t ULONG;
typedef std::int64_t LONGLONG;
typedef std::uint64_t ULONGLONG;
typedef float FLOAT;
typedef char CHAR;
typedef std::intptr_t INT_PTR;
typedef std::uintptr_t UINT_PTR;
typedef std::intptr_t LONG_PTR;
typedef std::uintptr_t ULONG_PTR;
typedef std::uintptr_t DWORD_PTR;
typedef WORD ATOM;
typedef char* LPSTR;
typedef const char* LPCSTR;
typedef void* LPVOID;
typedef const void* LPCVOID;
typedef BYTE* PBYTE;
typedef BYTE* LPBYTE;
typedef DWORD* LPDWORD;
typedef LONG HRESULT;

typedef UINT_PTR WPARAM;
typedef LONG_PTR LPARAM;
typedef LONG_PTR LRESULT;

#ifndef FALSE
#define FALSE 0
#endif
#ifndef TRUE
#define TRUE 1
#endif
#ifndef NULL
#define NULL nullptr
#endif

#define MAX_PATH 260

// ---- handles -----------------------------------------------------------------
// Distinct opaque pointer types, so that handles of different kinds do not mix.
#define KARVO_DECLARE_HANDLE(name) \
  struct name##__;                 \
  typedef name##__* name
KARVO_DECLARE_HANDLE(HWND);
KARVO_DECLARE_HANDLE(HINSTANCE);
KARVO_DECLARE_HANDLE(HICON);
KARVO_DECLARE_HANDLE(HMENU);
KARVO_DECLARE_HANDLE(HBRUSH);
KARVO_DECLARE_HANDLE(HDC);
KARVO_DECLARE_HANDLE(HMONITOR);
#undef KARVO_DECLARE_HANDLE
typedef void* HANDLE;
typedef HINSTANCE HMODULE;
typedef HICON HCURSOR;
typedef void* HGDIOBJ;

// ---- result codes --------------------------------------------------------------
#define S_OK ((HRESULT)0)
#define S_FALSE ((HRESULT)1)
#define E_NOTIMPL ((HRESULT)0x80004001L)
#define E_NOINTERFACE ((HRESULT)0x80004002L)
#define E_POINTER ((HRESULT)0x80004003L)
#define E_ABORT ((HRESULT)0x80004004L)
#define E_FAIL ((HRESULT)0x80004005L)
#define E_OUTOFMEMORY ((HRESULT)0x8007000EL)
#define E_INVALIDARG ((HRESULT)0x80070057L)
#define SUCCEEDED(hr) (((HRESULT)(hr)) >= 0)
#define FAILED(hr) (((HRESULT)(hr)) < 0)
#define MAKE_HRESULT(sev, fac, code) \
  ((HRESULT)(((DWORD)(sev) << 31) | ((DWORD)(fac) << 16) | ((DWORD)(code))))

// ---- word packing ----------------------------------------------------------------
#define LOWORD(l) ((WORD)(((DWORD_PTR)(l)) & 0xffff))
#define HIWORD(l) ((WORD)((((DWORD_PTR)(l)) >> 16) & 0xffff))
#define MAKELONG(a, b) \
  ((LONG)(((WORD)(((DWORD_PTR)(a)) & 0xffff)) | ((DWORD)((WORD)(((DWORD_PTR)(b)) & 0xffff))) << 16))
#define MAKEWPARAM(l, h) ((WPARAM)(DWORD)MAKELONG(l, h))
#define MAKELPARAM(l, h) ((LPARAM)(DWORD)MAKELONG(l, h))
#define MAKELRESULT(l, h) ((LRESULT)(DWORD)MAKELONG(l, h))
#define GET_X_LPARAM(lp) ((int)(short)LOWORD(lp))
#define GET_Y_LPARAM(lp) ((int)(short)HIWORD(lp))

// Resource names: a small number in place of a string pointer.
#define MAKEINTRESOURCEA(i) ((LPSTR)((ULONG_PTR)((WORD)(i))))
#define IS_INTRESOURCE(r) ((((ULONG_PTR)(r)) >> 16) == 0)

// ---- plain data ------------------------------------------------------------------
struct POINT {
  LONG x;
  LONG y;
};

struct RECT {
  LONG left;
  LONG top;
  LONG right;
  LONG bottom;
};

struct SIZE {
  LONG cx;
  LONG cy;
};

union LARGE_INTEGER {
  struct {
    DWORD LowPart;
    LONG HighPart;
  } u;
  LONGLONG QuadPart;
};

struct GUID {
  DWORD Data1;
  WORD Data2;
  WORD Data3;
  BYTE Data4[8];
};

struct PALETTEENTRY {
  BYTE peRed;
  BYTE peGreen;
  BYTE peBlue;
  BYTE peFlags;
};

typedef LRESULT(CALLBACK* WNDPROC)(HWND, UINT, WPARAM, LPARAM);
typedef INT_PTR(CALLBACK* DLGPROC)(HWND, UINT, WPARAM, LPARAM);

struct MSG {
  HWND hwnd;
  UINT message;
  WPARAM wParam;
  LPARAM lParam;
  DWORD time;
  POINT pt;
};

struct WNDCLASSA {
  UINT style;
  WNDPROC lpfnWndProc;
  int cbClsExtra;
  int cbWndExtra;
  HINSTANCE hInstance;
  HICON hIcon;
  HCURSOR hCursor;
  HBRUSH hbrBackground;
  LPCSTR lpszMenuName;
  LPCSTR lpszClassName;
};

struct CREATESTRUCTA {
  LPVOID lpCreateParams;
  HINSTANCE hInstance;
  HMENU hMenu;
  HWND hwndParent;
  int cy;
  int cx;
  int y;
  int x;
  LONG style;
  LPCSTR lpszName;
  LPCSTR lpszClass;
  DWORD dwExStyle;
};

// ---- window messages -------------------------------------------------------------
#define WM_NULL 0x0000
#define WM_CREATE 0x0001
#define WM_DESTROY 0x0002
#define WM_MOVE 0x0003
#define WM_SIZE 0x0005
#define WM_ACTIVATE 0x0006
#define WM_SETFOCUS 0x0007
#define WM_KILLFOCUS 0x0008
#define WM_PAINT 0x000F
#define WM_CLOSE 0x0010
#define WM_QUIT 0x0012
#define WM_SHOWWINDOW 0x0018
#define WM_ACTIVATEAPP 0x001C
#define WM_SETCURSOR 0x0020
#define WM_NCCREATE 0x0081
#define WM_NCDESTROY 0x0082
#define WM_KEYDOWN 0x0100
#define WM_KEYUP 0x0101
#define WM_CHAR 0x0102
#define WM_SYSKEYDOWN 0x0104
#define WM_SYSKEYUP 0x0105
#define WM_INITDIALOG 0x0110
#define WM_COMMAND 0x0111
#define WM_SYSCOMMAND 0x0112
#define WM_MOUSEMOVE 0x0200
#define WM_LBUTTONDOWN 0x0201
#define WM_LBUTTONUP 0x0202
#define WM_RBUTTONDOWN 0x0204
#define WM_RBUTTONUP 0x0205
#define WM_MBUTTONDOWN 0x0207
#define WM_MBUTTONUP 0x0208
#define WM_MOUSEWHEEL 0x020A
#define WM_CAPTURECHANGED 0x0215
#define WM_USER 0x0400

// WM_SIZE wParam
#define SIZE_RESTORED 0
#define SIZE_MINIMIZED 1
#define SIZE_MAXIMIZED 2

// Mouse message wParam: buttons and keys held
#define MK_LBUTTON 0x0001
#define MK_RBUTTON 0x0002
#define MK_SHIFT 0x0004
#define MK_CONTROL 0x0008
#define MK_MBUTTON 0x0010

// PeekMessageA
#define PM_NOREMOVE 0x0000
#define PM_REMOVE 0x0001

// ---- window styles, classes and placement ----------------------------------------
#define WS_OVERLAPPED 0x00000000L
#define WS_POPUP 0x80000000L
#define WS_CHILD 0x40000000L
#define WS_MINIMIZE 0x20000000L
#define WS_VISIBLE 0x10000000L
#define WS_DISABLED 0x08000000L
#define WS_CLIPSIBLINGS 0x04000000L
#define WS_CLIPCHILDREN 0x02000000L
#define WS_MAXIMIZE 0x01000000L
#define WS_CAPTION 0x00C00000L
#define WS_BORDER 0x00800000L
#define WS_DLGFRAME 0x00400000L
#define WS_SYSMENU 0x00080000L
#define WS_THICKFRAME 0x00040000L
#define WS_MINIMIZEBOX 0x00020000L
#define WS_MAXIMIZEBOX 0x00010000L
#define WS_OVERLAPPEDWINDOW \
  (WS_OVERLAPPED | WS_CAPTION | WS_SYSMENU | WS_THICKFRAME | WS_MINIMIZEBOX | WS_MAXIMIZEBOX)

#define CS_VREDRAW 0x0001
#define CS_HREDRAW 0x0002
#define CS_DBLCLKS 0x0008
#define CS_OWNDC 0x0020
#define CS_BYTEALIGNCLIENT 0x1000

#define CW_USEDEFAULT ((int)0x80000000)

#define GWL_WNDPROC (-4)
#define GWL_ID (-12)
#define GWL_STYLE (-16)
#define GWL_EXSTYLE (-20)
#define GWL_USERDATA (-21)

#define GCL_HCURSOR (-12)
#define GCL_HICON (-14)

#define SW_HIDE 0
#define SW_SHOWNORMAL 1
#define SW_SHOWMINIMIZED 2
#define SW_SHOWMAXIMIZED 3
#define SW_SHOWNOACTIVATE 4
#define SW_SHOW 5
#define SW_MINIMIZE 6
#define SW_RESTORE 9
#define SW_SHOWDEFAULT 10

#define SWP_NOSIZE 0x0001
#define SWP_NOMOVE 0x0002
#define SWP_NOZORDER 0x0004
#define SWP_NOREDRAW 0x0008
#define SWP_NOACTIVATE 0x0010
#define SWP_FRAMECHANGED 0x0020
#define SWP_SHOWWINDOW 0x0040
#define SWP_HIDEWINDOW 0x0080
#define SWP_NOOWNERZORDER 0x0200

#define HWND_TOP ((HWND)0)
#define HWND_BOTTOM ((HWND)1)
#define HWND_TOPMOST ((HWND)-1)
#define HWND_NOTOPMOST ((HWND)-2)

// Stock objects and system resources
#define WHITE_BRUSH 0
#define LTGRAY_BRUSH 1
#define GRAY_BRUSH 2
#define DKGRAY_BRUSH 3
#define BLACK_BRUSH 4
#define IDC_ARROW MAKEINTRESOURCEA(32512)
#define IDI_APPLICATION MAKEINTRESOURCEA(32512)

// ---- menus ---------------------------------------------------------------------------
#define MF_ENABLED 0x00000000L
#define MF_GRAYED 0x00000001L
#define MF_DISABLED 0x00000002L
#define MF_UNCHECKED 0x00000000L
#define MF_CHECKED 0x00000008L
#define MF_STRING 0x00000000L
#define MF_POPUP 0x00000010L
#define MF_SEPARATOR 0x00000800L
#define MF_BYCOMMAND 0x00000000L
#define MF_BYPOSITION 0x00000400L

// ---- message boxes ---------------------------------------------------------------------
#define MB_OK 0x00000000L
#define MB_OKCANCEL 0x00000001L
#define MB_ICONERROR 0x00000010L
#define MB_ICONHAND MB_ICONERROR
#define MB_ICONQUESTION 0x00000020L
#define MB_ICONEXCLAMATION 0x00000030L
#define MB_ICONWARNING MB_ICONEXCLAMATION
#define MB_ICONINFORMATION 0x00000040L
#define IDOK 1
#define IDCANCEL 2

// ---- dialogs and their controls ------------------------------------------------------
#define WS_VSCROLL 0x00200000L
#define WS_GROUP 0x00020000L
#define WS_TABSTOP 0x00010000L

#define DS_SETFONT 0x40L
#define DS_MODALFRAME 0x80L
#define DS_CENTER 0x0800L

#define BS_PUSHBUTTON 0x00000000L
#define BS_DEFPUSHBUTTON 0x00000001L
#define BS_GROUPBOX 0x00000007L
#define BS_AUTORADIOBUTTON 0x00000009L
#define CBS_DROPDOWNLIST 0x0003L

// Button messages, states and notifications
#define BM_GETCHECK 0x00F0
#define BM_SETCHECK 0x00F1
#define BM_CLICK 0x00F5
#define BST_UNCHECKED 0x0000
#define BST_CHECKED 0x0001
#define BN_CLICKED 0

// Combo box messages, results and notifications
#define CB_ADDSTRING 0x0143
#define CB_GETCOUNT 0x0146
#define CB_GETCURSEL 0x0147
#define CB_GETLBTEXT 0x0148
#define CB_GETLBTEXTLEN 0x0149
#define CB_RESETCONTENT 0x014B
#define CB_SETCURSEL 0x014E
#define CB_GETITEMDATA 0x0150
#define CB_SETITEMDATA 0x0151
#define CB_OKAY 0
#define CB_ERR (-1)
#define CBN_SELCHANGE 1

// ---- virtual keys --------------------------------------------------------------------------
// Letters and digits are their upper-case ASCII codes ('A' 0x41 .. 'Z' 0x5A,
// '0' 0x30 .. '9' 0x39); they have no VK_ names.
#define VK_LBUTTON 0x01
#define VK_RBUTTON 0x02
#define VK_CANCEL 0x03
#define VK_MBUTTON 0x04
#define VK_BACK 0x08
#define VK_TAB 0x09
#define VK_RETURN 0x0D
#define VK_SHIFT 0x10
#define VK_CONTROL 0x11
#define VK_MENU 0x12
#define VK_PAUSE 0x13
#define VK_CAPITAL 0x14
#define VK_ESCAPE 0x1B
#define VK_SPACE 0x20
#define VK_PRIOR 0x21
#define VK_NEXT 0x22
#define VK_END 0x23
#define VK_HOME 0x24
#define VK_LEFT 0x25
#define VK_UP 0x26
#define VK_RIGHT 0x27
#define VK_DOWN 0x28
#define VK_SNAPSHOT 0x2C
#define VK_INSERT 0x2D
#define VK_DELETE 0x2E
#define VK_LWIN 0x5B
#define VK_RWIN 0x5C
#define VK_APPS 0x5D
#define VK_NUMPAD0 0x60
#define VK_NUMPAD1 0x61
#define VK_NUMPAD2 0x62
#define VK_NUMPAD3 0x63
#define VK_NUMPAD4 0x64
#define VK_NUMPAD5 0x65
#define VK_NUMPAD6 0x66
#define VK_NUMPAD7 0x67
#define VK_NUMPAD8 0x68
#define VK_NUMPAD9 0x69
#define VK_MULTIPLY 0x6A
#define VK_ADD 0x6B
#define VK_SEPARATOR 0x6C
#define VK_SUBTRACT 0x6D
#define VK_DECIMAL 0x6E
#define VK_DIVIDE 0x6F
#define VK_F1 0x70
#define VK_F2 0x71
#define VK_F3 0x72
#define VK_F4 0x73
#define VK_F5 0x74
#define VK_F6 0x75
#define VK_F7 0x76
#define VK_F8 0x77
#define VK_F9 0x78
#define VK_F10 0x79
#define VK_F11 0x7A
#define VK_F12 0x7B
#define VK_NUMLOCK 0x90
#define VK_SCROLL 0x91
#define VK_LSHIFT 0xA0
#define VK_RSHIFT 0xA1
#define VK_LCONTROL 0xA2
#define VK_RCONTROL 0xA3
#define VK_LMENU 0xA4
#define VK_RMENU 0xA5
#define VK_OEM_1 0xBA       // ;:
#define VK_OEM_PLUS 0xBB    // =+
#define VK_OEM_COMMA 0xBC   // ,<
#define VK_OEM_MINUS 0xBD   // -_
#define VK_OEM_PERIOD 0xBE  // .>
#define VK_OEM_2 0xBF       // /?
#define VK_OEM_3 0xC0       // `~
#define VK_OEM_4 0xDB       // [{
#define VK_OEM_5 0xDC       // \|
#define VK_OEM_6 0xDD       // ]}
#define VK_OEM_7 0xDE       // '"

// =====================================================================================
// Functions
// =====================================================================================

// ---- modules, classes and stock objects ----------------------------------------------
// The handle of the process's module (name null) or null for any other name.
HMODULE GetModuleHandleA(LPCSTR lpModuleName);
// Registers a window class under lpszClassName. 0 when the name is taken or
// the record is incomplete (no procedure or no name).
ATOM RegisterClassA(const WNDCLASSA* lpWndClass);
BOOL UnregisterClassA(LPCSTR lpClassName, HINSTANCE hInstance);
// System cursor (hInstance null, IDC_ARROW); null for anything else.
HCURSOR LoadCursorA(HINSTANCE hInstance, LPCSTR lpCursorName);
// Stock brushes; null for an unknown index.
HGDIOBJ GetStockObject(int i);

// ---- windows --------------------------------------------------------------------------
// Creates a window of a registered class: WM_NCCREATE, then WM_CREATE with a
// CREATESTRUCTA whose lpCreateParams is lpParam. Hidden unless dwStyle holds
// WS_VISIBLE. Null when the class is unknown, the window system cannot be
// reached, or the procedure refuses creation.
HWND CreateWindowExA(DWORD dwExStyle, LPCSTR lpClassName, LPCSTR lpWindowName, DWORD dwStyle, int X,
                     int Y, int nWidth, int nHeight, HWND hWndParent, HMENU hMenu,
                     HINSTANCE hInstance, LPVOID lpParam);
// Sends WM_DESTROY and WM_NCDESTROY, then the handle is gone. FALSE for a
// handle that is not a window.
BOOL DestroyWindow(HWND hWnd);
BOOL IsWindow(HWND hWnd);
// Shows, hides, minimises or restores; the result is whether the window was
// visible before. The first showing sends WM_SIZE with the client size.
BOOL ShowWindow(HWND hWnd, int nCmdShow);
BOOL IsWindowVisible(HWND hWnd);
BOOL IsIconic(HWND hWnd);
BOOL UpdateWindow(HWND hWnd);
BOOL SetWindowTextA(HWND hWnd, LPCSTR lpString);
// Copies the title, cut to nMaxCount - 1 characters; the result is its length.
int GetWindowTextA(HWND hWnd, LPSTR lpString, int nMaxCount);
// GWL_STYLE, GWL_EXSTYLE, GWL_USERDATA, GWL_WNDPROC, GWL_ID. The result is the
// former value, 0 for a bad handle or index. Pointer-wide (see above).
LONG_PTR SetWindowLongA(HWND hWnd, int nIndex, LONG_PTR dwNewLong);
LONG_PTR GetWindowLongA(HWND hWnd, int nIndex);
// GCL_HICON, GCL_HCURSOR of the window's class. The result is the former value.
ULONG_PTR SetClassLongA(HWND hWnd, int nIndex, LONG_PTR dwNewLong);
ULONG_PTR GetClassLongA(HWND hWnd, int nIndex);
// Moves and sizes the window's outer rectangle. WM_SIZE follows inside the
// call when the client size changes.
BOOL SetWindowPos(HWND hWnd, HWND hWndInsertAfter, int X, int Y, int cx, int cy, UINT uFlags);
// Outer rectangle in screen coordinates.
BOOL GetWindowRect(HWND hWnd, RECT* lpRect);
// Client area: (0, 0) to its width and height, below the menu bar if any.
BOOL GetClientRect(HWND hWnd, RECT* lpRect);
BOOL ClientToScreen(HWND hWnd, POINT* lpPoint);
BOOL ScreenToClient(HWND hWnd, POINT* lpPoint);

// ---- messages --------------------------------------------------------------------------
// Takes (PM_REMOVE) or looks at the next message: posted messages first in
// the order they were posted, then a pending quit as WM_QUIT, then new input.
// FALSE when nothing waits. hWnd and the filter range narrow the search
// (0, 0: every message).
BOOL PeekMessageA(MSG* lpMsg, HWND hWnd, UINT wMsgFilterMin, UINT wMsgFilterMax, UINT wRemoveMsg);
// Key messages produce no character messages here; the result says whether
// the message was a key message.
BOOL TranslateMessage(const MSG* lpMsg);
// Calls the window procedure of lpMsg->hwnd; 0 for thread messages.
LRESULT DispatchMessageA(const MSG* lpMsg);
// Queues a message; hWnd null posts a thread message. FALSE for a bad handle.
BOOL PostMessageA(HWND hWnd, UINT Msg, WPARAM wParam, LPARAM lParam);
// Asks for WM_QUIT with nExitCode as its wParam.
void PostQuitMessage(int nExitCode);
// Calls the window procedure at once and gives its result.
LRESULT SendMessageA(HWND hWnd, UINT Msg, WPARAM wParam, LPARAM lParam);
// The platform's default answers: WM_NCCREATE TRUE, WM_CLOSE destroys the
// window, WM_MOUSEMOVE brings the class cursor back, all else 0.
LRESULT DefWindowProcA(HWND hWnd, UINT Msg, WPARAM wParam, LPARAM lParam);

// ---- menus and icons ---------------------------------------------------------------------
// Builds a new menu from the module's menu resource; null when there is none.
HMENU LoadMenuA(HINSTANCE hInstance, LPCSTR lpMenuName);
BOOL DestroyMenu(HMENU hMenu);
// Attaches (or with null removes) the menu bar of a window. The client area
// shrinks or grows by the bar, with WM_SIZE.
BOOL SetMenu(HWND hWnd, HMENU hMenu);
HMENU GetMenu(HWND hWnd);
HMENU GetSubMenu(HMENU hMenu, int nPos);
int GetMenuItemCount(HMENU hMenu);
// Command of the item at nPos; 0xFFFFFFFF for a popup, 0 for a separator.
UINT GetMenuItemID(HMENU hMenu, int nPos);
// MF_GRAYED / MF_DISABLED / MF_CHECKED / MF_POPUP / MF_SEPARATOR flags of an
// item, by command (searched through the popups) or by position; 0xFFFFFFFF
// when there is no such item.
UINT GetMenuState(HMENU hMenu, UINT uId, UINT uFlags);
int GetMenuStringA(HMENU hMenu, UINT uIDItem, LPSTR lpString, int cchMax, UINT flags);
// MF_ENABLED, MF_GRAYED, MF_DISABLED; the result is the former state, or -1
// when there is no such item.
BOOL EnableMenuItem(HMENU hMenu, UINT uIDEnableItem, UINT uEnable);
// Checks idCheck and unchecks the others of idFirst..idLast (by command or by
// position), with a radio mark.
BOOL CheckMenuRadioItem(HMENU hmenu, UINT idFirst, UINT idLast, UINT idCheck, UINT flags);
// The module's icon resource, or the system icon (hInstance null, IDI_APPLICATION).
HICON LoadIconA(HINSTANCE hInstance, LPCSTR lpIconName);
BOOL DestroyIcon(HICON hIcon);

// ---- keyboard, capture and cursor -------------------------------------------------------
// Copies the 256-byte key table: held keys have 0x80 set, toggled keys 0x01.
BOOL GetKeyboardState(PBYTE lpKeyState);
// Held: the high bit (the result is negative); toggled: bit 0.
SHORT GetKeyState(int nVirtKey);
SHORT GetAsyncKeyState(int vKey);
// Mouse input goes to hWnd until ReleaseCapture; the result is the former holder.
HWND SetCapture(HWND hWnd);
BOOL ReleaseCapture();
HWND GetCapture();
// Cursor position in screen coordinates.
BOOL GetCursorPos(POINT* lpPoint);
BOOL SetCursorPos(int X, int Y);
// Null hides the cursor; the result is the former cursor.
HCURSOR SetCursor(HCURSOR hCursor);

// ---- time ----------------------------------------------------------------------------------
BOOL QueryPerformanceFrequency(LARGE_INTEGER* lpFrequency);
BOOL QueryPerformanceCounter(LARGE_INTEGER* lpPerformanceCount);
// Milliseconds since an arbitrary start, wrapping at 2^32.
DWORD timeGetTime();
DWORD GetTickCount();
void Sleep(DWORD dwMilliseconds);

// ---- message boxes -------------------------------------------------------------------------
// Writes "caption: text" to standard error; shows a real box only when a
// person can answer it. Result IDOK.
int MessageBoxA(HWND hWnd, LPCSTR lpText, LPCSTR lpCaption, UINT uType);

// ---- dialogs -------------------------------------------------------------------------------
// Runs the module's dialog resource modally: makes the dialog and its
// controls, sends WM_INITDIALOG with dwInitParam to lpDialogFunc, then feeds
// it the dialog's messages until EndDialog. The result is EndDialog's value;
// -1 when the resource or the procedure is missing. No frame of the caller
// runs meanwhile. Without a person or a script to answer it the dialog ends
// as if Cancel (IDCANCEL) were pressed.
INT_PTR DialogBoxParamA(HINSTANCE hInstance, LPCSTR lpTemplateName, HWND hWndParent,
                        DLGPROC lpDialogFunc, LPARAM dwInitParam);
// Ends the modal loop of hDlg once the current message is handled.
BOOL EndDialog(HWND hDlg, INT_PTR nResult);
// The control of the dialog with that id; null when there is none.
HWND GetDlgItem(HWND hDlg, int nIDDlgItem);
int GetDlgCtrlID(HWND hWnd);
LRESULT SendDlgItemMessageA(HWND hDlg, int nIDDlgItem, UINT Msg, WPARAM wParam, LPARAM lParam);
// Enables or disables input to a window; the result is nonzero when it was
// disabled before.
BOOL EnableWindow(HWND hWnd, BOOL bEnable);
BOOL IsWindowEnabled(HWND hWnd);
// Checks nIDCheckButton and unchecks the other buttons of the id range.
BOOL CheckRadioButton(HWND hDlg, int nIDFirstButton, int nIDLastButton, int nIDCheckButton);
// BST_CHECKED or BST_UNCHECKED; 0 for an unknown control.
UINT IsDlgButtonChecked(HWND hDlg, int nIDButton);

// ---- strings -------------------------------------------------------------------------------
// Compares as strcmp does in sign; a null string sorts first.
int lstrcmpA(LPCSTR lpString1, LPCSTR lpString2);
