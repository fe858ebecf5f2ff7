// SPDX-License-Identifier: MIT
// Drawing aside, to be put on the target as one: with an opacity, a blend mode or a mask.
//
//     {
//         MMLayerOptions faint;
//         faint.opacity = 128;
//         MMLayer layer(context, faint);
//         context.drawPath(leaf.words()); // two shapes that overlap ...
//         context.drawPath(stem.words());
//     } // ... and show half of the background, also where they do
#pragma once

#include "../MMContext2D.h"
#include "../masks/MMMaskSetup.h"
#include "MMBlendMode.h"

namespace KAVO {
namespace Graphics2D {

// How a layer is put on what lies below it.
struct MMLayerOptions {
    uint8_t opacity = 255;
    MMBlendMode blendMode = kBlendNormal;
    const MMMask* mask = nullptr; // multiplied with the layer, outside of it nothing shows; null:
                                  // all of the layer. It may be drawn while the layer is open

    // Where the layer keeps its pixels: pixelsNeeded() of them that the caller owns, or null for
    // the context's scratch memory.
    Pixel* buffer = nullptr;
    uint32_t bufferPixels = 0;
};

#pragma GCC visibility push(default)

// From its construction to the end of its scope the context draws into a transparent layer, which
// is put on the target at the end. Device coordinates stay what they are: transform, clip, paints,
// pick point and bounds go on as before.
//
// The layer covers the clip rectangle, or the part of a given one inside it, as far as the target,
// an open layer around it and the context's clipMask reach. That mask does not act inside, but on
// the layer as a whole; only picking asks it at once. maskTarget is put aside, too: a layer that is
// opened while it is set adds its alpha to that mask, whatever its blend mode.
//
// A whole layer shows what drawing without it would, but for the rounding of its own pixels: where
// one thing is drawn at most one of 255 levels, where edges or translucent things meet two and
// seldom three, which pixels of 8 bits cannot do without. Layers inside one another add nothing to
// that.
//
// Layers are drawn by the refined rules: one that is opened under the classic ones switches to them
// until its end. Where nothing is drawn, nothing is cleared or put on the target, unless the blend
// mode says otherwise.
//
// Where memory lacks, outOfMemory is set and all is drawn straight onto the target. The context's
// target, clipMask, maskTarget and refined are as before at the end of the scope, whatever was done
// to them. Layers end in the reverse order of their beginning.
class MMLayer {
public:
    explicit MMLayer(MMContext2D& context, const MMLayerOptions& options = {});
    // With a rectangle in device pixels, right and bottom exclusive.
    MMLayer(MMContext2D& context, int32_t left, int32_t top, int32_t right, int32_t bottom,
            const MMLayerOptions& options = {});
    ~MMLayer();
    MMLayer(const MMLayer&) = delete;
    MMLayer& operator=(const MMLayer&) = delete;

    // What a layer of such a rectangle needs: its pixels and one more per row.
    static uint32_t pixelsNeeded(int32_t left, int32_t top, int32_t right, int32_t bottom);

    // False when memory lacked.
    bool isOpen() const { return memory_ != nullptr; }

    // The layer's rectangle in device pixels, right and bottom exclusive.
    int32_t left() const { return surface_.left; }
    int32_t top() const { return surface_.top; }
    int32_t right() const { return surface_.right; }
    int32_t bottom() const { return surface_.bottom; }

    // What has been drawn, premultiplied, with pixel (0, 0) at left(), top(): until the end of the
    // scope, or as long as the caller's buffer stays. Without pixels when the layer is not open.
    MMPixmap pixmap();

    // Fills a mask from what has been drawn. Beyond the layer its levels become 0.
    void fill(const MMMask& mask, MMMaskSource source);

    // Leaves the target without what has been drawn.
    void discard() { isDiscarded_ = true; }

private:
    void open(int32_t left, int32_t top, int32_t right, int32_t bottom);
    bool takeMemory();
    void compose();
    void composeRow(int32_t row, int32_t first, int32_t end);

    MMContext2D& context_;
    const MMLayerOptions options_;
    const MMPixmap target_; // the context's, from before
    const MMMask* const clipMask_;
    MMMask* const maskTarget_;
    const MMLayerSurface* const outer_;
    const uint8_t refined_;
    bool isDiscarded_ = false;
    Pixel* memory_ = nullptr;
    MMLayerSurface surface_ = {};
};

#pragma GCC visibility pop

} // namespace Graphics2D
} // namespace KAVO
