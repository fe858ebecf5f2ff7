// SPDX-License-Identifier: MIT
// A square of the target, from its upper left corner on, filled with a gradient or an image.
#pragma once

#include "Scene.h"

enum class Filter { Nearest, Bilinear, Bicubic };

struct PaintedSquare {
    enum Kind { Linear, Radial, Image } kind;
    uint8_t opacity;
    double size; // pixels
    Filter filter = Filter::Nearest;
    double scale = 1;
    double degrees = 0;    // clockwise, about the corner
    bool hasAlpha = false; // the image: an alpha that grows toward the lower right

    bool isPlainCopy() const { return scale == 1 && degrees == 0; }
};

struct Stop {
    double offset;
    uint32_t colour; // 0xRRGGBB
};
constexpr Stop kStops[] = {{0, 0xC03020}, {0.5, 0xF0E040}, {1, 0x2060C0}};

// The linear gradient runs from the corner to this point, the radial one from the target's middle
// to its edges.
constexpr Point kLinearEnd = {kSceneSize, kSceneSize / 2.0};
constexpr double kMiddle = kSceneSize / 2.0;

constexpr int kImageSize = 256; // texels a side; beyond its edges the outermost repeat

std::vector<uint32_t> paintImage(bool hasAlpha, bool premultiplied);

Draw drawWithOurs(const PaintedSquare& square, bool refined);
Draw drawWithCairo(const PaintedSquare& square);
Draw drawWithAgg(const PaintedSquare& square);
Draw drawWithQt(const PaintedSquare& square);
