// SPDX-License-Identifier: MIT
#include "svg/filters/Turbulence.h"

namespace KAVO {
namespace Svg {

namespace {

constexpr size_t kCells = 256;  // of the lattice before it repeats
constexpr double kShift = 4096; // keeps coordinates near the origin above 0
constexpr double kFarthest = 1e9;

// The generator by Park and Miller, as Schrage computes it.
class Random {
public:
    explicit Random(int64_t seed)
    {
        if (seed <= 0) seed = -(seed % (kModulus - 1)) + 1;
        state_ = std::min(seed, kModulus - 1);
    }
    int64_t next()
    {
        state_ = state_ * 16807 % kModulus;
        return state_;
    }

private:
    static constexpr int64_t kModulus = 2147483647;
    int64_t state_;
};

// A corner for each of 256 cells by its column and row, and a gradient there for each channel.
class Lattice {
public:
    explicit Lattice(int64_t seed)
    {
        Random random(seed);
        for (auto& channel : gradients_)
            for (Point& gradient : channel) {
                const auto part = [&] {
                    return static_cast<double>(static_cast<uint64_t>(random.next()) %
                                               (2 * kCells)) /
                               kCells -
                           1;
                };
                gradient.x = part();
                gradient.y = part();
                const double length = std::hypot(gradient.x, gradient.y);
                if (length > 0) gradient = gradient * (1 / length);
            }
        for (size_t i = 0; i < kCells; ++i)
            order_[i] = i;
        for (size_t i = kCells - 1; i > 0; --i)
            std::swap(order_[i], order_[static_cast<size_t>(random.next()) % kCells]);
    }

    size_t corner(int64_t column, int64_t row) const
    {
        const size_t first = order_[static_cast<size_t>(column) % kCells];
        return order_[(first + static_cast<size_t>(row)) % kCells];
    }
    const Point& gradient(size_t channel, size_t corner) const
    {
        return gradients_[channel][corner];
    }

private:
    std::array<size_t, kCells> order_;
    std::array<std::array<Point, kCells>, 4> gradients_;
};

// Cells after which columns or rows begin again, for noise that fits together.
struct Period {
    int64_t length = 0; // 0: never
    int64_t end = 0;    // from this cell on

    void next() // octave
    {
        length *= 2;
        end = 2 * end - static_cast<int64_t>(kShift);
    }
    int64_t operator()(int64_t cell) const
    {
        return length > 0 && cell >= end ? cell - length : cell;
    }
};

double curved(double t)
{
    return t * t * (3 - 2 * t);
}

double between(double share, double a, double b)
{
    return a + share * (b - a);
}

class Noise : public Effect {
public:
    explicit Noise(const Turbulence& turbulence) : t_(turbulence), lattice_(turbulence.seed)
    {
        if (!t_.stitches) return;
        columns_ = fit(t_.frequencyX, t_.tile.left, t_.tile.width());
        rows_ = fit(t_.frequencyY, t_.tile.top, t_.tile.height());
    }

    double cost() const override { return 4.0 * t_.octaves; }

    void apply(const std::vector<const FilterImage*>&, FilterImage& result) const override
    {
        const PixelArea& area = result.area();
        for (int y = area.top; y < area.bottom; ++y)
            for (int x = area.left; x < area.right; ++x)
                result.row(y)[x - area.left] =
                    at(t_.toUser.map({static_cast<double>(x), static_cast<double>(y)}));
    }

private:
    // Changes the frequency to the nearest, by its ratio, that gives a tile whole cells.
    static Period fit(double& frequency, double start, double length)
    {
        if (!(length > 0)) return {};
        if (frequency > 0) {
            const double low = std::floor(length * frequency) / length;
            const double high = std::ceil(length * frequency) / length;
            frequency = low > 0 && frequency / low < high / frequency ? low : high;
        }
        const auto cells = [](double v) {
            return static_cast<int64_t>(std::clamp(v, -kFarthest, kFarthest));
        };
        Period period;
        period.length = cells(length * frequency + 0.5);
        period.end = cells(start * frequency + kShift) + period.length;
        return period;
    }

    Texel at(const Point& user) const
    {
        std::array<double, 4> sums = {};
        Point place{user.x * t_.frequencyX, user.y * t_.frequencyY};
        Period columns = columns_;
        Period rows = rows_;
        double share = 1;
        for (int octave = 0; octave < t_.octaves; ++octave) {
            const std::array<double, 4> values = noise(place, columns, rows);
            for (size_t i = 0; i < 4; ++i)
                sums[i] += share * (t_.fractal ? values[i] : std::fabs(values[i]));
            place = place * 2;
            share /= 2;
            columns.next();
            rows.next();
        }
        Texel result;
        for (size_t i = 0; i < 4; ++i) {
            const double value = t_.fractal ? (sums[i] + 1) / 2 : sums[i];
            result[i] = clamped(std::llround(65535 * value));
        }
        for (size_t i = 0; i < kAlpha; ++i)
            result[i] = times(result[i], result[kAlpha]);
        return result;
    }

    // Of all channels, -1 to 1.
    std::array<double, 4> noise(const Point& place, const Period& columns, const Period& rows) const
    {
        const double x = std::clamp(place.x, -kFarthest, kFarthest) + kShift;
        const double y = std::clamp(place.y, -kFarthest, kFarthest) + kShift;
        const auto column = static_cast<int64_t>(std::floor(x));
        const auto row = static_cast<int64_t>(std::floor(y));
        const double dx = x - static_cast<double>(column);
        const double dy = y - static_cast<double>(row);
        const size_t corners[4] = {lattice_.corner(columns(column), rows(row)),
                                   lattice_.corner(columns(column + 1), rows(row)),
                                   lattice_.corner(columns(column), rows(row + 1)),
                                   lattice_.corner(columns(column + 1), rows(row + 1))};
        const double shareX = curved(dx);
        const double shareY = curved(dy);
        std::array<double, 4> values;
        for (size_t channel = 0; channel < 4; ++channel) {
            const auto towards = [&](size_t corner, double fromX, double fromY) {
                const Point& gradient = lattice_.gradient(channel, corners[corner]);
                return gradient.x * fromX + gradient.y * fromY;
            };
            const double above = between(shareX, towards(0, dx, dy), towards(1, dx - 1, dy));
            const double below =
                between(shareX, towards(2, dx, dy - 1), towards(3, dx - 1, dy - 1));
            values[channel] = between(shareY, above, below);
        }
        return values;
    }

    Turbulence t_;
    Lattice lattice_;
    Period columns_;
    Period rows_;
};

} // namespace

EffectPointer makeTurbulence(const Turbulence& turbulence)
{
    return std::make_unique<Noise>(turbulence);
}

} // namespace Svg
} // namespace KAVO
