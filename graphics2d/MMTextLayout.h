// SPDX-License-Identifier: MIT
// A paragraph broken into lines by MMContext2D::createTextLayout.
#pragma once

#include <cstdint>

struct MMTextLayout {
    uint16_t lineCount;
    uint16_t** lines; // lineCount heap blocks, each a 0-terminated line of UTF-16
};
