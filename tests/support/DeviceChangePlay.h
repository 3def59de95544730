// What whole-program tests of Change Device share: playing the settings
// dialog as a user would, and counting the GL objects a device holds.
// Header-only.
#pragma once

#include <epoxy/gl.h>

#include <array>
#include <initializer_list>

#include "platform/win32/Win32Dialogs.h"

namespace test_support {

// GL names alive in the current context, by kind: textures, buffers,
// framebuffers, renderbuffers, vertex arrays, programs, shaders.
using GlCounts = std::array<int, 7>;
inline GlCounts LiveGlObjects() {
  GlCounts live{};
  for (GLuint name = 1; name < 65536; ++name) {
    const GLboolean alive[7] = {glIsTexture(name),      glIsBuffer(name),      glIsFramebuffer(name),
                                glIsRenderbuffer(name), glIsVertexArray(name), glIsProgram(name),
                                glIsShader(name)};
    for (int kind = 0; kind < 7; ++kind) live[kind] += alive[kind];
  }
  return live;
}

// Selects another entry than the selected one in the first of these lists
// that has one, and says which list that was (0: none had a choice).
inline int PickAnother(HWND dlg, std::initializer_list<int> ids) {
  const win32::DialogInfo info = win32::DescribeDialog(dlg);
  for (int id : ids)
    for (const auto& control : info.controls)
      if (control.id == id && control.entries.size() > 1) {
        win32::UserSelect(control.handle, control.selected == 0 ? 1 : 0);
        return id;
      }
  return 0;
}

}  // namespace test_support
