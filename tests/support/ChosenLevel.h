// SPDX-License-Identifier: MIT
// MM2D_LEVEL for a scope: contexts made meanwhile draw by that level.
#pragma once

#include <cstdlib>
#include <string>

class ChosenLevel {
public:
    // Null: as if nothing were named.
    explicit ChosenLevel(const char* name)
    {
        const char* before = std::getenv(kVariable);
        wasNamed_ = before != nullptr;
        if (wasNamed_) before_ = before;
        set(name);
    }
    ~ChosenLevel() { set(wasNamed_ ? before_.c_str() : nullptr); }
    ChosenLevel(const ChosenLevel&) = delete;
    ChosenLevel& operator=(const ChosenLevel&) = delete;

private:
    static constexpr char kVariable[] = "MM2D_LEVEL";

    static void set(const char* name)
    {
        if (name == nullptr)
            unsetenv(kVariable);
        else
            setenv(kVariable, name, 1);
    }

    bool wasNamed_;
    std::string before_;
};
