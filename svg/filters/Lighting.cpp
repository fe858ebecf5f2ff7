// SPDX-License-Identifier: MIT
#include "svg/filters/Lighting.h"

#include <climits>

namespace KAVO {
namespace Svg {

namespace {

Vector operator-(const Vector& a, const Vector& b)
{
    return {a.x - b.x, a.y - b.y, a.z - b.z};
}

double dot(const Vector& a, const Vector& b)
{
    return a.x * b.x + a.y * b.y + a.z * b.z;
}

// Of length 1, or 0 when it has none.
Vector normalised(const Vector& v)
{
    const double square = dot(v, v);
    const double scale = square > 0 ? 1 / std::sqrt(square) : 0;
    return {v.x * scale, v.y * scale, v.z * scale};
}

class Lit : public Effect {
public:
    explicit Lit(const Lighting& lighting)
        : lighting_(lighting), axis_(normalised(lighting.light.pointsAt - lighting.light.place))
    {
    }

    double cost() const override { return 4; }
    PixelArea needs(const PixelArea& wanted) const override { return wanted.widened(1, 1); }

    void apply(const std::vector<const FilterImage*>& inputs, FilterImage& result) const override
    {
        const PixelArea& area = result.area();
        const Texel colour = texelOf(lighting_.colour | 0xFF000000, result.isLinear());
        HeightRows heights(*inputs[0], area, lighting_.edges);
        for (int y = area.top; y < area.bottom; ++y) {
            heights.moveTo(y);
            Texel* to = result.row(y);
            for (int x = area.left; x < area.right; ++x)
                *to++ = lit(heights, x, y, colour);
        }
    }

private:
    // The alphas of three rows, with a column more on both sides. Where the surface ends, the row
    // or column that is its last takes the place of the next.
    class HeightRows {
    public:
        HeightRows(const FilterImage& image, const PixelArea& area, const PixelArea& edges)
            : image_(image), edges_(edges), left_(area.left - 1)
        {
            for (Row& row : rows_)
                row.resize(static_cast<size_t>(area.width()) + 2);
        }

        void moveTo(int y)
        {
            if (y == middle_ + 1) {
                std::swap(rows_[0], rows_[1]);
                std::swap(rows_[1], rows_[2]);
            } else {
                read(y - 1, rows_[0]);
                read(y, rows_[1]);
            }
            read(y + 1, rows_[2]);
            middle_ = y;
        }

        // dx and dy: -1 to 1
        int32_t at(int x, int dx, int dy) const
        {
            const int row = dy + 1;
            const int column = x + dx - left_;
            return rows_[static_cast<size_t>(row)][static_cast<size_t>(column)];
        }

    private:
        using Row = std::vector<uint16_t>;

        void read(int y, Row& row) const
        {
            const int inside = std::clamp(y, edges_.top, edges_.bottom - 1);
            int x = left_;
            for (uint16_t& alpha : row)
                alpha = image_.at(std::clamp(x++, edges_.left, edges_.right - 1), inside)[kAlpha];
        }

        const FilterImage& image_;
        const PixelArea& edges_;
        int left_;
        int middle_ = INT_MIN; // the row in the middle of the three
        std::array<Row, 3> rows_;
    };

    Texel lit(const HeightRows& heights, int x, int y, const Texel& colour) const
    {
        const double height = lighting_.surfaceScale * heights.at(x, 0, 0) / 65535;
        const Vector point{x + 0.5, y + 0.5, height};
        const Light& light = lighting_.light;
        const Vector towards =
            light.kind == Light::Distant ? light.place : normalised(light.place - point);
        const double strength = strengthOf(towards) * reflected(normal(heights, x, y), towards);
        Texel result;
        uint16_t most = 0;
        for (size_t i = 0; i < kAlpha; ++i) {
            const double value = std::clamp(strength * colour[i], 0.0, 65535.0);
            result[i] = static_cast<uint16_t>(value + 0.5);
            most = std::max(most, result[i]);
        }
        result[kAlpha] = lighting_.specular ? most : uint16_t{65535};
        return result;
    }

    // Of a spot: less away from its axis, nothing outside of its cone.
    double strengthOf(const Vector& towards) const
    {
        if (lighting_.light.kind != Light::Spot) return 1;
        const double cosine = -dot(towards, axis_);
        if (cosine <= 0 || cosine < lighting_.light.leastCosine) return 0;
        return std::pow(cosine, lighting_.light.exponent);
    }

    // The eye is far above.
    double reflected(const Vector& normal, const Vector& towards) const
    {
        if (!lighting_.specular) return std::max(0.0, lighting_.constant * dot(normal, towards));
        const double cosine = dot(normal, normalised({towards.x, towards.y, towards.z + 1}));
        return cosine > 0 ? lighting_.constant * std::pow(cosine, lighting_.exponent) : 0;
    }

    // From the slopes across the pixels beside and above it; where one is missing, the pixel itself
    // takes its place, and the row or column beyond the edge has no weight. The standard counts
    // slopes twice.
    Vector normal(const HeightRows& heights, int x, int y) const
    {
        const PixelArea& edges = lighting_.edges;
        const int toLeft = x > edges.left ? 1 : 0;
        const int toRight = x + 1 < edges.right ? 1 : 0;
        const int above = y > edges.top ? 1 : 0;
        const int below = y + 1 < edges.bottom ? 1 : 0;
        const auto acrossRow = [&](int dy) { return heights.at(x, 1, dy) - heights.at(x, -1, dy); };
        const auto downColumn = [&](int dx) {
            return heights.at(x, dx, 1) - heights.at(x, dx, -1);
        };
        const int32_t across = above * acrossRow(-1) + 2 * acrossRow(0) + below * acrossRow(1);
        const int32_t down = toLeft * downColumn(-1) + 2 * downColumn(0) + toRight * downColumn(1);
        const int acrossWeight = (above + 2 + below) * (toLeft + toRight);
        const int downWeight = (toLeft + 2 + toRight) * (above + below);
        const double scale = -2 * lighting_.surfaceScale / 65535;
        return normalised({acrossWeight > 0 ? scale * across / acrossWeight : 0,
                           downWeight > 0 ? scale * down / downWeight : 0, 1});
    }

    Lighting lighting_;
    Vector axis_; // of a spot
};

} // namespace

EffectPointer makeLighting(const Lighting& lighting)
{
    return std::make_unique<Lit>(lighting);
}

} // namespace Svg
} // namespace KAVO
