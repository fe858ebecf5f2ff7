// SPDX-License-Identifier: MIT
#include "svg/images/ImageStore.h"

#include "svg/images/Decoders.h"

namespace KAVO {
namespace Svg {

namespace {

LoadedImage read(const SvgDocument& document, const std::string& href, bool files,
                 uint64_t pixelsLeft)
{
    LoadedImage image;
    std::string bytes;
    // What a fragment names is a view of the whole drawing at most.
    if (!document.resources().read(isData(href) ? href : href.substr(0, href.find('#')), bytes)) {
        image.problem = "cannot be read";
        return image;
    }
    const std::string_view kind = kindOf(bytes);
    if (kind == "png") {
        image.problem = decodePng(bytes, pixelsLeft, image.picture);
    } else if (kind == "jpeg") {
        image.problem = decodeJpeg(bytes, pixelsLeft, image.picture);
    } else if (kind == "gif") {
        image.problem = decodeGif(bytes, pixelsLeft, image.picture);
    } else if (kind == "webp") {
        image.problem = decodeWebp(bytes, pixelsLeft, image.picture);
    } else if (kind == "svg") {
        const Resources beside = document.resources().beside(href);
        image.drawing = std::make_unique<SvgDocument>(document.options(),
                                                      files ? beside : beside.withoutFiles());
        image.problem = image.drawing->parse(std::move(bytes));
    } else {
        image.problem = "is of an unknown kind";
    }
    return image;
}

} // namespace

const LoadedImage& ImageStore::loadImage(const std::string& href, uint64_t& pixelsLeft)
{
    return load(images_, href, false, pixelsLeft);
}

const LoadedImage& ImageStore::loadDocument(const std::string& href, uint64_t& pixelsLeft)
{
    return load(documents_, href, true, pixelsLeft);
}

const LoadedImage& ImageStore::load(Images& images, const std::string& href, bool files,
                                    uint64_t& pixelsLeft)
{
    auto found = images.find(href);
    if (found == images.end()) {
        found = images.emplace(href, read(document_, href, files, pixelsLeft)).first;
        pixelsLeft -= std::min<uint64_t>(pixelsLeft, found->second.picture.pixels.size());
    }
    return found->second;
}

} // namespace Svg
} // namespace KAVO
