// SPDX-License-Identifier: MIT
// Prints what the library takes of memory, on any machine that it can be built for.
#include "Footprint.h"

#include <cstdio>

int main()
{
    std::printf("machine code: %zu bytes\n", libraryCodeBytes());
    std::printf("heap of a context at rest: %zu bytes\n", contextMemory().atRest);
}
