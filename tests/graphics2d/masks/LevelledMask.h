// SPDX-License-Identifier: MIT
// A mask of a whole test picture.
#pragma once

#include "graphics2d/masks/MMMaskSetup.h"
#include "tests/pictures/Canvas.h"

#include <algorithm>
#include <random>
#include <vector>

namespace KAVO::Graphics2D::pictures {

struct LevelledMask {
    LevelledMask() : levels(kSide * kSide), mask(makeMask(levels.data(), 0, 0, kSide, kSide)) {}

    explicit LevelledMask(uint32_t seed) : LevelledMask() { fillAtRandom(seed); }
    LevelledMask(const LevelledMask&) = delete;
    LevelledMask& operator=(const LevelledMask&) = delete;

    // Stretches of hidden, visible and mixed levels, as clips have them, and hidden rows at the top
    // and bottom.
    void fillAtRandom(uint32_t seed)
    {
        std::mt19937 random(seed);
        for (size_t i = 0; i < levels.size();) {
            const uint32_t kind = random() % 4;
            for (uint32_t n = 1 + random() % 30; n > 0 && i < levels.size(); --n)
                levels[i++] = kind == 0 ? 0 : kind == 1 ? 255 : static_cast<uint8_t>(random());
        }
        std::fill_n(levels.begin(), random() % 20 * kSide, uint8_t{0});
        std::fill_n(levels.rbegin(), random() % 20 * kSide, uint8_t{0});
    }

    std::vector<uint8_t> levels;
    MMMask mask;
};

} // namespace KAVO::Graphics2D::pictures
