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
    std::string problem; // of a picture that breaks off, too
};

class ImageStore {
public:
    explicit ImageStore(const SvgDocument& document) : document_(document) {}

    // What a reference names; each is read once. Its pixels are taken off the limit. A drawing that
    // is shown as an image gets no other files.
    const LoadedImage& loadImage(const std::string& href, uint64_t& pixelsLeft);
    // A drawing that elements come from.
    const LoadedImage& loadDocument(const std::string& href, uint64_t& pixelsLeft);

private:
    using Images = std::map<std::string, LoadedImage>;
    const LoadedImage& load(Images& images, const std::string& href, bool files,
                            uint64_t& pixelsLeft);

    const SvgDocument& document_;
    Images images_;
    Images documents_;
};

} // namespace Svg
} // namespace KAVO
