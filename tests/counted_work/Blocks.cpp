// SPDX-License-Identifier: MIT
#include "tests/counted_work/Blocks.h"

#include <cstdlib>

uint64_t blocksRun = 0;

extern "C" void __sanitizer_cov_trace_pc(); // the name that the compiler calls
extern "C" void __sanitizer_cov_trace_pc()
{
    ++blocksRun;
}

// What is counted is compiled for the base alone.
[[gnu::constructor]] static void chooseBase()
{
    setenv("MM2D_LEVEL", "base", 1);
}
