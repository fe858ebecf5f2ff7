// SPDX-License-Identifier: MIT
// Filter primitives in double precision, each as its formula says it, pixel by pixel.
#pragma once

#include "svg/images/Picture.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

namespace FilterModel {

using Colour = std::array<double, 4>; // red, green, blue, alpha; premultiplied, 0 to 1

struct Image {
    int width = 0;
    int height = 0;
    std::vector<Colour> pixels;

    Image(int w, int h) : width(w), height(h), pixels(static_cast<size_t>(w * h)) {}
    explicit Image(const KAVO::Svg::Picture& picture) : Image(picture.width, picture.height)
    {
        for (size_t i = 0; i < pixels.size(); ++i)
            for (size_t c = 0; c < 4; ++c)
                pixels[i][c] = (picture.pixels[i] >> (c == 3 ? 24 : 16 - 8 * c) & 255) / 255.0;
    }
    Colour at(int x, int y) const
    {
        const bool inside = x >= 0 && y >= 0 && x < width && y < height;
        return inside ? pixels[static_cast<size_t>(y * width + x)] : Colour{};
    }
    // An image of the same size whose pixels are what the function gives for x and y.
    template <class Function>
    Image each(Function function) const
    {
        Image result(width, height);
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x)
                result.pixels[static_cast<size_t>(y * width + x)] = function(x, y);
        return result;
    }
};

inline double curved(double v, bool toLinear)
{
    if (toLinear) return v <= 0.04045 ? v / 12.92 : std::pow((v + 0.055) / 1.055, 2.4);
    return v <= 0.0031308 ? v * 12.92 : 1.055 * std::pow(v, 1 / 2.4) - 0.055;
}

// The function of colours that are not premultiplied.
template <class Function>
Colour separately(const Colour& colour, Function function)
{
    Colour c = colour;
    for (size_t i = 0; i < 3; ++i)
        c[i] = c[3] > 0 ? c[i] / c[3] : 0;
    c = function(c);
    for (double& channel : c)
        channel = std::clamp(channel, 0.0, 1.0);
    for (size_t i = 0; i < 3; ++i)
        c[i] *= c[3];
    return c;
}

inline Image converted(const Image& image, bool toLinear)
{
    return image.each([&](int x, int y) {
        return separately(image.at(x, y), [&](Colour c) {
            for (size_t i = 0; i < 3; ++i)
                c[i] = curved(c[i], toLinear);
            return c;
        });
    });
}

// The weighted mean along one axis, with weights from -reach to reach.
inline Image convolved(const Image& image, const std::vector<double>& weights, bool rows)
{
    const int reach = static_cast<int>(weights.size() / 2);
    return image.each([&](int x, int y) {
        Colour sum = {};
        for (int k = -reach; k <= reach; ++k) {
            const Colour c = rows ? image.at(x + k, y) : image.at(x, y + k);
            for (size_t i = 0; i < 4; ++i)
                sum[i] += c[i] * weights[static_cast<size_t>(k + reach)];
        }
        return sum;
    });
}

inline std::vector<double> gaussian(double deviation)
{
    std::vector<double> weights;
    double sum = 0;
    for (int k = -30; k <= 30; ++k) {
        weights.push_back(std::exp(-k * k / (2 * deviation * deviation)));
        sum += weights.back();
    }
    for (double& weight : weights)
        weight /= sum;
    return weights;
}

// The convolution of three boxes: of d pixels when d is odd, else two of d pixels, half a pixel to
// the left and to the right, and one of d + 1.
inline std::vector<double> threeBoxes(double deviation)
{
    const int d = static_cast<int>(deviation * 3 * std::sqrt(2 * std::acos(-1.0)) / 4 + 0.5);
    std::vector<double> weights(121);
    for (int i = 0; i < d; ++i)
        for (int j = 0; j < d; ++j)
            for (int k = 0; k < (d % 2 == 0 ? d + 1 : d); ++k) {
                const int first = d % 2 == 0 ? -d / 2 : -(d / 2);
                const int second = d % 2 == 0 ? -d / 2 + 1 : -(d / 2);
                const int place = first + i + second + j - d / 2 + k;
                weights[static_cast<size_t>(60 + place)] += 1.0 / d / d / (d % 2 == 0 ? d + 1 : d);
            }
    return weights;
}

inline Image blurred(const Image& image, double deviationX, double deviationY)
{
    const auto weights = [](double deviation) {
        if (deviation == 0) return std::vector<double>{1};
        return deviation < 2 ? gaussian(deviation) : threeBoxes(deviation);
    };
    return convolved(convolved(image, weights(deviationX), true), weights(deviationY), false);
}

inline Image over(const Image& above, const Image& below)
{
    return above.each([&](int x, int y) {
        Colour c = above.at(x, y);
        const double rest = 1 - c[3];
        for (size_t i = 0; i < 4; ++i)
            c[i] += below.at(x, y)[i] * rest;
        return c;
    });
}

inline Image moved(const Image& image, int dx, int dy)
{
    return image.each([&](int x, int y) { return image.at(x - dx, y - dy); });
}

// The shares of Porter and Duff by the two alphas.
template <class Above, class Below>
Image composed(const Image& above, const Image& below, Above shareAbove, Below shareBelow)
{
    return above.each([&](int x, int y) {
        const Colour a = above.at(x, y);
        const Colour b = below.at(x, y);
        Colour c;
        for (size_t i = 0; i < 4; ++i)
            c[i] = std::min(1.0, a[i] * shareAbove(b[3]) + b[i] * shareBelow(a[3]));
        return c;
    });
}

inline Image extreme(const Image& image, int radiusX, int radiusY, bool most)
{
    return image.each([&](int x, int y) {
        Colour c = image.at(x, y);
        for (int dy = -radiusY; dy <= radiusY; ++dy)
            for (int dx = -radiusX; dx <= radiusX; ++dx)
                for (size_t i = 0; i < 4; ++i) {
                    const double other = image.at(x + dx, y + dy)[i];
                    c[i] = most ? std::max(c[i], other) : std::min(c[i], other);
                }
        return c;
    });
}

} // namespace FilterModel
