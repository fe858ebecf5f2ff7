// SPDX-License-Identifier: MIT
#include "graphics2d/raster/RowSeparators.h"

#include "memory/ScratchArray.h"

#include <algorithm>

namespace KAVO {
namespace Graphics2D {

namespace {

class SeparatorSearch {
public:
    SeparatorSearch(RowPlacing& row, StepBudget& budget, RowPlace** straight)
        : row_(row), budget_(budget), straight_(straight)
    {
    }

    void run(RowPlace* first, RowPlace* end);

private:
    void markCrossed(const RowPlace& bent, uint32_t behind);
    bool staysBeside(const RowPlace& bent, const RowPlace& straight, int32_t side);

    RowPlacing& row_;
    StepBudget& budget_;
    RowPlace** straight_; // the straight places, from left to right
    uint32_t straightCount_ = 0;
};

void SeparatorSearch::run(RowPlace* first, RowPlace* end)
{
    for (RowPlace* place = first; place != end; ++place)
        if (place->straight) straight_[straightCount_++] = place;
    // What starts or ends inside the row on one side of a chain and is made up for on the other
    // changes the winding number on both sides of it, so that they cannot be settled apart.
    uint32_t open = 0;
    uint32_t behind = 0; // straight places left of the current one
    for (RowPlace* place = first; place != end && budget_.spend(); ++place) {
        if (place->straight) {
            if (open != 0) place->separates = false;
            ++behind;
            continue;
        }
        if (place->partial) open += row_.imbalanceOf(*place);
        markCrossed(*place, behind);
    }
}

// Takes from the straight chains that a bent one crosses their rank as separators. Those further
// off cannot be crossed once one is not.
void SeparatorSearch::markCrossed(const RowPlace& bent, uint32_t behind)
{
    for (uint32_t i = behind; i > 0 && budget_.spend(); --i) {
        RowPlace& place = *straight_[i - 1];
        if (bent.minX >= place.maxX || staysBeside(bent, place, 1)) break;
        place.separates = false;
    }
    for (uint32_t i = behind; i < straightCount_ && budget_.spend(); ++i) {
        RowPlace& place = *straight_[i];
        if (bent.maxX <= place.minX || staysBeside(bent, place, -1)) break;
        place.separates = false;
    }
}

// Whether a chain stays on one side of a straight one throughout the row: right of it for side 1,
// left of it for -1.
bool SeparatorSearch::staysBeside(const RowPlace& bent, const RowPlace& straight, int32_t side)
{
    Chain chain = row_.chainOf(bent);
    const auto isBeside = [&](Fixed x, Fixed y) {
        const Fixed at = y == row_.bottom() ? straight.bottomX : straight.xAt(y - row_.top());
        return side > 0 ? x >= at : x <= at;
    };
    for (;;) {
        if (!isBeside(chain.line.x, chain.line.y)) return false;
        const Fixed y = std::min(chain.line.endY, row_.bottom());
        if (!isBeside(chain.line.xAt(y), y)) return false;
        if (y == row_.bottom() || !budget_.spend() || !chain.step(row_.rings())) return true;
    }
}

// A straight chain separates the straight ones when all bottoms before it are left and all after it
// right of its own.
void markUncrossed(RowPlace* first, RowPlace* end)
{
    Fixed reach = -0x7FFFFFFF - 1;
    for (RowPlace* place = first; place != end; ++place) {
        if (!place->straight) continue;
        place->separates = place->bottomX >= reach;
        reach = std::max(reach, place->bottomX);
    }
    reach = 0x7FFFFFFF;
    for (RowPlace* place = end; place != first;) {
        --place;
        if (!place->straight) continue;
        if (place->bottomX > reach) place->separates = false;
        reach = std::min(reach, place->bottomX);
    }
}

} // namespace

bool markSeparators(RowPlacing& row, RowPlace* first, RowPlace* end, MMStackContext& stack,
                    StepBudget& budget)
{
    markUncrossed(first, end);
    if (!row.hasBent()) return true;
    ScratchArray<RowPlace*> straight(stack, static_cast<uint32_t>(end - first));
    if (!straight) return false;
    SeparatorSearch(row, budget, straight.data()).run(first, end);
    return true;
}

} // namespace Graphics2D
} // namespace KAVO
