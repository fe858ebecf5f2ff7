// SPDX-License-Identifier: MIT
// Filter primitives against a model in double precision.
#include "tests/svg/FilterScene.h"

using namespace KAVO::Svg;

namespace {

TEST(SvgFilters, BlursAreGaussianOrThreeBoxes)
{
    for (const auto& [x, y] :
         {std::pair{0.7, 0.7}, {1.9, 1.2}, {2.0, 2.0}, {2.5, 4.0}, {3.2, 0.0}, {0.0, 1.0}})
        expectModel("<feGaussianBlur stdDeviation='" + std::to_string(x) + " " + std::to_string(y) +
                        "'/>",
                    [x = x, y = y](const Image& i) { return FilterModel::blurred(i, x, y); });
}

TEST(SvgFilters, ColourMatrices)
{
    const auto matrix = [](const std::array<double, 20>& m) -> Model {
        return [=](const Image& image) {
            return image.each([&](int x, int y) {
                return FilterModel::separately(image.at(x, y), [&](const Colour& c) {
                    Colour result;
                    for (size_t i = 0; i < 4; ++i)
                        result[i] = m[5 * i] * c[0] + m[5 * i + 1] * c[1] + m[5 * i + 2] * c[2] +
                                    m[5 * i + 3] * c[3] + m[5 * i + 4];
                    return result;
                });
            });
        };
    };
    expectModel("<feColorMatrix values='.5 .2 0 0 .1  0 1.5 0 -.2 0  0 0 -1 0 1  0 0 0 .8 .1'/>",
                matrix({.5, .2, 0, 0, .1, 0, 1.5, 0, -.2, 0, 0, 0, -1, 0, 1, 0, 0, 0, .8, .1}));
    expectModel("<feColorMatrix type='saturate' values='0.4'/>", matrix({.2126 + .7874 * .4,
                                                                         .7152 - .7152 * .4,
                                                                         .0722 - .0722 * .4,
                                                                         0,
                                                                         0,
                                                                         .2126 - .2126 * .4,
                                                                         .7152 + .2848 * .4,
                                                                         .0722 - .0722 * .4,
                                                                         0,
                                                                         0,
                                                                         .2126 - .2126 * .4,
                                                                         .7152 - .7152 * .4,
                                                                         .0722 + .9278 * .4,
                                                                         0,
                                                                         0,
                                                                         0,
                                                                         0,
                                                                         0,
                                                                         1,
                                                                         0}));
    expectModel(
        "<feColorMatrix type='hueRotate' values='90'/>", // cosine 0, sine 1
        matrix({0, 0, 1, 0, 0, .356, .855, -.211, 0, 0, -.574, 1.430, .144, 0, 0, 0, 0, 0, 1, 0}));
    expectModel("<feColorMatrix type='luminanceToAlpha'/>",
                matrix({0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, .2126, .7152, .0722, 0, 0}));
    expectModel("<feColorMatrix values='1 2 3'/>", [](const Image& image) { return image; });
}

TEST(SvgFilters, CompositesOfTwoInputs)
{
    const auto one = [](double) { return 1.0; };
    const auto none = [](double) { return 0.0; };
    const auto inside = [](double alpha) { return alpha; };
    const auto outside = [](double alpha) { return 1 - alpha; };
    const auto expectComposite = [](const std::string& operation, auto above, auto below) {
        expectModel("<feOffset dx='5' dy='-3' result='o'/><feComposite in='o' "
                    "in2='SourceGraphic' " +
                        operation + "/>",
                    [=](const Image& image) {
                        return FilterModel::composed(FilterModel::moved(image, 5, -3), image, above,
                                                     below);
                    });
    };
    expectComposite("", one, outside);
    expectComposite("operator='in'", inside, none);
    expectComposite("operator='out'", outside, none);
    expectComposite("operator='atop'", inside, outside);
    expectComposite("operator='xor'", outside, outside);
    expectComposite("operator='lighter'", one, one);
    expectModel("<feOffset dx='4' result='o'/><feComposite in='SourceGraphic' in2='o' "
                "operator='arithmetic' k1='.7' k2='-.2' k3='.5' k4='.05'/>",
                [](const Image& image) {
                    const Image other = FilterModel::moved(image, 4, 0);
                    return image.each([&](int x, int y) {
                        Colour c;
                        for (size_t i = 0; i < 4; ++i) {
                            const double a = image.at(x, y)[i];
                            const double b = other.at(x, y)[i];
                            c[i] = std::clamp(.7 * a * b - .2 * a + .5 * b + .05, 0.0, 1.0);
                        }
                        for (size_t i = 0; i < 3; ++i)
                            c[i] = std::min(c[i], c[3]);
                        return c;
                    });
                });
}

TEST(SvgFilters, BlendsMixTheColours)
{
    const auto expectBlend = [](const std::string& mode, auto mixed) {
        expectModel(
            "<feOffset dx='6' dy='4' result='o'/><feBlend in='SourceGraphic' in2='o' mode='" +
                mode + "'/>",
            [=](const Image& above) {
                const Image below = FilterModel::moved(above, 6, 4);
                return above.each([&](int x, int y) {
                    const Colour s = above.at(x, y);
                    const Colour b = below.at(x, y);
                    Colour c;
                    c[3] = s[3] + b[3] - s[3] * b[3];
                    for (size_t i = 0; i < 3; ++i) {
                        const double both = s[3] * b[3];
                        const double m = both > 0 ? mixed(b[i] / b[3], s[i] / s[3]) : 0;
                        c[i] = s[i] * (1 - b[3]) + b[i] * (1 - s[3]) + both * m;
                    }
                    return c;
                });
            });
    };
    expectBlend("normal", [](double, double s) { return s; });
    expectBlend("nonsense", [](double, double s) { return s; });
    expectBlend("multiply", [](double b, double s) { return b * s; });
    expectBlend("screen", [](double b, double s) { return b + s - b * s; });
    expectBlend("darken", [](double b, double s) { return std::min(b, s); });
    expectBlend("lighten", [](double b, double s) { return std::max(b, s); });
    const auto hard = [](double b, double s) {
        return s <= 0.5 ? 2 * b * s : 2 * (b + s - b * s) - 1;
    };
    expectBlend("hard-light", hard);
    expectBlend("overlay", [&](double b, double s) { return hard(s, b); });
    expectBlend("difference", [](double b, double s) { return std::fabs(b - s); });
    expectBlend("exclusion", [](double b, double s) { return b + s - 2 * b * s; });
    expectBlend("color-dodge",
                [](double b, double s) { return b == 0 ? 0 : std::min(1.0, b / (1 - s)); });
    expectBlend("color-burn", [](double b, double s) {
        return b == 1 ? 1 : s == 0 ? 0 : 1 - std::min(1.0, (1 - b) / s);
    });
}

TEST(SvgFilters, ComponentTransfers)
{
    const auto expectTransfer = [](const std::string& function, auto value) {
        expectModel("<feComponentTransfer><feFuncG " + function + "/><feFuncA " + function +
                        "/></feComponentTransfer>",
                    [=](const Image& image) {
                        return image.each([&](int x, int y) {
                            return FilterModel::separately(image.at(x, y), [&](Colour c) {
                                c[1] = value(c[1]);
                                c[3] = value(c[3]);
                                return c;
                            });
                        });
                    });
    };
    expectTransfer("type='identity'", [](double v) { return v; });
    expectTransfer("type='linear' slope='.5' intercept='.3'", [](double v) { return v / 2 + .3; });
    expectTransfer("type='gamma' amplitude='.9' exponent='1.7' offset='.1'",
                   [](double v) { return .9 * std::pow(v, 1.7) + .1; });
    expectTransfer("type='table' tableValues='.2 1 .4'",
                   [](double v) { return v < .5 ? .2 + 1.6 * v : 1.6 - 1.2 * v; });
    expectTransfer("type='discrete' tableValues='.1 .9 .4'", [](double v) {
        return v < 1 / 3. ? .1 : v < 2 / 3. ? .9 : .4;
    });
    expectTransfer("type='table'", [](double v) { return v; });
}

TEST(SvgFilters, MorphologyTakesExtremes)
{
    for (const auto& [operation, most] : {std::pair{"erode", false}, {"dilate", true}})
        for (const auto& [radius, x, y] :
             {std::tuple{"2", 2, 2}, {"1 4", 1, 4}, {"0 3", 0, 3}, {"0", 0, 0}})
            expectModel("<feMorphology operator='" + std::string(operation) + "' radius='" +
                            radius + "'/>",
                        [x = x, y = y, most = most](const Image& image) {
                            return FilterModel::extreme(image, x, y, most);
                        });
}

TEST(SvgFilters, ShadowsLieBelow)
{
    expectModel("<feDropShadow dx='4' dy='3' stdDeviation='1.5' flood-color='#000' "
                "flood-opacity='.5'/>",
                [](const Image& image) {
                    const Image alpha = image.each([&](int x, int y) {
                        return Colour{0, 0, 0, image.at(x, y)[3] / 2};
                    });
                    const Image shadow = FilterModel::blurred(alpha, 1.5, 1.5);
                    return FilterModel::over(image, FilterModel::moved(shadow, 4, 3));
                });
}

TEST(SvgFilters, ConvolutionsByTheirMatrices)
{
    const std::array<double, 6> matrix = {1, -2, 0.5, 3, -1, 1.5}; // two rows; divided by 3
    const auto model = [&](const Image& image, int targetX, int targetY, double bias, auto at) {
        return image.each([&](int x, int y) {
            Colour c = {};
            for (int i = 0; i < 3; ++i)
                for (int j = 0; j < 2; ++j)
                    for (size_t k = 0; k < 4; ++k)
                        c[k] += at(image, x - targetX + i, y - targetY + j)[k] / 3 *
                                matrix[static_cast<size_t>(5 - i - 3 * j)];
            for (size_t k = 0; k < 4; ++k)
                c[k] = std::clamp(c[k] + bias * image.at(x, y)[3], 0.0, 1.0);
            for (size_t k = 0; k < 3; ++k)
                c[k] = std::min(c[k], c[3]);
            return c;
        });
    };
    const auto convolve = [](const std::string& attributes) {
        return "<feConvolveMatrix order='3 2' kernelMatrix='1 -2 .5 3 -1 1.5' " + attributes + "/>";
    };
    const auto none = [](const Image& image, int x, int y) { return image.at(x, y); };
    const auto duplicate = [](const Image& image, int x, int y) {
        return image.at(std::clamp(x, 0, kFilterSide - 1), std::clamp(y, 0, kFilterSide - 1));
    };
    const auto wrap = [](const Image& image, int x, int y) {
        return image.at((x + kFilterSide) % kFilterSide, (y + kFilterSide) % kFilterSide);
    };
    expectModel(convolve("edgeMode='none'"),
                [&](const Image& i) { return model(i, 1, 1, 0, none); });
    expectModel(convolve("edgeMode='none' targetX='2' targetY='0' bias='.2'"),
                [&](const Image& i) { return model(i, 2, 0, 0.2, none); });
    // Of what touches the edges.
    const std::string offset = "<feOffset dx='12' dy='-8'/>";
    expectModel(offset + convolve(""), [&](const Image& i) {
        return model(FilterModel::moved(i, 12, -8), 1, 1, 0, duplicate);
    });
    expectModel(offset + convolve("edgeMode='wrap'"), [&](const Image& i) {
        return model(FilterModel::moved(i, 12, -8), 1, 1, 0, wrap);
    });
    expectModel(
        "<feConvolveMatrix order='3 1' kernelMatrix='-1 1 2' preserveAlpha='true' "
        "edgeMode='none'/>",
        [](const Image& image) {
            return image.each([&](int x, int y) {
                return FilterModel::separately(image.at(x, y), [&](Colour c) {
                    for (size_t k = 0; k < 3; ++k) {
                        double sum = 0;
                        for (const auto& [dx, factor] : {std::pair{-1, 2.0}, {0, 1.0}, {1, -1.0}}) {
                            const Colour other = image.at(x + dx, y);
                            if (other[3] > 0) sum += factor * other[k] / other[3] / 2;
                        }
                        c[k] = sum;
                    }
                    return c;
                });
            });
        });
    expectModel("<feConvolveMatrix order='2' kernelMatrix='1 2 3'/>",
                [](const Image& i) { return Image(i.width, i.height); });
}

// With the normals that the standard gives for pixels away from the edges.
TEST(SvgFilters, LightFallsOnAlpha)
{
    const std::string light = "<fePointLight x='12' y='30' z='14'/>";
    const auto lit = [](const Image& image, bool specular, std::array<double, 3> colour) {
        return image.each([&](int x, int y) {
            const auto a = [&](int dx, int dy) { return image.at(x + dx, y + dy)[3]; };
            const double scale = 3;
            const double nx =
                -scale / 4 *
                (a(1, -1) + 2 * a(1, 0) + a(1, 1) - a(-1, -1) - 2 * a(-1, 0) - a(-1, 1));
            const double ny =
                -scale / 4 *
                (a(-1, 1) + 2 * a(0, 1) + a(1, 1) - a(-1, -1) - 2 * a(0, -1) - a(1, -1));
            double l[3] = {12 - (x + 0.5), 30 - (y + 0.5), 14 - scale * a(0, 0)};
            const double distance = std::hypot(l[0], l[1], l[2]);
            for (double& part : l)
                part /= distance;
            if (specular) l[2] += 1;
            const double norm =
                std::hypot(nx, ny, 1) * (specular ? std::hypot(l[0], l[1], l[2]) : 1);
            const double cosine = (nx * l[0] + ny * l[1] + l[2]) / norm;
            const double strength =
                std::max(0.0, specular ? 1.2 * std::pow(cosine, 7) : 0.8 * cosine);
            Colour c;
            for (size_t i = 0; i < 3; ++i)
                c[i] = std::min(1.0, strength * colour[i]);
            c[3] = specular ? std::max({c[0], c[1], c[2]}) : 1;
            return c;
        });
    };
    const std::string space = "color-interpolation-filters='sRGB'";
    expectNear(filtered("<feDiffuseLighting lighting-color='#f80' surfaceScale='3' "
                        "diffuseConstant='.8'>" +
                            light + "</feDiffuseLighting>",
                        kScene, space),
               lit(scene(), false, {1, 136 / 255.0, 0}));
    expectNear(filtered("<feSpecularLighting lighting-color='#4cf' surfaceScale='3' "
                        "specularConstant='1.2' specularExponent='7'>" +
                            light + "</feSpecularLighting>",
                        kScene, space),
               lit(scene(), true, {68 / 255.0, 204 / 255.0, 1}));

    // On a plane, seen from above: the sine of the elevation, the cosine of half the angle between
    // the light and the eye, the power of the cosine to a spot's axis, and nothing beyond its cone.
    const std::pair<std::string, double> cases[] = {
        {"<feDiffuseLighting><feDistantLight azimuth='70' elevation='30'/></feDiffuseLighting>",
         0.5},
        {"<feSpecularLighting specularExponent='2'><feDistantLight elevation='30'/>"
         "</feSpecularLighting>",
         0.75},
        {"<feDiffuseLighting surfaceScale='0'><feSpotLight x='20.5' y='0.5' z='20' "
         "pointsAtX='20.5' pointsAtY='0.5' specularExponent='2'/></feDiffuseLighting>",
         0.353553}, // the cosine of 45 degrees to the third
        {"<feDiffuseLighting surfaceScale='0'><feSpotLight x='20.5' y='0.5' z='20' "
         "pointsAtX='20.5' pointsAtY='0.5' limitingConeAngle='44'/></feDiffuseLighting>",
         0}};
    for (const auto& [primitive, expected] : cases) {
        const Picture picture = drawn(filtered(primitive, "<rect width='40' height='40'/>", space),
                                      kFilterSide, kFilterSide, 0);
        EXPECT_NEAR(picture.at(20, 20) & 255, 255 * expected, 1) << primitive;
    }
}

TEST(SvgFilters, DisplacementsFollowTheMap)
{
    // Red is 1 and green 0: a half of the scale to the right, and up. Alpha is 1 as well.
    expectModel("<feFlood flood-color='red'/><feDisplacementMap in='SourceGraphic' in2='' "
                "scale='12' xChannelSelector='R' yChannelSelector='G'/>",
                [](const Image& image) { return FilterModel::moved(image, -6, 6); });
    expectModel("<feFlood flood-color='red'/><feDisplacementMap in='SourceGraphic' scale='-8'/>",
                [](const Image& image) { return FilterModel::moved(image, 4, 4); });
}

// Noise is nothing at the corners of its cells; it fits together at the edges of stitched tiles,
// and belongs to the drawing, not to the pixels.
TEST(SvgFilters, Turbulence)
{
    const auto noise = [](const std::string& attributes, int scale = 1) {
        return drawn("<svg width='40' height='40' viewBox='0 0 " + std::to_string(40 / scale) +
                         " " + std::to_string(40 / scale) +
                         "'><filter id='f' filterUnits='userSpaceOnUse' x='0' y='0' width='40' "
                         "height='40' color-interpolation-filters='sRGB'><feTurbulence " +
                         attributes + "/></filter><g filter='url(#f)'/></svg>",
                     kFilterSide, kFilterSide, 0);
    };
    const Picture cells = noise("baseFrequency='.25 .125'");
    const Picture fractal = noise("type='fractalNoise' baseFrequency='.25 .125'");
    int spread = 0;
    for (int y = 0; y < kFilterSide; ++y)
        for (int x = 0; x < kFilterSide; ++x) {
            spread = std::max(spread, static_cast<int>(cells.at(x, y) >> 24));
            if (x % 4 != 0 || y % 8 != 0) continue;
            EXPECT_EQ(cells.at(x, y), 0u) << x << ' ' << y;
            EXPECT_NEAR(fractal.at(x, y) >> 24, 128, 1) << x << ' ' << y;
        }
    EXPECT_GT(spread, 64);
    EXPECT_EQ(noise("").at(7, 7), 0u); // a frequency of 0 knows only one corner

    const Picture stitched = noise("baseFrequency='.13' numOctaves='3' stitchTiles='stitch' "
                                   "x='0' y='0' width='20' height='20' result='t'/><feTile");
    const Picture whole = noise("baseFrequency='.15' numOctaves='3'"); // 3 cells in 20 pixels
    const auto step = [](const Picture& picture, int x, int y) {
        return std::abs(static_cast<int>(picture.at(x, y) >> 24) -
                        static_cast<int>(picture.at(x - 1, y) >> 24));
    };
    int worst = 0;
    int usual = 0;
    for (int y = 0; y < 20; ++y) {
        worst = std::max(worst, step(stitched, 20, y));
        for (int x = 1; x < 20; ++x)
            usual = std::max(usual, step(stitched, x, y));
        EXPECT_EQ(stitched.at(3, y % 10), whole.at(3, y % 10)); // inside it is the same noise
    }
    EXPECT_LE(worst, usual);

    const Picture large = noise("baseFrequency='.1' numOctaves='2' seed='5'", 2);
    const Picture small = noise("baseFrequency='.1' numOctaves='2' seed='5'");
    for (int i = 0; i < kFilterSide / 2; ++i)
        EXPECT_EQ(large.at(2 * i, 2 * i), small.at(i, i)) << i;
    EXPECT_NE(noise("baseFrequency='.1' seed='6'").pixels, noise("baseFrequency='.1'").pixels);
}

} // namespace
