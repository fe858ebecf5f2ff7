// SPDX-License-Identifier: MIT
// A header of the program's own, named like one of the library's.
#pragma once

struct OwnMatrix {
    double elements[9] = {2};
};
