// SPDX-License-Identifier: MIT
// Work, counted rather than timed: the sources that do it are compiled so that every basic block
// they run is counted here.
#pragma once

#include <cstdint>

extern uint64_t blocksRun;
