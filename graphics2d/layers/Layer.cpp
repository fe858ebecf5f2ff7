// SPDX-License-Identifier: MIT
// Opening layers and putting them on what lies below.
#include "graphics2d/layers/MMLayer.h"

#include "graphics2d/LevelTable.h"
#include "graphics2d/OutOfMemory.h"
#include "graphics2d/Redirection.h"
#include "graphics2d/layers/BlendRow.h"
#include "graphics2d/masks/LevelBlending.h"
#include "graphics2d/masks/MaskedStrip.h"
#include "graphics2d/strips/Blending.h"

#include <algorithm>

namespace KAVO {
namespace Graphics2D {

namespace {

constexpr int32_t kLargestSide = 0x7FFF; // of a target, and so of a layer

// Levels are combined in pieces of so many.
constexpr int32_t kPieceLevels = 256;

int32_t sideOf(int32_t from, int32_t to)
{
    const int64_t side = int64_t{to} - from;
    return static_cast<int32_t>(std::clamp<int64_t>(side, 0, kLargestSide));
}

// The levels of columns of a row through up to two masks; null where all are 255.
const uint8_t* levelsOf(const LevelTable& code, const MMMask* a, const MMMask* b, int32_t row,
                        int32_t first, int32_t count, uint8_t* levels)
{
    if (a == nullptr && b == nullptr) return nullptr;
    if (a == nullptr || b == nullptr) {
        const uint8_t* const some = maskRow(a != nullptr ? *a : *b, row) + first;
        return code.endOfLevel(some, 0, count, kWholeLevel) == count ? nullptr : some;
    }
    const uint8_t* const one = maskRow(*a, row) + first;
    const uint8_t* const other = maskRow(*b, row) + first;
    for (int32_t i = 0; i < count; ++i)
        levels[i] = static_cast<uint8_t>(shareOfLevel(one[i], other[i]));
    return levels;
}

} // namespace

uint32_t MMLayer::pixelsNeeded(int32_t left, int32_t top, int32_t right, int32_t bottom)
{
    const uint32_t width = static_cast<uint32_t>(sideOf(left, right));
    return (width + 1) * static_cast<uint32_t>(sideOf(top, bottom));
}

MMLayer::MMLayer(MMContext2D& context, const MMLayerOptions& options)
    : MMLayer(context, INT32_MIN, INT32_MIN, INT32_MAX, INT32_MAX, options)
{
}

MMLayer::MMLayer(MMContext2D& context, int32_t left, int32_t top, int32_t right, int32_t bottom,
                 const MMLayerOptions& options)
    : context_(context), options_(options), target_(context.target), clipMask_(context.clipMask),
      maskTarget_(context.maskTarget), outer_(context.layer), refined_(context.refined)
{
    PixelBox box = commonBox(drawableBox(context), {left, top, right, bottom});
    if (options.mask != nullptr) box = commonBox(box, boxOf(*options.mask));
    box = commonBox(box, {0, 0, kLargestSide, kLargestSide});
    if (box.empty()) box = {0, 0, 0, 0};
    open(box.left, box.top, box.right, box.bottom);
}

void MMLayer::open(int32_t left, int32_t top, int32_t right, int32_t bottom)
{
    surface_ = {left, top, right, bottom, nullptr, nullptr, clipMask_, outer_};
    if (!takeMemory()) {
        noteOutOfMemory(context_);
        return;
    }
    const size_t width = static_cast<size_t>(right - left);
    const size_t rows = static_cast<size_t>(bottom - top);
    surface_.pixels = memory_;
    surface_.prepared = reinterpret_cast<MMLayerSurface::Columns*>(memory_ + width * rows);
    std::fill_n(surface_.prepared, rows, MMLayerSurface::Columns{0, 0});

    // Rows and columns keep their numbers: those of the device are counted from where its first
    // pixel would be.
    context_.target.rowBytes = static_cast<uint32_t>(width * sizeof(Pixel));
    context_.target.pixels = reinterpret_cast<Pixel*>(
        reinterpret_cast<uintptr_t>(memory_) -
        (static_cast<size_t>(top) * width + static_cast<size_t>(left)) * sizeof(Pixel));
    context_.layer = &surface_;
    context_.clipMask = nullptr;
    context_.maskTarget = nullptr;
    context_.refined = 1;
}

// Four bytes for a pixel, however wide the words of the scratch memory are.
bool MMLayer::takeMemory()
{
    const uint32_t needed =
        pixelsNeeded(surface_.left, surface_.top, surface_.right, surface_.bottom);
    if (options_.buffer != nullptr) {
        if (options_.bufferPixels >= needed) memory_ = options_.buffer;
        return isOpen();
    }
    constexpr uint32_t kPixelsPerWord = sizeof(void*) / sizeof(Pixel);
    memory_ = static_cast<Pixel*>(context_.scratchStack.Alloc(needed / kPixelsPerWord + 1));
    return isOpen();
}

MMLayer::~MMLayer()
{
    if (!isOpen()) return;
    context_.target = target_;
    context_.clipMask = clipMask_;
    context_.maskTarget = maskTarget_;
    context_.layer = outer_;
    context_.refined = refined_;
    if (!isDiscarded_) compose();
    if (options_.buffer == nullptr) context_.scratchStack.DeAlloc(memory_);
}

MMPixmap MMLayer::pixmap()
{
    MMPixmap pixmap = {};
    if (!isOpen()) return pixmap;
    prepareLayer(surface_, boxOf(surface_));
    pixmap.width = static_cast<uint16_t>(right() - left());
    pixmap.height = static_cast<uint16_t>(bottom() - top());
    pixmap.rowBytes = pixmap.width * static_cast<uint32_t>(sizeof(Pixel));
    pixmap.pixels = memory_;
    return pixmap;
}

void MMLayer::fill(const MMMask& mask, MMMaskSource source)
{
    setMaskFromPixels(mask, pixmap(), static_cast<int16_t>(left()), static_cast<int16_t>(top()),
                      source);
}

void MMLayer::compose()
{
    if (actsOutside(options_.blendMode) && maskTarget_ == nullptr)
        prepareLayer(surface_, boxOf(surface_));
    for (int32_t row = top(); row < bottom(); ++row) {
        const MMLayerSurface::Columns columns = surface_.prepared[row - top()];
        if (columns.first < columns.end) composeRow(row, columns.first, columns.end);
    }
}

void MMLayer::composeRow(int32_t row, int32_t first, int32_t end)
{
    const Pixel* const drawn = layerRow(surface_, row);
    if (maskTarget_ == nullptr && outer_ != nullptr)
        prepareLayer(*outer_, {first, row, end, row + 1});
    uint8_t combined[kPieceLevels];
    for (int32_t next; first < end; first = next) {
        next = std::min(end, first + kPieceLevels);
        const int32_t count = next - first;
        const uint8_t* const levels =
            levelsOf(*context_.level, clipMask_, options_.mask, row, first, count, combined);
        const Pixel* const from = drawn + (first - left());
        if (maskTarget_ != nullptr) {
            addAlphas(maskRow(*maskTarget_, row) + first, from, levels, options_.opacity, count);
            continue;
        }
        Pixel* const to = targetRow(target_, row, target_.rowBytes) + first;
        if (options_.blendMode == kBlendNormal)
            context_.level->blendNormal(to, from, levels, options_.opacity, count);
        else
            blendRow(options_.blendMode, to, from, levels, options_.opacity, count);
    }
}

} // namespace Graphics2D
} // namespace KAVO
