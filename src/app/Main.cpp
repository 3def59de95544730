// The program's entry: hands over to WinMain as the platform would, with the
// module handle, no previous instance, an empty command line and the default
// show state. No argument and no environment variable is read.
#include <cstdlib>

#include "app/GameApp.h"

int main() {
  // exit() rather than a return, which is the same on the desktop: in a web
  // page main has been suspended and resumed at every frame, and only exit()
  // still tells the page that the program has ended, and how.
  std::exit(WinMain(GetModuleHandleA(nullptr), nullptr, const_cast<LPSTR>(""), SW_SHOWDEFAULT));
}
