// SPDX-License-Identifier: MIT
// A file that somebody else may write.
#pragma once

#include <cstdint>
#include <string>

class WatchedFile {
public:
    explicit WatchedFile(std::string name);

    const std::string& name() const { return name_; }

    // What is there now counts as known. To be called before it is read: what is written meanwhile
    // is new then.
    void accept();

    // Whether something else than what is known is there, and has been since the last call, so that
    // whoever writes it seems to have come to the end. A file that is gone has not changed.
    bool hasChanged();

private:
    // Of a file in a state: another one, for all that its folder says, when these are.
    struct Stamp {
        uint64_t device = 0;
        uint64_t node = 0; // 0: no file
        int64_t size = 0;
        int64_t seconds = 0;
        int64_t nanoseconds = 0;

        bool operator==(const Stamp& other) const;
    };
    Stamp look() const;

    std::string name_;
    Stamp known_;
    Stamp seen_; // at the last call
};
