// SPDX-License-Identifier: MIT
// Writing encoded paths.
//
// Every command carries the end bit until another one of its subpath follows, and the header is
// kept up to date, so the words are a complete path after each call.
#include "graphics2d/convenience/MMPathBuilder.h"

#include "graphics2d/convenience/EllipticalArc.h"

#include <algorithm>
#include <cstdlib>

namespace KAVO {
namespace Graphics2D {

namespace {

constexpr uint32_t kEmptyPath[] = {0, 0};
constexpr size_t kHeader = 1;
constexpr size_t kFirstCommand = 2;
constexpr size_t kFirstCapacity = 64;
constexpr size_t kSegmentWords = 10; // a start, a command and a curve

// Held at the ends of the range.
Fixed sum(Fixed a, Fixed b)
{
    return static_cast<Fixed>(std::clamp<int64_t>(int64_t{a} + b, INT32_MIN, INT32_MAX));
}

// The cubic's control point at two thirds of the way from an end to the quadratic's, rounded.
Fixed twoThirds(Fixed end, Fixed control)
{
    const int64_t tripled = end + 2 * int64_t{control};
    return static_cast<Fixed>((tripled + (tripled < 0 ? -1 : 1)) / 3);
}

} // namespace

MMPathBuilder::~MMPathBuilder()
{
    std::free(words_);
}

MMPathBuilder::MMPathBuilder(MMPathBuilder&& other) noexcept
{
    *this = static_cast<MMPathBuilder&&>(other);
}

MMPathBuilder& MMPathBuilder::operator=(MMPathBuilder&& other) noexcept
{
    if (this == &other) return *this;
    std::free(words_);
    words_ = other.words_;
    count_ = other.count_;
    capacity_ = other.capacity_;
    command_ = other.command_;
    subpaths_ = other.subpaths_;
    segments_ = other.segments_;
    start_ = other.start_;
    current_ = other.current_;
    open_ = other.open_;
    moved_ = other.moved_;
    outOfMemory_ = other.outOfMemory_;
    other.words_ = nullptr;
    other.capacity_ = 0;
    other.clear();
    return *this;
}

const uint32_t* MMPathBuilder::storedPath() const
{
    return words_ != nullptr ? words_ : kEmptyPath;
}

void MMPathBuilder::clear()
{
    if (words_ != nullptr) words_[kHeader] = 0;
    count_ = words_ != nullptr ? kFirstCommand : 0;
    subpaths_ = segments_ = 0;
    start_ = current_ = {0, 0};
    open_ = moved_ = outOfMemory_ = false;
}

// Makes room for so many words more. Without memory the path becomes empty.
bool MMPathBuilder::reserve(size_t words)
{
    if (outOfMemory_) return false;
    if (words <= capacity_ - count_) return true;
    const size_t capacity = std::max(kFirstCapacity, 2 * capacity_);
    void* grown =
        capacity <= SIZE_MAX / 8 ? std::realloc(words_, capacity * sizeof *words_) : nullptr;
    if (grown == nullptr) {
        std::free(words_);
        words_ = nullptr;
        capacity_ = 0;
        clear();
        outOfMemory_ = true;
        return false;
    }
    if (words_ == nullptr) count_ = kFirstCommand;
    words_ = static_cast<uint32_t*>(grown);
    words_[0] = 0;
    capacity_ = capacity;
    return true;
}

void MMPathBuilder::writePoint(MMPoint2D p)
{
    words_[count_++] = static_cast<uint32_t>(p.x);
    words_[count_++] = static_cast<uint32_t>(p.y);
}

void MMPathBuilder::writeHeader()
{
    words_[kHeader] = subpaths_ | std::min(segments_, 0xFFFFu) << kPathSegmentShift;
}

// Writes the start of a subpath unless one is open. False when there is no room for it.
bool MMPathBuilder::beginSubpath()
{
    if (!reserve(kSegmentWords)) return false;
    if (open_) return true;
    if (subpaths_ == kPathSubpathMask) return false;
    ++subpaths_;
    ++segments_;
    command_ = count_;
    words_[count_++] = kPathPoints | 1 | kPathEnd;
    writePoint(start_);
    writeHeader();
    open_ = true;
    return true;
}

// Adds an item of one or three points to the last command, or to a new one if that is of another
// kind.
void MMPathBuilder::add(uint32_t kind, const MMPoint2D* points)
{
    const uint32_t pointCount = kind == kPathCurves ? 3 : 1;
    moved_ = false;
    current_ = points[pointCount - 1];
    if (!beginSubpath()) return;
    const uint32_t last = words_[command_];
    const bool goesOn = (last & kPathKindMask) == kind && (last & kPathItemMask) != kPathItemMask;
    if (!goesOn) {
        words_[command_] = last & ~kPathEnd;
        command_ = count_;
        words_[count_++] = kind | kPathEnd;
    }
    ++words_[command_];
    segments_ += kind == kPathCurves || !goesOn;
    for (uint32_t i = 0; i < pointCount; ++i)
        writePoint(points[i]);
    writeHeader();
}

MMPathBuilder& MMPathBuilder::moveTo(Fixed x, Fixed y)
{
    start_ = current_ = {x, y};
    open_ = false;
    moved_ = true;
    return *this;
}

MMPathBuilder& MMPathBuilder::lineTo(Fixed x, Fixed y)
{
    const MMPoint2D end = {x, y};
    add(kPathPoints, &end);
    return *this;
}

MMPathBuilder& MMPathBuilder::quadTo(Fixed cx, Fixed cy, Fixed x, Fixed y)
{
    return cubicTo(twoThirds(current_.x, cx), twoThirds(current_.y, cy), twoThirds(x, cx),
                   twoThirds(y, cy), x, y);
}

MMPathBuilder& MMPathBuilder::cubicTo(Fixed cx1, Fixed cy1, Fixed cx2, Fixed cy2, Fixed x, Fixed y)
{
    const MMPoint2D points[] = {{cx1, cy1}, {cx2, cy2}, {x, y}};
    add(kPathCurves, points);
    return *this;
}

void MMPathBuilder::addCurves(const ArcCurves& curves)
{
    for (uint32_t i = 0; i < curves.count; ++i)
        add(kPathCurves, curves.points + size_t{3} * i);
}

MMPathBuilder& MMPathBuilder::arcTo(Fixed rx, Fixed ry, Degrees rotation, bool large,
                                    bool increasing, Fixed x, Fixed y)
{
    if (rx == 0 || ry == 0) return lineTo(x, y);
    addCurves(arcCurves({current_, {x, y}, rx, ry, rotation, large, increasing}));
    return *this;
}

MMPathBuilder& MMPathBuilder::close()
{
    if (!open_ && !moved_) return *this;
    if (beginSubpath()) words_[command_] |= kPathClose;
    current_ = start_;
    open_ = moved_ = false;
    return *this;
}

MMPathBuilder& MMPathBuilder::moveBy(Fixed dx, Fixed dy)
{
    const MMPoint2D p = relative(dx, dy);
    return moveTo(p.x, p.y);
}

MMPathBuilder& MMPathBuilder::lineBy(Fixed dx, Fixed dy)
{
    const MMPoint2D p = relative(dx, dy);
    return lineTo(p.x, p.y);
}

MMPathBuilder& MMPathBuilder::quadBy(Fixed cdx, Fixed cdy, Fixed dx, Fixed dy)
{
    const MMPoint2D c = relative(cdx, cdy);
    const MMPoint2D p = relative(dx, dy);
    return quadTo(c.x, c.y, p.x, p.y);
}

MMPathBuilder& MMPathBuilder::cubicBy(Fixed cdx1, Fixed cdy1, Fixed cdx2, Fixed cdy2, Fixed dx,
                                      Fixed dy)
{
    const MMPoint2D c1 = relative(cdx1, cdy1);
    const MMPoint2D c2 = relative(cdx2, cdy2);
    const MMPoint2D p = relative(dx, dy);
    return cubicTo(c1.x, c1.y, c2.x, c2.y, p.x, p.y);
}

MMPathBuilder& MMPathBuilder::arcBy(Fixed rx, Fixed ry, Degrees rotation, bool large,
                                    bool increasing, Fixed dx, Fixed dy)
{
    const MMPoint2D p = relative(dx, dy);
    return arcTo(rx, ry, rotation, large, increasing, p.x, p.y);
}

MMPathBuilder& MMPathBuilder::rect(Fixed x, Fixed y, Fixed width, Fixed height)
{
    const Fixed right = sum(x, width);
    const Fixed bottom = sum(y, height);
    return moveTo(x, y).lineTo(right, y).lineTo(right, bottom).lineTo(x, bottom).close();
}

MMPathBuilder& MMPathBuilder::circle(Fixed cx, Fixed cy, Fixed radius)
{
    if (radius <= 0) return *this;
    moveTo(sum(cx, radius), cy);
    addCurves(circleCurves({cx, cy}, radius));
    return close();
}

MMPoint2D MMPathBuilder::relative(Fixed dx, Fixed dy) const
{
    return {sum(current_.x, dx), sum(current_.y, dy)};
}

} // namespace Graphics2D
} // namespace KAVO
