// SPDX-License-Identifier: MIT
// Which level a context draws by.
#include "graphics2d/LevelTable.h"
#include "tests/support/ChosenLevel.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

namespace {

using namespace KAVO::Graphics2D;

std::string levelOfAContext()
{
    const MMContext2D context;
    return context.level->name;
}

// The tests are run once by each level that is built: this one says which it was.
TEST(LevelChoice, IsTheOneNamedWhereTheProcessorHasIt)
{
    const char* named = std::getenv("MM2D_LEVEL");
    if (named == nullptr) GTEST_SKIP() << "none is named";
    const std::string chosen = levelOfAContext();
    const ChosenLevel nothing(nullptr);
    if (chosen != named && chosen == levelOfAContext())
        GTEST_SKIP() << "the processor has no " << named << ", " << chosen << " is its best";
    EXPECT_EQ(chosen, named);
}

TEST(LevelChoice, FallsBackToTheBest)
{
    std::string best;
    {
        const ChosenLevel nothing(nullptr);
        best = levelOfAContext();
    }
    {
        const ChosenLevel base("base");
        EXPECT_EQ(levelOfAContext(), "base");
    }
    for (const char* name : {"", "no such level", "BASE", "bas", "base "}) {
        const ChosenLevel unknown(name);
        EXPECT_EQ(levelOfAContext(), best) << name;
    }
}

} // namespace
