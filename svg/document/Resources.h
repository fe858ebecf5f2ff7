// SPDX-License-Identifier: MIT
// What a drawing refers to outside of itself: files beside it, and data inside references.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace KAVO {
namespace Svg {

// Whether a reference holds its data itself.
bool isData(std::string_view reference);

class Resources {
public:
    // folder: "" or with a '/' at its end. Without files, data references alone are read.
    Resources(std::string folder, bool files, uint64_t mostBytes)
        : folder_(std::move(folder)), files_(files), mostBytes_(mostBytes)
    {
    }

    // The bytes behind a reference: a path relative to the folder, or a data URI in base64 or
    // plain. False when they cannot be had, are empty or too many.
    bool read(const std::string& reference, std::string& bytes) const;

    // For what a file that the reference names refers to itself.
    Resources beside(const std::string& reference) const;
    // For a drawing that is shown as an image, which must not ask for other files.
    Resources withoutFiles() const { return {folder_, false, mostBytes_}; }

    uint64_t mostBytes() const { return mostBytes_; }

private:
    std::string folder_;
    bool files_;
    uint64_t mostBytes_;
};

// Reads a whole file; an empty string, or what went wrong.
std::string readFile(const std::string& fileName, uint64_t mostBytes, std::string& bytes);

// Replaces gzip-compressed bytes by what they hold; other bytes stay. False when they are damaged
// or hold too much.
bool decompress(std::string& bytes, uint64_t mostBytes);

} // namespace Svg
} // namespace KAVO
