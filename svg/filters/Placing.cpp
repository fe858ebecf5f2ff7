// SPDX-License-Identifier: MIT
// Primitives that leave colours as they are: offset, merge, flood, tile, and the alpha alone.
#include "svg/filters/Effect.h"

namespace KAVO {
namespace Svg {

namespace {

class Offset : public Effect {
public:
    Offset(int dx, int dy) : dx_(dx), dy_(dy) {}

    PixelArea needs(const PixelArea& wanted) const override { return wanted.moved(-dx_, -dy_); }
    PixelArea fills(const std::vector<PixelArea>& inputs, const PixelArea&) const override
    {
        return inputs[0].moved(dx_, dy_);
    }
    bool keepsColours() const override { return true; }

    void apply(const std::vector<const FilterImage*>& inputs, FilterImage& result) const override
    {
        const FilterImage& input = *inputs[0];
        const PixelArea common = result.area().common(input.area().moved(dx_, dy_));
        if (common.empty()) return;
        for (int y = common.top; y < common.bottom; ++y)
            std::copy_n(input.row(y - dy_) + (common.left - dx_ - input.area().left),
                        common.width(), result.row(y) + (common.left - result.area().left));
    }

private:
    int dx_;
    int dy_;
};

class Merge : public Effect {
public:
    PixelArea fills(const std::vector<PixelArea>& inputs, const PixelArea&) const override
    {
        PixelArea all;
        for (const PixelArea& input : inputs)
            all = all.around(input);
        return all;
    }

    void apply(const std::vector<const FilterImage*>& inputs, FilterImage& result) const override
    {
        for (const FilterImage* input : inputs) {
            const PixelArea common = result.area().common(input->area());
            if (common.empty()) continue;
            for (int y = common.top; y < common.bottom; ++y)
                merge(input->row(y) + (common.left - input->area().left),
                      result.row(y) + (common.left - result.area().left), common.width());
        }
    }

private:
    static void merge(const Texel* above, Texel* below, int count)
    {
        for (; count > 0; --count, ++above, ++below) {
            const uint32_t rest = 65535u - (*above)[kAlpha];
            for (size_t channel = 0; channel < 4; ++channel)
                (*below)[channel] = clamped((*above)[channel] + times((*below)[channel], rest));
        }
    }
};

class Flood : public Effect {
public:
    explicit Flood(uint32_t argb) : argb_(argb) {}

    void apply(const std::vector<const FilterImage*>&, FilterImage& result) const override
    {
        std::fill(result.texels().begin(), result.texels().end(),
                  texelOf(argb_, result.isLinear()));
    }

private:
    uint32_t argb_;
};

class Alpha : public Effect {
public:
    PixelArea fills(const std::vector<PixelArea>& inputs, const PixelArea&) const override
    {
        return inputs[0];
    }

    void apply(const std::vector<const FilterImage*>& inputs, FilterImage& result) const override
    {
        const PixelArea common = result.area().common(inputs[0]->area());
        for (int y = common.top; y < common.bottom; ++y)
            for (int x = common.left; x < common.right; ++x)
                result.row(y)[x - result.area().left][kAlpha] = inputs[0]->at(x, y)[kAlpha];
    }
};

class Tile : public Effect {
public:
    explicit Tile(const Box& tile) : tile_(tile) {}

    PixelArea needs(const PixelArea&) const override { return areaAround(tile_); }
    bool keepsColours() const override { return true; }

    void apply(const std::vector<const FilterImage*>& inputs, FilterImage& result) const override
    {
        const PixelArea& area = result.area();
        std::vector<int> columns;
        for (int x = area.left; x < area.right; ++x)
            columns.push_back(source(x, tile_.left, tile_.width()));
        for (int y = area.top; y < area.bottom; ++y) {
            const int row = source(y, tile_.top, tile_.height());
            for (size_t i = 0; i < columns.size(); ++i)
                result.row(y)[i] = inputs[0]->at(columns[i], row);
        }
    }

private:
    // The pixel in the first tile that stands for this one.
    static int source(int pixel, double first, double length)
    {
        const double middle = pixel + 0.5 - first;
        return static_cast<int>(std::floor(first + middle - length * std::floor(middle / length)));
    }

    Box tile_;
};

} // namespace

EffectPointer makeOffset(int dx, int dy)
{
    return std::make_unique<Offset>(dx, dy);
}

EffectPointer makeMerge()
{
    return std::make_unique<Merge>();
}

EffectPointer makeFlood(uint32_t argb)
{
    return std::make_unique<Flood>(argb);
}

EffectPointer makeAlpha()
{
    return std::make_unique<Alpha>();
}

EffectPointer makeTile(const Box& tile)
{
    return std::make_unique<Tile>(tile);
}

} // namespace Svg
} // namespace KAVO
