// SPDX-License-Identifier: MIT
// A context in any state that a caller could bring it into, over a picture that notices what is
// written where nothing may be.
#pragma once

#include "fuzz/ByteReader.h"
#include "graphics2d/MMContext2D.h"
#include "graphics2d/sources/MMGradientSource.h"
#include "graphics2d/sources/MMTileSource.h"

#include <cstdio>
#include <cstdlib>
#include <deque>

// What does not hold is a finding.
inline void require(bool holds, const char* what)
{
    if (holds) return;
    std::fprintf(stderr, "does not hold: %s\n", what);
    std::abort();
}

// Reads 12 to some 300 bytes.
class HostileScene {
public:
    // padded: rows of the target may lie further apart than they are long.
    HostileScene(ByteReader& in, bool padded) : in_(in)
    {
        readTarget(padded);
        KAVO::Graphics2D::MMContext2D& c = context;
        c.transform = readMatrix();
        readPaint(c.fillPaint);
        readPaint(c.strokePaint);
        const uint8_t mode = in.byte();
        c.antiAlias = mode & 1;
        c.refined = mode >> 1 & 1;
        c.fillRule = in.byte();
        c.joinStyle = in.byte();
        c.capStyle = in.byte();
        c.strokeHalfWidth = in.fixed();
        c.miterLimit = in.fixed();
        c.dashOffset = in.fixed();
        dashes_ = in.array<KAVO::Fixed>(in.below(8));
        c.dashArray = dashes_.empty() ? nullptr : dashes_.data();
        c.dashCount = static_cast<uint16_t>(dashes_.size());
        const uint8_t flags = in.byte();
        c.accumulateBounds = flags & 1;
        c.drawSuppressed = (flags & 0x0E) == 0x0E;
        c.renderFlags = (flags & 0x70) == 0x70 ? KAVO::Graphics2D::kRenderBoundsOnly : 0;
        c.pointStep = static_cast<int32_t>(in.fixed());
        c.patternFilter = in.byte();
        c.imageOpacity = in.byte();
        c.pickX = in.fixed();
        c.pickY = in.fixed();
        c.currentPaint = c.fillPaint;
        readMask(clip_, c.clipMask);
        const MMMask* into = nullptr;
        readMask(into_, into);
        if (into != nullptr) c.maskTarget = &into_.mask;
    }

    // An image whose memory ends with its last texel.
    MMPixmap readImage()
    {
        const uint16_t width = static_cast<uint16_t>(in_.below(12));
        const uint16_t height = static_cast<uint16_t>(in_.below(12));
        images_.push_back(in_.array<KAVO::Pixel>(size_t{width} * height));
        KAVO::Pixel* pixels = images_.back().empty() ? nullptr : images_.back().data();
        return {width, height, in_.word(), 0, pixels, in_.word()};
    }

    Matrix2D readMatrix()
    {
        const KAVO::Fixed one = KAVO::kFixedOne;
        switch (in_.below(3)) {
        case 0:
            return {one, 0, 0, one, 0, 0};
        case 1:
            return {one, 0, 0, one, in_.fixed(), in_.fixed()};
        default:
            const KAVO::Fixed a = in_.fixed(), b = in_.fixed(), c = in_.fixed(), d = in_.fixed();
            return {a, b, c, d, in_.fixed(), in_.fixed()};
        }
    }

    void readPaint(MMPaint& paint)
    {
        const uint8_t type = in_.byte();
        paint.paintType = type == 255 ? UINT32_MAX : type;
        paint.paintOpacity = in_.byte();
        if (type >= 240 && type < 255) return readSource(paint);
        switch (paint.paintType) {
        case KAVO::Graphics2D::kPaintLinearGradient:
            readStops(paint);
            paint.gradientOriginX = in_.fixed();
            paint.gradientOriginY = in_.fixed();
            paint.gradientStepX = in_.fixed();
            paint.gradientStepY = in_.fixed();
            break;
        case KAVO::Graphics2D::kPaintRadialGradient:
            readStops(paint);
            for (KAVO::Fixed* field :
                 {&paint.radialXToU, &paint.radialXToV, &paint.radialYToU, &paint.radialYToV,
                  &paint.radialCenterX, &paint.radialCenterY})
                *field = in_.fixed();
            break;
        case KAVO::Graphics2D::kPaintPattern:
            paint.patternTransform = readMatrix();
            paint.patternImage = readImage();
            paint.patternHasAlpha = in_.byte();
            break;
        default:
            paint.paintColour = in_.word();
        }
    }

    // Everything outside of the clip rectangle must be as it was, and the scratch stack empty but
    // for the blocks that one-point dashed subpaths leave behind.
    void check(bool dashed)
    {
        for (size_t i = 0; i < words_.size(); ++i) {
            const int32_t x = static_cast<int32_t>(i % stride_);
            const int32_t y = static_cast<int32_t>(i / stride_);
            const bool inside = x < width_ && context.clipLeft <= x && x < context.clipRight &&
                                context.clipTop <= y && y < context.clipBottom;
            require(inside || words_[i] == kGround, "nothing is drawn outside of the clip");
        }
        require(dashed || context.scratchStack.usedWords == 0, "all scratch memory is given back");
        require(context.outOfMemory == 0, "memory does not run out");
    }

    KAVO::Graphics2D::MMContext2D context;

private:
    static constexpr KAVO::Pixel kGround = 0xA55A3CC3;

    void readTarget(bool padded)
    {
        width_ = static_cast<uint16_t>(in_.below(64));
        const uint16_t height = static_cast<uint16_t>(in_.below(64));
        stride_ = width_ + in_.below(4) * padded;
        words_.assign(size_t{stride_} * height, kGround);
        KAVO::Pixel* pixels = words_.empty() ? nullptr : words_.data();
        context.target = {width_, height, stride_ * 4, 0xFFFFFFFF, pixels, 0};
        context.clipRight = static_cast<int16_t>(width_);
        context.clipBottom = static_cast<int16_t>(height);
        if (in_.below(2) == 0) return;
        for (int16_t* side :
             {&context.clipLeft, &context.clipTop, &context.clipRight, &context.clipBottom})
            *side = in_.below(8) == 0
                        ? static_cast<int16_t>(in_.half())
                        : static_cast<int16_t>(static_cast<int32_t>(in_.below(80)) - 8);
    }

    struct LevelledMask {
        std::vector<uint8_t> levels;
        MMMask mask;
    };

    // One in four, over any rectangle, of levels that repeat.
    void readMask(LevelledMask& levelled, const MMMask*& named)
    {
        if (in_.below(4) != 3) return;
        const int16_t left = static_cast<int16_t>(static_cast<int32_t>(in_.below(96)) - 16);
        const int16_t top = static_cast<int16_t>(static_cast<int32_t>(in_.below(96)) - 16);
        const uint16_t width = static_cast<uint16_t>(in_.below(80));
        const uint16_t height = static_cast<uint16_t>(in_.below(80));
        levelled.levels.resize(size_t{width} * height);
        const uint32_t levels = in_.word();
        for (size_t i = 0; i < levelled.levels.size(); ++i)
            levelled.levels[i] = static_cast<uint8_t>(levels >> i / 5 % 4 * 8);
        levelled.mask = {left,
                         top,
                         static_cast<int16_t>(left + width),
                         static_cast<int16_t>(top + height),
                         width,
                         levelled.levels.empty() ? nullptr : levelled.levels.data()};
        named = &levelled.mask;
    }

    void readStops(MMPaint& paint)
    {
        const size_t count = in_.below(6);
        colours_.push_back(in_.array<KAVO::Pixel>(count));
        offsets_.push_back(in_.array<KAVO::Fixed>(count));
        paint.gradientStopCount = static_cast<uint32_t>(count);
        paint.gradientStopColors = colours_.back().data(); // null when there are none
        paint.gradientStopOffsets = offsets_.back().data();
        paint.paintHasAlpha = in_.byte();
    }

    MMPoint2D readPoint()
    {
        const KAVO::Fixed x = in_.fixed();
        return {x, in_.fixed()};
    }

    void readSource(MMPaint& paint)
    {
        using namespace KAVO::Graphics2D;
        const uint32_t kind = in_.below(4);
        const Matrix2D transform = readMatrix();
        const uint8_t modes = in_.byte();
        if (kind == 0) {
            MMPixmap image = readImage();
            image.rowBytes = 4u * image.width;
            tiles_.emplace_back();
            return setTileSource(
                paint, tiles_.back(), image, transform, static_cast<MMPatternFilter>(modes & 3),
                static_cast<MMTileMode>(modes >> 2 & 1), static_cast<MMTileMode>(modes >> 3 & 1));
        }
        readStops(paint);
        const GradientStops stops = {paint.gradientStopColors, paint.gradientStopOffsets,
                                     paint.gradientStopCount};
        const auto spread = static_cast<MMSpread>(modes & 3);
        const MMPoint2D start = readPoint(), end = readPoint();
        gradients_.emplace_back();
        MMGradientSource& source = gradients_.back();
        if (kind == 1) {
            setLinearSource(paint, source, start, end, transform, stops, spread);
        } else if (kind == 2) {
            const KAVO::Fixed radius = in_.fixed();
            setRadialSource(paint, source, {start, radius}, {end, in_.fixed()}, transform, stops,
                            spread);
        } else {
            setConicSource(paint, source, start, end.x, end.y, transform, stops, spread);
        }
    }

    ByteReader& in_;
    uint16_t width_;
    uint32_t stride_; // words
    std::vector<KAVO::Pixel> words_;
    std::vector<KAVO::Fixed> dashes_;
    std::vector<std::vector<KAVO::Pixel>> images_, colours_;
    std::vector<std::vector<KAVO::Fixed>> offsets_;
    std::deque<KAVO::Graphics2D::MMGradientSource> gradients_; // which stay where they are
    std::deque<KAVO::Graphics2D::MMTileSource> tiles_;
    LevelledMask clip_, into_;
};
