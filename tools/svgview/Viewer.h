// SPDX-License-Identifier: MIT
// A drawing on show: what happens to it on the user's behalf, whatever shows it.
#pragma once

#include "svg/MMSvgDocument.h"
#include "svgview/Arguments.h"
#include "svgview/Canvas.h"
#include "svgview/Readout.h"
#include "svgview/View.h"
#include "svgview/WatchedFile.h"

#include <string>

// Positions are pixels of the window.
class Viewer {
public:
    // The drawing has been loaded from the file, which was watched from before that on.
    Viewer(WatchedFile file, KAVO::Svg::MMSvgDocument drawing, const Arguments& arguments);

    void resize(int width, int height) { view_.resize(width, height); }
    void fit() { view_.fit(); }
    void zoom(double steps, int x, int y) { view_.zoom(steps, x, y); }
    void pan(int dx, int dy) { view_.pan(dx, dy); }

    // The pointer. Moved while it is pressed it drags the drawing; let go where it was pressed it
    // names the element there, in the title and as a line on standard output: its id, or nothing.
    void press(int x, int y);
    void moveTo(int x, int y);
    void release();

    // Loads the drawing again, always or when the file has changed. If that fails the old drawing
    // stays and the title and a line on standard error say why.
    void reload();
    void reloadIfChanged();

    // Brings picture and readout up to date; false when they are.
    bool draw();

    int width() const { return view_.width(); }
    int height() const { return view_.height(); }
    const MMPixmap& picture() const { return canvas_.pixmap(); }
    const MMPixmap& readout() const { return readout_.pixmap(); }
    std::string title() const;

private:
    void identify(int x, int y);
    void reportShortcomings();

    WatchedFile file_;
    KAVO::Svg::MMSvgDocument drawing_;
    View view_;
    Canvas canvas_;
    Readout readout_;
    std::string note_;    // the end of the title
    size_t reported_ = 0; // of the drawing's shortcomings
    bool pressed_ = false;
    bool dragging_ = false;
    int pointerX_ = 0; // where it was pressed or, dragging, last seen
    int pointerY_ = 0;
};
