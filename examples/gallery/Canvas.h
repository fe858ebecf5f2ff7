// SPDX-License-Identifier: MIT
// What the gallery draws with: a context on a picture, and encoded paths.
#pragma once

#include "common/FontFolder.h"
#include "common/Picture.h"
#include "graphics2d/MMContext2D.h"

#include <memory>
#include <vector>

// 16.16 from a plain number.
constexpr KAVO::Fixed fixed(double value)
{
    return static_cast<KAVO::Fixed>(value * 65536 + (value < 0 ? -0.5 : 0.5));
}

constexpr KAVO::Degrees degrees(double value)
{
    return fixed(value);
}

// Builds the words that MMContext2D::drawPath reads, one command for each point or curve.
class PathBuilder {
public:
    PathBuilder& moveTo(double x, double y);
    PathBuilder& lineTo(double x, double y);
    PathBuilder& curveTo(double x1, double y1, double x2, double y2, double x3, double y3);
    PathBuilder& close();
    PathBuilder& circle(double cx, double cy, double r);
    PathBuilder& star(double cx, double cy, double r, int points, int step);

    // The finished path; a last subpath that was not closed ends here.
    const uint32_t* words();
    // The same with one word before it, for getPathPos.
    const uint32_t* storedPath();

private:
    void begin(uint32_t kind);
    void put(double x, double y);
    void endSubpath(uint32_t flags);

    std::vector<uint32_t> words_{0, 0}; // the word before the path, the header
    size_t command_ = 0;                // index of the last command word of an open subpath, or 0
};

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

    // User space becomes the panel's, first scaled and turned, then moved to (x, y) in it, on the
    // grid where pixel 0 covers [0, 1). What is drawn without anti-aliasing, and images and text,
    // lie on that grid without the shift that placeUnshifted leaves out.
    void place(double x = 0, double y = 0, double scale = 1, double turn = 0);
    void placeUnshifted(double x = 0, double y = 0, double scale = 1, double turn = 0);

    void draw(PathBuilder path) { context().drawPath(path.words()); }
    void rectangle(double x, double y, double width, double height);

private:
    void makeContext();

    std::unique_ptr<FontFolder> font_;
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

void drawSizeScene(Canvas& canvas);
void drawLetterScene(Canvas& canvas);
void drawEnglishScene(Canvas& canvas);
void drawChineseScene(Canvas& canvas);
void drawThaiScene(Canvas& canvas);
