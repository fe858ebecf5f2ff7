// SPDX-License-Identifier: MIT
// The pictures and drawings that image elements refer to.
#pragma once

#include "svg/document/SvgDocument.h"
#include "svg/images/Picture.h"

#include <map>
#include <memory>
#include <string>

namespace KAVO {
namespace Svg {

// One of them, or why there is none.
struct LoadedImage {
    Picture picture;
    mutable std::vector<Picture> halves; // of the picture, of its half and so on, as they are drawn
    std::unique_ptr<SvgDocument> drawing;
    std::string problem;
};

class ImageStore {
public:
    explicit ImageStore(const SvgDocument& document) : document_(document) {}

    // What a reference names; each is read once. Its pixels are taken off the limit.
    const LoadedImage& load(const std::string& href, uint64_t& pixelsLeft);

private:
    const SvgDocument& document_;
    std::map<std::string, LoadedImage> images_;
};

} // namespace Svg
} // namespace KAVO
