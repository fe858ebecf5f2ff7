// SPDX-License-Identifier: MIT
// Chooses the font that the library's contexts find.
#pragma once

#include <string>

// The library looks for one font under a fixed name in a folder that the environment names, when
// the first context of a process is made after the last one has gone. While an object of this class
// lives, that folder holds a link to the given file.
class FontFolder {
public:
    explicit FontFolder(const std::string& fontFile);
    ~FontFolder();
    FontFolder(const FontFolder&) = delete;
    FontFolder& operator=(const FontFolder&) = delete;

    // Empty, or why the font cannot be used.
    const std::string& problem() const { return problem_; }

private:
    std::string folder_;
    std::string problem_;
};
