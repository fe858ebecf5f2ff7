// SPDX-License-Identifier: MIT
// What the library takes of memory on the machine that it was built for.
#pragma once

#include <cstddef>

// Bytes of machine code of the library; the engines of the platform do not count. 0 when it cannot
// be told.
size_t libraryCodeBytes();

// Bytes of heap that a context takes beside a font engine that is running already. To be asked
// before anything else is drawn: what the allocator keeps for later counts, too.
struct ContextMemory {
    size_t atRest;        // the object included
    size_t withFullCache; // after more glyphs than its cache holds
};
ContextMemory contextMemory();
