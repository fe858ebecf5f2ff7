// SPDX-License-Identifier: MIT
// The table of roots, once for all levels.
#include "graphics2d/strips/QuickRoot.h"

namespace KAVO {
namespace Graphics2D {

namespace {

constexpr RootTable makeRootTable()
{
    RootTable table = {};
    uint64_t root = 0;
    for (uint32_t k = kFirstRoot; k <= kRootSteps; ++k) {
        const uint64_t square = (uint64_t{k} << 48) / kRootSteps;
        for (uint64_t bit = uint64_t{1} << 24; bit != 0; bit >>= 1) // the roots only grow
            while ((root + bit) * (root + bit) <= square)
                root += bit;
        table.roots[k - kFirstRoot] = static_cast<uint32_t>(root);
    }
    return table;
}

} // namespace

constexpr RootTable kRoots = makeRootTable();

} // namespace Graphics2D
} // namespace KAVO
