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

#if defined(MM2D_WITH_AVX512)
namespace avx512 {
extern const LevelTable kLevelTable;
}
#endif

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

namespace {

struct Choice {
    const LevelTable* table;
    bool isThere; // the processor has it
};

} // namespace

const LevelTable* chooseLevel()
{
    const Choice choices[] = { // the widest first
#if defined(MM2D_WITH_AVX512)
        // The first processors with such registers, which lack this, slow down while they use them.
        {&avx512::kLevelTable,
         __builtin_cpu_supports("avx512bw") && __builtin_cpu_supports("avx512vbmi2")},
#endif
#if defined(MM2D_WITH_AVX2)
        {&avx2::kLevelTable, __builtin_cpu_supports("avx2") != 0},
#endif
#if defined(MM2D_WITH_NEON)
        {&neon::kLevelTable, (getauxval(AT_HWCAP) & HWCAP_NEON) != 0},
#endif
        {&base::kLevelTable, true}
    };
    const char* wanted = std::getenv("MM2D_LEVEL");
    const LevelTable* best = nullptr;
    for (const Choice& choice : choices) {
        if (!choice.isThere) continue;
        if (best == nullptr) best = choice.table;
        if (wanted != nullptr && std::strcmp(wanted, choice.table->name) == 0) return choice.table;
    }
    return best;
}

} // namespace Graphics2D
} // namespace KAVO
