// SPDX-License-Identifier: MIT
// Erosion and dilation: rows first, then columns. The window's extreme is that of two runs: from
// the window's start to the end of the block of its length that it begins in, and from the start of
// the next block to its end, so that the cost does not depend on the radius.
#include "svg/filters/Effect.h"

namespace KAVO {
namespace Svg {

namespace {

class Morphology : public Effect {
public:
    Morphology(bool dilates, int radiusX, int radiusY)
        : dilates_(dilates), radiusX_(radiusX), radiusY_(radiusY)
    {
    }

    PixelArea needs(const PixelArea& wanted) const override
    {
        return wanted.widened(radiusX_, radiusY_);
    }

    PixelArea fills(const std::vector<PixelArea>& inputs, const PixelArea&) const override
    {
        return dilates_ ? inputs[0].widened(radiusX_, radiusY_) : inputs[0];
    }

    void apply(const std::vector<const FilterImage*>& inputs, FilterImage& result) const override
    {
        const PixelArea& area = result.area();
        FilterImage rows(area.widened(0, radiusY_), result.isLinear());
        Line line(area.width(), radiusX_);
        for (int y = rows.area().top; y < rows.area().bottom; ++y) {
            size_t place = 0;
            for (int x = area.left - radiusX_; x < area.right + radiusX_; ++x)
                line.texels[place++] = inputs[0]->at(x, y);
            extremes(line, rows.row(y), 1);
        }
        Line column(area.height(), radiusY_);
        for (int x = 0; x < area.width(); ++x) {
            for (int y = rows.area().top; y < rows.area().bottom; ++y)
                column.texels[static_cast<size_t>(y - rows.area().top)] = rows.row(y)[x];
            extremes(column, result.row(area.top) + x, static_cast<size_t>(area.width()));
        }
    }

private:
    struct Line {
        Line(int length, int radius)
            : count(static_cast<size_t>(length)), window(static_cast<size_t>(2 * radius + 1)),
              texels(count + window - 1), ahead(texels.size()), behind(texels.size())
        {
        }
        size_t count;              // of results
        size_t window;             // texels that each is taken from
        std::vector<Texel> texels; // the first window begins with the first of them
        std::vector<Texel> ahead;  // extreme from here to the end of the block
        std::vector<Texel> behind; // extreme from the start of the block to here
    };

    Texel extreme(const Texel& a, const Texel& b) const
    {
        Texel result;
        for (size_t i = 0; i < 4; ++i)
            result[i] = dilates_ ? std::max(a[i], b[i]) : std::min(a[i], b[i]);
        return result;
    }

    void extremes(Line& line, Texel* to, size_t step) const
    {
        const std::vector<Texel>& texels = line.texels;
        for (size_t i = 0; i < texels.size(); ++i)
            line.behind[i] =
                i % line.window == 0 ? texels[i] : extreme(line.behind[i - 1], texels[i]);
        for (size_t i = texels.size(); i-- > 0;) {
            const bool last = i + 1 == texels.size() || (i + 1) % line.window == 0;
            line.ahead[i] = last ? texels[i] : extreme(line.ahead[i + 1], texels[i]);
        }
        for (size_t i = 0; i < line.count; ++i)
            to[i * step] = extreme(line.ahead[i], line.behind[i + line.window - 1]);
    }

    bool dilates_;
    int radiusX_;
    int radiusY_;
};

} // namespace

EffectPointer makeMorphology(bool dilates, int radiusX, int radiusY)
{
    return std::make_unique<Morphology>(dilates, radiusX, radiusY);
}

} // namespace Svg
} // namespace KAVO
