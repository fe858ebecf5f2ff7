// SPDX-License-Identifier: MIT
// Lines of text in MM2D_BENCH_FONT, unhinted.
#pragma once

#include "Scene.h"

constexpr double kMargin = 10;

struct TextLines {
    size_t lineCount;
    size_t lineLength;
    double size;   // pixels
    bool gradient; // from corner to corner of the target, in the stops of Paints.h
    bool cached;

    // Letters without blanks, different ones as long as there are any.
    std::vector<std::string> lines() const;
    double baseline(size_t line) const
    {
        return kMargin + size * 1.25 * static_cast<double>(line + 1);
    }
};

// The size of every picture. An uncached glyph is one of a size that was not drawn lately: each
// picture has the next of so many sizes, each 1/65536 greater than the last, that no cache holds
// them all.
class Sizes {
public:
    explicit Sizes(const TextLines& text) : size_(text.size), cached_(text.cached) {}
    double next() { return cached_ ? size_ : size_ + ++drawn_ % 4096 / 65536.0; }

private:
    double size_;
    bool cached_;
    uint32_t drawn_ = 0;
};

Draw drawWithOurs(const TextLines& text, bool refined);
Draw drawWithCairo(const TextLines& text);
Draw drawWithAgg(const TextLines& text);
Draw drawWithQt(const TextLines& text);
