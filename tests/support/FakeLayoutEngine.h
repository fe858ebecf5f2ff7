// SPDX-License-Identifier: MIT
// A layout engine for tests: breaks after spaces or, where none fits, between code units. Every
// call that can fail can be made to.
#pragma once

#include <cstdint>

struct FakeLayoutEngine {
    // The n-th fallible call from now on fails; 0: none does. Counts down.
    int32_t failAt = 0;
    int32_t refusal = 1;      // what it answers, unless it is a constructor
    int32_t calls = 0;        // fallible calls made
    int32_t objectsAlive = 0; // not counting controls
};

extern FakeLayoutEngine fakeLayoutEngine;
