// SPDX-License-Identifier: MIT
#include "svgview/Viewer.h"

#include "common/Shortcomings.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <unistd.h>

using namespace KAVO;

namespace {

constexpr int kClickReach = 3; // pixels that a click's pointer may move
constexpr int kUsualSide = 800;
constexpr int kSmallestSide = 200; // of a window that nobody gave a size

void complain(const std::string& message)
{
    std::fprintf(stderr, "svgview: %s\n", message.c_str());
}

// A window of the drawing's proportions, as far as that makes a window.
View usualView(const Arguments& arguments, const Svg::Size& drawing)
{
    if (arguments.width != 0) return View(drawing, arguments.width, arguments.height);
    const double scale = kUsualSide / std::max(drawing.width, drawing.height);
    const auto side = [&](double length) {
        return std::max(kSmallestSide, static_cast<int>(std::lround(length * scale)));
    };
    return View(drawing, side(drawing.width), side(drawing.height));
}

// Bytes of memory that the process occupies; 0 where the system does not say.
double residentMemory()
{
    double pages = 0;
    if (FILE* file = std::fopen("/proc/self/statm", "r")) {
        if (std::fscanf(file, "%*f %lf", &pages) != 1) pages = 0;
        std::fclose(file);
    }
    return pages * static_cast<double>(sysconf(_SC_PAGESIZE));
}

} // namespace

Viewer::Viewer(WatchedFile file, Svg::MMSvgDocument drawing, const Arguments& arguments)
    : file_(std::move(file)), drawing_(std::move(drawing)),
      view_(usualView(arguments, drawing_.size())), canvas_(arguments.background)
{
}

void Viewer::press(int x, int y)
{
    pressed_ = true;
    dragging_ = false;
    pointerX_ = x;
    pointerY_ = y;
}

void Viewer::moveTo(int x, int y)
{
    if (!pressed_) return;
    const int dx = x - pointerX_;
    const int dy = y - pointerY_;
    dragging_ = dragging_ || std::max(std::abs(dx), std::abs(dy)) > kClickReach;
    if (!dragging_) return;
    view_.pan(dx, dy);
    pointerX_ = x;
    pointerY_ = y;
}

void Viewer::release()
{
    if (pressed_ && !dragging_) identify(pointerX_, pointerY_);
    pressed_ = false;
}

void Viewer::identify(int x, int y)
{
    const std::string id = drawing_.elementAt(view_.placement(), x + 0.5, y + 0.5);
    std::printf("%s\n", id.c_str());
    std::fflush(stdout);
    note_ = id.empty() ? "" : "#" + id;
}

void Viewer::reload()
{
    file_.accept();
    Svg::MMSvgDocument drawing;
    if (!drawing.loadFile(file_.name())) {
        note_ = drawing.problem();
        complain(file_.name() + ": " + note_);
        return;
    }
    drawing_ = std::move(drawing);
    view_.setDrawing(drawing_.size());
    note_.clear();
    reported_ = 0;
}

void Viewer::reloadIfChanged()
{
    if (file_.hasChanged()) reload();
}

bool Viewer::draw()
{
    const Change change = view_.takeChange();
    if (!change.any()) return false;
    const auto start = std::chrono::steady_clock::now();
    if (!canvas_.update(drawing_, view_, change)) complain(file_.name() + ": out of memory");
    const std::chrono::duration<double, std::milli> time = std::chrono::steady_clock::now() - start;
    char text[96];
    std::snprintf(text, sizeof text, "%.1f ms, %.1f MB, scratch %.0f KB", time.count(),
                  residentMemory() / 1e6, canvas_.scratchWords() * 4 / 1e3);
    readout_.write(text);
    reportShortcomings();
    return true;
}

void Viewer::reportShortcomings()
{
    const std::vector<Svg::Shortcoming> all = drawing_.shortcomings();
    for (; reported_ < all.size(); ++reported_)
        complain(describe(file_.name(), all[reported_]));
}

std::string Viewer::title() const
{
    const size_t slash = file_.name().rfind('/');
    const std::string name =
        slash == std::string::npos ? file_.name() : file_.name().substr(slash + 1);
    const std::string percent = std::to_string(std::lround(view_.scale() * 100)) + " %";
    return name + " - " + percent + (note_.empty() ? "" : " - " + note_);
}
