// The background drawn after what covers it. The world's frame begins with a
// sky that writes no depth and fills the whole view, and the opaque ground
// and towers then cover much of it: on a software rasteriser the sky pixels
// shaded for nothing cost 2 to 6% of such a frame. So a draw that writes no
// depth, made before anything else after a clear of depth and stencil, is
// held back. Each draw after it that overwrites what it covers (no blending)
// writes 1 into the stencil wherever it writes a pixel. The held-back draws
// then go, in their order and with their own state, only where the stencil
// is still 0, just before the first draw that blends (which must see them
// below it) or before anything else needs the picture.
//
// The picture is exactly the one of drawing in order: a pixel that a later
// opaque draw wrote shows that draw either way, since it overwrote the
// background; any other pixel was left alone by those draws, depth included,
// so the background passes or fails there as it did first. The stencil lives
// in the spare 8 bits of a 24-bit depth buffer; a 16-bit or 32-bit float one
// has none to spare (DepthStencilTwin) and is drawn in order.
#include <utility>

#include "platform/d3d9/GLDevice.h"

namespace d3d9gl {

bool GLDevice::WritesDepth() const {
  return depthRb_ != 0 && state_.rs[D3DRS_ZENABLE] != D3DZB_FALSE &&
         state_.rs[D3DRS_ZWRITEENABLE] != 0;
}

void GLDevice::HoldBackground(D3DPRIMITIVETYPE type, INT baseVertex, UINT startIndex, UINT primCount) {
  auto held = std::make_unique<HeldDraw>(HeldDraw{state_, type, baseVertex, startIndex, primCount});
  for (IDirect3DBaseTexture9* t : held->state.textures)
    if (t) t->AddRef();
  held->state.stream->AddRef();
  held->state.indices->AddRef();
  background_.push_back(std::move(held));
}

void GLDevice::SwapState(HeldDraw& held) {
  std::swap(state_, held.state);
  // Everything the next draw translates may differ now.
  ++wvpSerial_;
  ++viewportSerial_;
  fixedDirty_ = viewportDirty_ = true;
  for (bool& d : samplerDirty_) d = true;
}

void GLDevice::DrawBackground() {
  if (background_.empty() || replaying_) return;
  replaying_ = true;
  for (auto& held : background_) {
    SwapState(*held);
    if (!lost_) DrawIndexed(held->type, held->baseVertex, held->startIndex, held->primCount);
    SwapState(*held);
  }
  replaying_ = false;
  DropBackground();
  ApplyStencil(kStencilOff);
}

void GLDevice::DropBackground() {
  for (auto& held : background_) {
    for (IDirect3DBaseTexture9* t : held->state.textures)
      if (t) t->Release();
    held->state.stream->Release();
    held->state.indices->Release();
  }
  background_.clear();
}

void GLDevice::ApplyStencil(int use) {
  if (gl_.stencil == use) return;
  gl_.stencil = use;
  if (use == kStencilOff) {
    glDisable(GL_STENCIL_TEST);
    return;
  }
  glEnable(GL_STENCIL_TEST);
  if (use == kStencilMark) {
    // Written where the depth test passes, or where there is none.
    glStencilFunc(GL_ALWAYS, 1, 0xFF);
    glStencilOp(GL_KEEP, GL_KEEP, GL_REPLACE);
  } else {
    glStencilFunc(GL_EQUAL, 0, 0xFF);
    glStencilOp(GL_KEEP, GL_KEEP, GL_KEEP);
  }
}

void GLDevice::FlushPending() {
  if (!core_->MakeCurrent()) return;
  FlushBatch();
  DrawBackground();
}

}  // namespace d3d9gl
