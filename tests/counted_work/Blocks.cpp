// SPDX-License-Identifier: MIT
#include "tests/counted_work/Blocks.h"

uint64_t blocksRun = 0;

extern "C" void __sanitizer_cov_trace_pc(); // the name that the compiler calls
extern "C" void __sanitizer_cov_trace_pc()
{
    ++blocksRun;
}
