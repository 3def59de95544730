// The program's entry: hands over to WinMain as the platform would, with the
// module handle, no previous instance, an empty command line and the default
// show state. No argument and no environment variable is read.
#include "app/GameApp.h"

int main() { return WinMain(GetModuleHandleA(nullptr), nullptr, const_cast<LPSTR>(""), SW_SHOWDEFAULT); }
