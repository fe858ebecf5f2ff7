// SPDX-License-Identifier: MIT
// Encoded paths command by command, as MMPathBuilder would not write them: for the tests of what
// reads the words, which must bear anything. Other tests use MMPathBuilder.
#pragma once

#include "graphics2d/MMPathWords.h"
#include "math/MMPoint2D.h"

#include <cstdint>
#include <vector>

// An encoded path that grows command by command.
class EncodedPath {
public:
    enum Ending : uint32_t {
        kGoesOn = 0,
        kOpen = KAVO::Graphics2D::kPathEnd,
        kClosed = KAVO::Graphics2D::kPathEnd | KAVO::Graphics2D::kPathClose
    };

    EncodedPath() : words_{0} {}

    EncodedPath& points(const std::vector<MMPoint2D>& list, Ending ending = kGoesOn)
    {
        return command(static_cast<uint32_t>(list.size()) | ending, list);
    }

    // Three points for each curve.
    EncodedPath& curves(const std::vector<MMPoint2D>& list, Ending ending = kGoesOn)
    {
        return command(
            static_cast<uint32_t>(list.size() / 3) | KAVO::Graphics2D::kPathCurves | ending, list);
    }

    // A command word alone, whatever it says.
    EncodedPath& bare(uint32_t word) { return command(word, {}); }

    // Words as drawPath reads them.
    const uint32_t* data() const { return words_.data(); }

    // Words as the functions on stored paths read them: one more in front.
    std::vector<uint32_t> stored() const
    {
        std::vector<uint32_t> words{0xDEADBEEF};
        words.insert(words.end(), words_.begin(), words_.end());
        return words;
    }

    uint32_t& header() { return words_[0]; }

private:
    EncodedPath& command(uint32_t word, const std::vector<MMPoint2D>& list)
    {
        words_.push_back(word);
        for (const MMPoint2D& p : list) {
            words_.push_back(static_cast<uint32_t>(p.x));
            words_.push_back(static_cast<uint32_t>(p.y));
        }
        if ((word & KAVO::Graphics2D::kPathEnd) != 0) ++words_[0]; // one more subpath
        return *this;
    }

    std::vector<uint32_t> words_;
};
