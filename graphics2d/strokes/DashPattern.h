// SPDX-License-Identifier: MIT
// The context's dash pattern, and a walk along it. Internal.
#pragma once

#include "graphics2d/MMContext2D.h"

namespace KAVO {
namespace Graphics2D {

// A pattern that cuts a subpath into more pieces, dashes and gaps counted, is drawn as a plain
// stroke: the work would be out of proportion to anything that can be seen of it.
constexpr uint64_t kMaxPieces = 65535;

// The context's dash lengths, on and off alternately.
class DashPattern {
public:
    explicit DashPattern(const MMContext2D& context)
        : lengths_(context.dashArray), count_(context.dashArray != nullptr ? context.dashCount : 0)
    {
        for (uint32_t i = 0; i < count_; ++i) {
            if (lengths_[i] < 0) {
                period_ = 0;
                return;
            }
            period_ += static_cast<uint32_t>(lengths_[i]);
        }
    }

    // False when it is empty, has a negative entry or no length at all.
    bool isDrawable() const { return period_ > 0; }

    uint32_t count() const { return count_; }
    uint64_t period() const { return period_; }
    Fixed operator[](uint32_t index) const { return lengths_[index]; }

private:
    const Fixed* lengths_;
    uint32_t count_;
    uint64_t period_ = 0;
};

// Where in the pattern a walk is.
class DashPhase {
public:
    // The phase at the start of a subpath. Entries without length are over before the walk begins,
    // unless startsWithDots.
    DashPhase(const DashPattern& pattern, Fixed dashOffset, bool startsWithDots) : pattern_(pattern)
    {
        // Patterns of odd length swap on and off from one period to the next.
        const int64_t cycle =
            static_cast<int64_t>(pattern.period()) * (pattern.count() % 2 == 0 ? 1 : 2);
        int64_t offset = dashOffset % cycle;
        if (dashOffset < 0) {
            // Backward from the start, an odd pattern begins with its last entry on. Whole cycles
            // back are one cycle: they end in the state of going back, too.
            if (offset == 0) offset = -cycle;
            index_ = pattern.count();
            on_ = pattern.count() % 2 == 0;
            do {
                index_ = index_ == 0 ? pattern.count() - 1 : index_ - 1;
                offset += pattern[index_];
                on_ = !on_;
            } while (offset < 0);
        } else {
            while (offset >= pattern[index_] && !(startsWithDots && offset == 0)) {
                offset -= pattern[index_];
                advance();
            }
        }
        left_ = static_cast<Fixed>(pattern[index_] - offset);
    }

    bool isOn() const { return on_; }
    Fixed left() const { return left_; } // of the current entry

    void consume(Fixed length) { left_ -= length; }

    void advance()
    {
        index_ = index_ + 1 == pattern_.count() ? 0 : index_ + 1;
        on_ = !on_;
        left_ = pattern_[index_];
    }

    // Entries that a walk of the given length from here touches; any number above kMaxPieces when
    // they are more than that.
    uint64_t piecesWithin(uint64_t length) const
    {
        if (length < static_cast<uint32_t>(left_)) return 1;
        const uint64_t rest = length - static_cast<uint32_t>(left_);
        const uint64_t periods = rest / pattern_.period();
        if (periods > kMaxPieces) return periods; // too many; their product may not fit
        DashPhase last = *this;
        last.advance();
        uint64_t pieces = 2 + periods * pattern_.count();
        for (uint64_t offset = rest % pattern_.period();
             offset >= static_cast<uint32_t>(last.left_); ++pieces) {
            offset -= static_cast<uint32_t>(last.left_);
            last.advance();
        }
        return pieces;
    }

private:
    const DashPattern& pattern_;
    uint32_t index_ = 0;
    bool on_ = true;
    Fixed left_ = 0;
};

} // namespace Graphics2D
} // namespace KAVO
