// SPDX-License-Identifier: MIT
// The font engine that all contexts share. Internal.
#pragma once

#include "platform/FontEngine.h"

#include <cstddef>
#include <cstdint>

namespace KAVO {
namespace Graphics2D {

// The engine's state block, or null while no context holds it.
extern void* fontEngine;

// Contexts that hold their fontMetrics: those that joined and have not left. A context that had no
// memory for them has neither joined nor anything to leave.
extern int32_t fontEngineUsers;

// The emboldening last passed to the engine, whichever context did it: a 16.16 fraction of the em.
extern int32_t fontEmboldening;

// The font file that the next engine to start registers, from the heap; null: the one that the
// environment names.
extern char* fontFile;

// The path of that file, as snprintf writes it.
size_t copyFontFile(char* path, size_t bytes);

} // namespace Graphics2D
} // namespace KAVO
