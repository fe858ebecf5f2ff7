// SPDX-License-Identifier: MIT
// How an operation tells that memory ran out. Internal.
#pragma once

#include "graphics2d/MMContext2D.h"

namespace KAVO {
namespace Graphics2D {

// Notes in the context that an operation was abandoned. The bit stays until the caller clears it.
inline void noteOutOfMemory(MMContext2D& context)
{
    context.outOfMemory |= kScratchExhausted;
}

} // namespace Graphics2D
} // namespace KAVO
