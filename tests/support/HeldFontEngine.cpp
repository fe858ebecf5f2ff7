// SPDX-License-Identifier: MIT
// Most tests are not about fonts: the program itself holds a font engine from the start, so that
// their contexts neither start nor end one. FreshEngine (TextScene.h) puts it aside for tests that
// are about fonts.
#include "graphics2d/text/FontLibrary.h"

namespace {

alignas(8) uint8_t state[FS_STATE_BYTES];

bool hold()
{
    state[FS_REGISTERED_BYTE] = 1;
    KAVO::Graphics2D::fontEngine = state;
    KAVO::Graphics2D::fontEngineUsers = 1;
    return true;
}

const bool held = hold();

} // namespace
