// SPDX-License-Identifier: MIT
// What the gallery draws with: a context on a picture, and stars.
#pragma once

#include "common/Picture.h"
#include "graphics2d/convenience/MMContextState.h"
#include "graphics2d/convenience/MMPathBuilder.h"
#include "graphics2d/convenience/MMText.h"

#include <memory>

// 16.16 from a plain number.
constexpr KAVO::Fixed fixed(double value)
{
    return static_cast<KAVO::Fixed>(value * 65536 + (value < 0 ? -0.5 : 0.5));
}

constexpr KAVO::Degrees degrees(double value)
{
    return fixed(value);
}

// Every step-th of so many points on a circle, the first at the top.
void addStar(KAVO::Graphics2D::MMPathBuilder& path, double cx, double cy, double r, int points,
             int step);
KAVO::Graphics2D::MMPathBuilder star(double cx, double cy, double r, int points, int step);

class Canvas {
public:
    Canvas(int width, int height, KAVO::Pixel paper);

    Picture picture;
    std::string problem; // why the picture is not what it should be; empty when it is

    // Made anew by useFont, so keep no reference to it across that call.
    KAVO::Graphics2D::MMContext2D& context() { return *context_; }

    // Begins with a new context that finds the given font.
    void useFont(const std::string& fontFile);

    // Some context ran out of memory.
    bool outOfMemory() const { return outOfMemory_ || context_->outOfMemory; }

    // Paints for the operations that follow.
    void fill(KAVO::Pixel colour, uint8_t opacity = 255);
    void stroke(KAVO::Pixel colour, double width, uint8_t opacity = 255);

    // The panel of the scene that is drawn begins at (x, y) of the picture.
    void beginPanel(int x, int y);

    // User space becomes the panel's, first scaled and turned, then moved to (x, y) in it.
    void place(double x = 0, double y = 0, double scale = 1, double turn = 0);

    void draw(const KAVO::Graphics2D::MMPathBuilder& path);
    void rectangle(double x, double y, double width, double height);

private:
    void makeContext();

    std::unique_ptr<KAVO::Graphics2D::MMContext2D> context_;
    bool outOfMemory_ = false;
    int panelX_ = 0;
    int panelY_ = 0;
};

// Size of a panel; each scene fills one.
constexpr int kPanelWidth = 380;
constexpr int kPanelHeight = 200;

void drawFillScene(Canvas& canvas);
void drawRoundedScene(Canvas& canvas);
void drawArcScene(Canvas& canvas);
void drawJoinScene(Canvas& canvas);
void drawDashScene(Canvas& canvas);
void drawHairlineScene(Canvas& canvas);
void drawCrossingScene(Canvas& canvas);
void drawPositionScene(Canvas& canvas);
void drawPaintScene(Canvas& canvas);
void drawImageScene(Canvas& canvas);

void drawBlendScene(Canvas& canvas);
void drawGroupScene(Canvas& canvas);

void drawModesScene(Canvas& canvas);

void drawSpreadScene(Canvas& canvas);
void drawTileScene(Canvas& canvas);

void drawSizeScene(Canvas& canvas);
void drawLetterScene(Canvas& canvas);
void drawEnglishScene(Canvas& canvas);
void drawChineseScene(Canvas& canvas);
void drawThaiScene(Canvas& canvas);
