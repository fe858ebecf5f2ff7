// SPDX-License-Identifier: MIT
// Most tests are not about fonts. Contexts that fail to start, and heaps that run out, would end
// the font engine or leave it behind for the tests that follow, so the program itself holds one
// from the start. FreshEngine (TextScene.h) puts it aside for tests that are about fonts.
#include "graphics2d/text/FontLibrary.h"

namespace {

alignas(8) uint8_t state[FS_STATE_BYTES];

bool hold()
{
    KAVO::Graphics2D::fontEngine = state;
    KAVO::Graphics2D::fontEngineUsers = 1 << 20; // more than will ever leave without having joined
    return true;
}

const bool held = hold();

} // namespace
