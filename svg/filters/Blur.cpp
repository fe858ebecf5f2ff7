// SPDX-License-Identifier: MIT
// Gaussian blur: rows first, then columns. Small deviations are convolved with the curve itself;
// from 2 pixels on three boxes follow one another, whose running sums cost the same for any size.
#include "svg/filters/Effect.h"

namespace KAVO {
namespace Svg {

namespace {

// Pixels of deviation.
constexpr double kLeast = 0.2; // below, no neighbour weighs as much as one of 65536
constexpr double kLeastOfBoxes = 2;

// One direction of a blur.
class LineBlur {
public:
    explicit LineBlur(double deviation)
    {
        if (deviation < kLeast) return;
        if (deviation >= kLeastOfBoxes) {
            // The width of boxes whose convolution comes nearest to the curve.
            const double pi = std::acos(-1.0);
            box_ = static_cast<int>(deviation * 3 * std::sqrt(2 * pi) / 4 + 0.5);
            // Those of an even width lie half a pixel to the left and to the right, and the third
            // is wider by one, so that the middle stays where it is.
            third_ = box_ % 2 == 0 ? box_ + 1 : box_;
            reach_ = (2 * box_ + third_ - 3) / 2;
            return;
        }
        setWeights(deviation);
    }

    int reach() const { return reach_; }

    // Fills to[0, count) from a line that begins reach() texels before it and ends as many after
    // it. Both lines are used up.
    void apply(std::vector<Texel>& from, std::vector<Texel>& to, size_t count) const
    {
        if (reach_ == 0)
            std::copy_n(from.begin(), count, to.begin());
        else if (box_ == 0)
            convolve(from, to, count);
        else
            boxes(from, to, count);
    }

private:
    void setWeights(double deviation)
    {
        reach_ = static_cast<int>(std::ceil(deviation * 3));
        double sum = 0;
        std::vector<double> curve;
        for (int i = -reach_; i <= reach_; ++i) {
            curve.push_back(std::exp(-i * i / (2 * deviation * deviation)));
            sum += curve.back();
        }
        uint32_t given = 0;
        for (const double value : curve) {
            weights_.push_back(static_cast<uint32_t>(value / sum * 65536));
            given += weights_.back();
        }
        weights_[static_cast<size_t>(reach_)] += 65536 - given; // so that nothing is lost
    }

    void convolve(const std::vector<Texel>& from, std::vector<Texel>& to, size_t count) const
    {
        for (size_t i = 0; i < count; ++i) {
            std::array<uint32_t, 4> sums = {0x7FFF, 0x7FFF, 0x7FFF, 0x7FFF};
            for (size_t k = 0; k < weights_.size(); ++k) {
                for (size_t channel = 0; channel < 4; ++channel)
                    sums[channel] += weights_[k] * from[i + k][channel];
            }
            for (size_t channel = 0; channel < 4; ++channel)
                to[i][channel] = static_cast<uint16_t>(sums[channel] >> 16);
        }
    }

    // Each box shortens the line by its width less one.
    void boxes(std::vector<Texel>& from, std::vector<Texel>& to, size_t count) const
    {
        const auto width = static_cast<size_t>(box_);
        const auto third = static_cast<size_t>(third_);
        box(from, to, count + third - 1 + width - 1, width);
        box(to, from, count + third - 1, width);
        box(from, to, count, third);
    }

    // to[i] becomes the mean of width texels from i on.
    static void box(const std::vector<Texel>& from, std::vector<Texel>& to, size_t count,
                    size_t width)
    {
        const uint64_t share = ((uint64_t{1} << 32) + width / 2) / width;
        std::array<uint32_t, 4> sums = {};
        for (size_t i = 0; i + 1 < width; ++i)
            for (size_t channel = 0; channel < 4; ++channel)
                sums[channel] += from[i][channel];
        for (size_t i = 0; i < count; ++i) {
            for (size_t channel = 0; channel < 4; ++channel) {
                sums[channel] += from[i + width - 1][channel];
                to[i][channel] = static_cast<uint16_t>((sums[channel] * share + 0x7FFFFFFF) >> 32);
                sums[channel] -= from[i][channel];
            }
        }
    }

    int reach_ = 0;
    int box_ = 0; // texels in each of the first two boxes; 0: by weights
    int third_ = 0;
    std::vector<uint32_t> weights_; // which sum up to 65536
};

class Blur : public Effect {
public:
    Blur(double deviationX, double deviationY) : rows_(deviationX), columns_(deviationY) {}

    PixelArea needs(const PixelArea& wanted) const override
    {
        return wanted.widened(rows_.reach(), columns_.reach());
    }

    PixelArea fills(const std::vector<PixelArea>& inputs, const PixelArea&) const override
    {
        return inputs[0].widened(rows_.reach(), columns_.reach());
    }

    void apply(const std::vector<const FilterImage*>& inputs, FilterImage& result) const override
    {
        const FilterImage& input = *inputs[0];
        const PixelArea& area = result.area();
        // Rows that the columns of the result reach.
        PixelArea between = area.widened(0, columns_.reach()).common(input.area());
        between.left = area.left;
        between.right = area.right;
        if (between.empty()) return;
        FilterImage blurred(between, result.isLinear());

        const int reach = rows_.reach();
        std::vector<Texel> line(static_cast<size_t>(area.width() + 2 * reach));
        std::vector<Texel> mean(line.size());
        const PixelArea read = between.widened(reach, 0).common(input.area());
        for (int y = between.top; y < between.bottom; ++y) {
            std::fill(line.begin(), line.end(), Texel{});
            if (!read.empty())
                std::copy_n(input.row(y) + (read.left - input.area().left), read.width(),
                            line.begin() + (read.left - (area.left - reach)));
            rows_.apply(line, mean, static_cast<size_t>(area.width()));
            std::copy_n(mean.begin(), area.width(), blurred.row(y));
        }
        blurColumns(blurred, result);
    }

private:
    void blurColumns(const FilterImage& blurred, FilterImage& result) const
    {
        const PixelArea& area = result.area();
        const int reach = columns_.reach();
        std::vector<Texel> line(static_cast<size_t>(area.height() + 2 * reach));
        std::vector<Texel> mean(line.size());
        for (int x = 0; x < area.width(); ++x) {
            std::fill(line.begin(), line.end(), Texel{});
            for (int y = blurred.area().top; y < blurred.area().bottom; ++y)
                line[static_cast<size_t>(y - (area.top - reach))] = blurred.row(y)[x];
            columns_.apply(line, mean, static_cast<size_t>(area.height()));
            for (int y = area.top; y < area.bottom; ++y)
                result.row(y)[x] = mean[static_cast<size_t>(y - area.top)];
        }
    }

    LineBlur rows_;
    LineBlur columns_;
};

} // namespace

EffectPointer makeBlur(double deviationX, double deviationY)
{
    return std::make_unique<Blur>(std::min(deviationX, kLargestDeviation),
                                  std::min(deviationY, kLargestDeviation));
}

} // namespace Svg
} // namespace KAVO
