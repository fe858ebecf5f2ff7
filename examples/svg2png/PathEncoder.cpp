// SPDX-License-Identifier: MIT
#include "svg2png/PathEncoder.h"

using namespace KAVO;

namespace {

constexpr uint32_t kPoints = 0u << 28;
constexpr uint32_t kCurves = 1u << 28;
constexpr uint32_t kEndOfSubpath = 1u << 30;
constexpr uint32_t kClosed = 1u << 31;
constexpr uint32_t kMostSubpaths = 0xFFFF;

constexpr double kTolerance = 1.0 / 16; // pixels between a curve and the chord that replaces it
constexpr double kMostPieces = 64;

// Writes commands, joining runs of the same kind.
class Encoder {
public:
    explicit Encoder(const PathSpace& space) : space_(space), words_{0} {}

    void add(const Outline::Segment& segment);
    std::vector<uint32_t> finish();

private:
    void begin(uint32_t kind);
    void put(Point p);
    void putCurve(Point p0, Point c1, Point c2, Point p3);
    void endSubpath(uint32_t closed);

    const PathSpace& space_;
    std::vector<uint32_t> words_;
    size_t command_ = 0; // index of the current command word, 0: none in this subpath
    uint32_t kind_ = kPoints;
    uint32_t subpaths_ = 0;
    uint32_t segments_ = 0;
    Point current_;
};

void Encoder::begin(uint32_t kind)
{
    if (command_ == 0 || kind_ != kind) {
        command_ = words_.size();
        kind_ = kind;
        words_.push_back(kind);
        segments_ += kind == kPoints;
    }
    ++words_[command_];
    segments_ += kind == kCurves;
}

void Encoder::put(Point p)
{
    const MMPoint2D q = space_.point(p);
    words_.push_back(static_cast<uint32_t>(q.x));
    words_.push_back(static_cast<uint32_t>(q.y));
}

// A curve stays within an eighth of its largest second derivative of its chord, and cutting it into
// n equal pieces divides that by n * n.
void Encoder::putCurve(Point p0, Point c1, Point c2, Point p3)
{
    const Point bend1 = p0 - c1 * 2 + c2;
    const Point bend2 = c1 - c2 * 2 + p3;
    const double bend =
        std::max(std::hypot(bend1.x, bend1.y), std::hypot(bend2.x, bend2.y)) * space_.pixelSize;
    const int pieces = static_cast<int>(
        std::clamp(std::ceil(std::sqrt(0.75 * bend / kTolerance)), 1.0, kMostPieces));
    for (int left = pieces; left > 0; --left) {
        const double t = 1.0 / left; // the first of the pieces that are left
        const Point a = p0 + (c1 - p0) * t;
        const Point b = c1 + (c2 - c1) * t;
        const Point c = c2 + (p3 - c2) * t;
        const Point ab = a + (b - a) * t;
        const Point bc = b + (c - b) * t;
        const Point middle = left == 1 ? p3 : ab + (bc - ab) * t;
        begin(kCurves);
        put(a);
        put(ab);
        put(middle);
        p0 = middle;
        c1 = bc;
        c2 = c;
    }
}

void Encoder::endSubpath(uint32_t closed)
{
    if (command_ == 0) return;
    words_[command_] |= kEndOfSubpath | closed;
    command_ = 0;
    ++subpaths_;
}

void Encoder::add(const Outline::Segment& segment)
{
    if (segment.verb == Outline::Move) endSubpath(0);
    if (subpaths_ == kMostSubpaths) return;
    switch (segment.verb) {
    case Outline::Move:
    case Outline::Line:
        begin(kPoints);
        put(segment.points[0]);
        current_ = segment.points[0];
        break;
    case Outline::Curve:
        putCurve(current_, segment.points[0], segment.points[1], segment.points[2]);
        current_ = segment.points[2];
        break;
    case Outline::Close:
        endSubpath(kClosed);
        break;
    }
}

std::vector<uint32_t> Encoder::finish()
{
    endSubpath(0);
    words_[0] = subpaths_ | std::min<uint32_t>(segments_, 0xFFFF) << 16;
    return std::move(words_);
}

} // namespace

Fixed toFixed(double value)
{
    constexpr double kLimit = 32767.0;
    const double notBelow = value > -kLimit ? value : -kLimit; // also when it is not a number
    return static_cast<Fixed>(std::lround(std::min(notBelow, kLimit) * 65536));
}

std::optional<PathSpace> PathSpace::make(const Affine& userToDevice, Point pictureCentre)
{
    const std::optional<Affine> inverse = userToDevice.inverse();
    if (!inverse || !inverse->isFinite()) return std::nullopt;
    int exponent = 0;
    std::frexp(userToDevice.norm(), &exponent);
    PathSpace space;
    space.scale = std::ldexp(1.0, exponent);
    space.origin = inverse->map(pictureCentre);
    space.pixelSize = userToDevice.norm();
    space.transform = {toFixed(userToDevice.a / space.scale),
                       toFixed(userToDevice.b / space.scale),
                       toFixed(userToDevice.c / space.scale),
                       toFixed(userToDevice.d / space.scale),
                       toFixed(pictureCentre.x),
                       toFixed(pictureCentre.y)};
    return space;
}

Fixed PathSpace::length(double userLength) const
{
    return toFixed(std::clamp(userLength * scale, 0.0, kReach));
}

MMPoint2D PathSpace::point(Point user) const
{
    const Point p = (user - origin) * scale;
    const auto held = [](double v) { return toFixed(std::max(-kReach, std::min(kReach, v))); };
    return {held(p.x), held(p.y)};
}

std::vector<uint32_t> encodePath(const Outline& outline, const PathSpace& space)
{
    Encoder encoder(space);
    for (const Outline::Segment& segment : outline.segments())
        encoder.add(segment);
    return encoder.finish();
}
