// SPDX-License-Identifier: MIT
// Which level a context draws by.
#include "graphics2d/LevelTable.h"

#include <cstdlib>
#include <cstring>

#if defined(MM2D_WITH_NEON)
#include <asm/hwcap.h>
#include <sys/auxv.h>
#endif

namespace KAVO {
namespace Graphics2D {

namespace base {
extern const LevelTable kLevelTable;
}

#if defined(MM2D_WITH_AVX2)
namespace avx2 {
extern const LevelTable kLevelTable;
}
#endif

#if defined(MM2D_WITH_NEON)
namespace neon {
extern const LevelTable kLevelTable;
}
#endif

const LevelTable* chooseLevel()
{
    const LevelTable* best = &base::kLevelTable;
#if defined(MM2D_WITH_AVX2)
    if (__builtin_cpu_supports("avx2")) best = &avx2::kLevelTable;
#endif
#if defined(MM2D_WITH_NEON)
    if ((getauxval(AT_HWCAP) & HWCAP_NEON) != 0) best = &neon::kLevelTable;
#endif
    // No build has more than one level beside the base.
    const char* wanted = std::getenv("MM2D_LEVEL");
    const bool wantsBase = wanted != nullptr && std::strcmp(wanted, base::kLevelTable.name) == 0;
    return wantsBase ? &base::kLevelTable : best;
}

} // namespace Graphics2D
} // namespace KAVO
