// SPDX-License-Identifier: MIT
// The recipes of docs/guide.md. Each draws into a context whose target is 200 by 120 pixels, white.
#pragma once

#include <graphics2d/RegionFlush.h>
#include <graphics2d/convenience/MMContextState.h>
#include <graphics2d/convenience/MMGradient.h>
#include <graphics2d/convenience/MMPathBuilder.h>
#include <graphics2d/convenience/MMText.h>
#include <graphics2d/layers/MMLayer.h>
#include <graphics2d/sources/MMGradientSource.h>
#include <graphics2d/sources/MMTileSource.h>

using KAVO::Fixed;
using KAVO::Pixel;
using KAVO::Graphics2D::MMContext2D;
using KAVO::Graphics2D::MMPathBuilder;

constexpr int32_t kRecipeWidth = 200;
constexpr int32_t kRecipeHeight = 120;

void fillShapes(MMContext2D& context);
void strokeLines(MMContext2D& context);
void paintGradients(MMContext2D& context);
void drawImages(MMContext2D& context);
void drawLabels(MMContext2D& context);

// Returns the y where the paragraph ends.
Fixed drawParagraph(MMContext2D& context, const char* utf8, Fixed left, Fixed top, Fixed width);

// Whether a filled shape covers a pixel.
bool covers(MMContext2D& context, const MMPathBuilder& shape, int32_t column, int32_t row);

// A list of lines, 20 pixels each, of which the target shows those from the pixel firstRow on.
struct List {
    const char* const* lines;
    int32_t count;
    int32_t firstRow;
};
void drawList(MMContext2D& context, const List& list);
void scrollList(MMContext2D& context, List& list, int32_t rows);

// Draws the upper and the lower half of a picture at the same time.
void drawInTwoThreads(Pixel* pixels, int32_t width, int32_t height,
                      void (*draw)(MMContext2D& context));

void drawClipped(MMContext2D& context);
void drawGroups(MMContext2D& context);
void paintSources(MMContext2D& context);

// Draws a picture that is never in memory as a whole.
constexpr int32_t kBandRows = 16;
using Emit = void (*)(void* user, const Pixel* rows, int32_t firstRow, int32_t rowCount);
bool drawInBands(int32_t height, void (*draw)(MMContext2D& context), Emit emit, void* user);
