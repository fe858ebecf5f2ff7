// SPDX-License-Identifier: MIT
// Filter primitives against a model in double precision, and what filters are applied to.
#include "tests/svg/Drawing.h"
#include "tests/svg/FilterModel.h"

#include <cctype>
#include <functional>

using namespace KAVO::Svg;
using FilterModel::Colour;
using FilterModel::Image;

namespace {

constexpr int kSide = 40;

// Whole pixels of several colours and opacities, some of them dark, on a transparent ground.
const std::string kScene =
    "<rect x='6' y='5' width='14' height='20' fill='#c84010'/>"
    "<rect x='14' y='12' width='17' height='15' fill='#2060e0' fill-opacity='.6'/>"
    "<rect x='9' y='20' width='8' height='13' fill='#101408' fill-opacity='.85'/>";

std::string document(const std::string& content)
{
    return "<svg width='40' height='40'>" + content + "</svg>";
}

std::string filtered(const std::string& primitives, const std::string& content = kScene,
                     const std::string& attributes = "")
{
    return document("<filter id='f' filterUnits='userSpaceOnUse' x='0' y='0' width='40' "
                    "height='40' " +
                    attributes + ">" + primitives + "</filter><g filter='url(#f)'>" + content +
                    "</g>");
}

void expectNear(const std::string& svg, const Image& expected, int tolerance = 2)
{
    const Picture picture = drawn(svg, kSide, kSide, 0);
    for (int y = 0; y < kSide; ++y)
        for (int x = 0; x < kSide; ++x)
            for (size_t c = 0; c < 4; ++c) {
                const int channel = picture.at(x, y) >> (c == 3 ? 24 : 16 - 8 * c) & 255;
                ASSERT_NEAR(channel, expected.at(x, y)[c] * 255, tolerance + 0.01)
                    << "pixel " << x << ' ' << y << ", channel " << c << " of " << svg;
            }
}

Image scene()
{
    return Image(drawn(document(kScene), kSide, kSide, 0));
}

using Model = std::function<Image(const Image&)>;

// In sRGB and in linear light, which is what is meant when nothing is said.
void expectModel(const std::string& primitives, const Model& model)
{
    const Image source = scene();
    expectNear(filtered(primitives, kScene, "color-interpolation-filters='sRGB'"), model(source));
    expectNear(filtered(primitives),
               FilterModel::converted(model(FilterModel::converted(source, true)), false));
}

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
        return image.at(std::clamp(x, 0, kSide - 1), std::clamp(y, 0, kSide - 1));
    };
    const auto wrap = [](const Image& image, int x, int y) {
        return image.at((x + kSide) % kSide, (y + kSide) % kSide);
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
        const Picture picture =
            drawn(filtered(primitive, "<rect width='40' height='40'/>", space), kSide, kSide, 0);
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
                     kSide, kSide, 0);
    };
    const Picture cells = noise("baseFrequency='.25 .125'");
    const Picture fractal = noise("type='fractalNoise' baseFrequency='.25 .125'");
    int spread = 0;
    for (int y = 0; y < kSide; ++y)
        for (int x = 0; x < kSide; ++x) {
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
    for (int i = 0; i < kSide / 2; ++i)
        EXPECT_EQ(large.at(2 * i, 2 * i), small.at(i, i)) << i;
    EXPECT_NE(noise("baseFrequency='.1' seed='6'").pixels, noise("baseFrequency='.1'").pixels);
}

// --- Inputs, regions and units -------------------------------------------------------------------

// Full red in the columns and rows from first to last, and nothing elsewhere.
void expectSquare(const std::string& content, int first, int last)
{
    const Picture picture = drawn(document(content), kSide, kSide, 0);
    for (int y = 0; y < kSide; ++y)
        for (int x = 0; x < kSide; ++x) {
            const bool inside = x >= first && x <= last && y >= first && y <= last;
            ASSERT_EQ(picture.at(x, y), inside ? 0xFFFF0000 : 0)
                << "pixel " << x << ' ' << y << " of " << content;
        }
}

TEST(SvgFilters, RegionsAndSubregions)
{
    const std::string flood = "<feFlood flood-color='red'";
    const auto user = [](const std::string& primitives) {
        return "<filter id='f' filterUnits='userSpaceOnUse' x='0' y='0' width='40' height='40'>" +
               primitives +
               "</filter><rect x='10' y='10' width='10' height='10' fill='red' "
               "filter='url(#f)'/>";
    };
    const auto box = [](const std::string& attributes, const std::string& primitives) {
        return "<filter id='f' " + attributes + ">" + primitives +
               "</filter><rect x='10' y='10' width='10' height='10' filter='url(#f)'/>";
    };
    // A tenth of the bounding box on each side when nothing is said.
    expectSquare(box("", flood + "/>"), 9, 20);
    expectSquare(box("x='-.5' y='-.5' width='2' height='2'", flood + "/>"), 5, 24);
    expectSquare(box("x='0%' y='0%' width='100%' height='100%'", flood + "/>"), 10, 19);
    expectSquare(
        box("primitiveUnits='objectBoundingBox'", flood + " x='0' y='0' width='.5' height='50%'/>"),
        10, 14);
    expectSquare(box("", flood + " x='12' y='12' width='50' height='50'/>"), 12, 20);
    expectSquare(user(flood + " x='25%' y='25%' width='25%' height='25%'/>"), 10, 19);
    // A blur of nothing but its subregion; the tile fills the region; the merge spans its inputs.
    expectSquare(user("<feOffset dx='5' dy='5' x='12' y='12' width='20' height='20'/>"), 15, 24);
    expectSquare(user("<feOffset dx='-5' dy='-5' x='12' y='12' width='20' height='20'/>"), 12, 14);
    expectSquare(user(flood + " x='3' y='3' width='4' height='4'/><feTile/>"), 0, 39);
    expectSquare(user(flood + " x='4' y='4' width='6' height='6' result='a'/>" + flood +
                      " x='8' y='8' width='7' height='7'/><feMerge x='4' y='4' width='4' "
                      "height='4'><feMergeNode/><feMergeNode in='a'/></feMerge>"),
                 4, 7);
    // What a filter lacks it takes from the one that it refers to.
    expectSquare("<filter id='g' x='0' y='0' width='1' height='1'>" + flood + "/></filter>" +
                     box("href='#g' x='.5' y='.5' width='.5' height='.5'", ""),
                 15, 19);
    // Without primitives, and without a region: nothing.
    expectSquare(user(""), 1, 0);
    expectSquare(box("width='0'", flood + "/>"), 1, 0);
    expectSquare(box("height='-1'", flood + "/>"), 1, 0);
}

TEST(SvgFilters, InputsAreNamed)
{
    const auto user = [](const std::string& primitives) {
        return "<filter id='f' filterUnits='userSpaceOnUse' x='0' y='0' width='40' height='40'>" +
               primitives +
               "</filter><rect x='10' y='10' width='10' height='10' fill='red' "
               "filter='url(#f)'/>";
    };
    const std::string away = "<feOffset dx='90' result='away'/>";
    expectSquare(user(away + "<feOffset in='SourceGraphic'/>"), 10, 19);
    expectSquare(user("<feOffset dx='3' dy='3' result='a'/>" + away + "<feOffset in='a'/>"), 13,
                 22);
    expectSquare(user("<feOffset dx='3' dy='3'/><feOffset in='none of them'/>"), 13, 22);
    // Alpha alone is black: what is left of it is cut out of red.
    expectSquare(user("<feFlood flood-color='red'/><feComposite operator='in' "
                      "in2='SourceAlpha'/>"),
                 10, 19);
    // Twice the same name: the later one.
    expectSquare(user("<feOffset dx='2' dy='2' result='a'/><feOffset in='SourceGraphic' dx='4' "
                      "dy='4' result='a'/><feMerge><feMergeNode in='a'/></feMerge>"),
                 14, 23);
}

TEST(SvgFilters, ImagesOfElements)
{
    expectSquare("<defs><rect id='r' x='5' y='5' width='9' height='9' fill='red'/></defs><filter "
                 "id='f' filterUnits='userSpaceOnUse' x='0' y='0' width='40' height='40'><feImage "
                 "href='#r'/></filter><circle r='1' filter='url(#f)'/>",
                 5, 13);
}

// Over all of the region, as the element would be painted.
TEST(SvgFilters, PaintsOfTheElement)
{
    for (const char* input : {"FillPaint", "StrokePaint"})
        expectSquare("<filter id='f' filterUnits='userSpaceOnUse' x='5' y='5' width='20' "
                     "height='20'><feMerge><feMergeNode in='" +
                         std::string(input) +
                         "'/></feMerge></filter><path d='M9 9h5v5' filter='url(#f)' fill='red' "
                         "stroke='red'/>",
                     5, 24);
}

TEST(SvgFilters, FunctionsFollowOneAnother)
{
    const auto red = [](const std::string& filter) {
        return "<rect x='10' y='10' width='10' height='10' fill='red' filter='" + filter + "'/>";
    };
    expectSquare(red("none"), 10, 19);
    expectSquare(red("blur(0)"), 10, 19);
    expectSquare(red("invert() invert(100%)"), 10, 19);
    expectSquare(red("brightness(100%) contrast(1) saturate(1) sepia(0) opacity(2) "
                     "hue-rotate(1turn) grayscale(0)"),
                 10, 19);
    expectSquare("<filter id='f' x='0' y='0' width='2' height='2'><feOffset dx='3' "
                 "dy='3'/></filter>" +
                     red("url(#f) url(\"#f\")"),
                 16, 25);
    // Hand-worked: 0xff * 0.5; 0xff - 0x40; 0x80 * 1.5 - 0.25 of the whole, and so on.
    const struct {
        const char* fill;
        const char* filter;
        uint32_t expected;
    } cases[] = {
        {"#ff8040", "brightness(50%)", 0xFF804020},     {"#ff8040", "invert(1)", 0xFF007FBF},
        {"#ff8040", "contrast(1.5)", 0xFFFF8020},       {"#ff8040", "opacity(.4)", 0x66663319},
        {"#ff8040", "grayscale()", 0xFF969696},         {"#ffffff", "sepia()", 0xFFFFFFEF},
        {"#0000ff", "drop-shadow(0 0 red)", 0xFF0000FF}};
    for (const auto& c : cases) {
        const Picture picture =
            drawn(document("<rect width='40' height='40' fill='" + std::string(c.fill) +
                           "' style='filter:" + c.filter + "'/>"),
                  kSide, kSide, 0);
        for (int shift = 0; shift < 32; shift += 8)
            EXPECT_NEAR(picture.at(20, 20) >> shift & 255, c.expected >> shift & 255, 1)
                << std::hex << picture.at(20, 20) << ' ' << c.filter;
    }
    for (const char* shadow :
         {"drop-shadow(20px 0 lime)", "drop-shadow(lime 20px 0 0)", "drop-shadow(20 0)"})
        EXPECT_EQ(
            drawn(document("<g color='lime'>" + red(shadow) + "</g>"), kSide, kSide).at(35, 15),
            0xFF00FF00)
            << shadow;
}

// --- What a filter is part of --------------------------------------------------------------------

TEST(SvgFilters, ClipsAndMasksAndOpacitiesComeAfter)
{
    const std::string flood = "<filter id='f' x='-1' y='-1' width='3' height='3'><feFlood "
                              "flood-color='red'/></filter>";
    const std::string rect = "<rect x='10' y='10' width='10' height='10' filter='url(#f)' ";
    expectSquare(flood + "<clipPath id='c'><rect x='5' y='5' width='20' height='20'/></clipPath>" +
                     rect + "clip-path='url(#c)'/>",
                 5, 24);
    expectSquare(flood +
                     "<mask id='m' maskUnits='userSpaceOnUse' width='40' height='40'><rect "
                     "x='3' y='3' width='9' height='9' fill='white'/></mask>" +
                     rect + "mask='url(#m)'/>",
                 3, 11);
    const Picture faint = drawn(document(flood + rect + "opacity='.4'/>"), kSide, kSide, 0);
    EXPECT_NEAR(faint.at(2, 2) >> 24, 102, 1);
    EXPECT_NEAR(faint.at(15, 15) >> 24, 102, 1);
    const Picture hidden =
        drawn(document(flood + "<g opacity='.5'><g opacity='.5'>" + rect + "/></g></g>"), kSide,
              kSide, 0);
    EXPECT_NEAR(hidden.at(15, 15) >> 24, 64, 1);
}

TEST(SvgFilters, ScaleAndTurnWithTheElement)
{
    const auto blur = [](const std::string& transform, const std::string& deviation) {
        return document("<filter id='f' filterUnits='userSpaceOnUse' x='-99' y='-99' width='300' "
                        "height='300'><feGaussianBlur stdDeviation='" +
                        deviation + "'/></filter><g transform='" + transform +
                        "'><g filter='url(#f)'>" + kScene + "</g></g>");
    };
    const auto expectLike = [](const std::string& svg, const std::string& plain,
                               const Model& model) {
        expectNear(svg, FilterModel::converted(model(FilterModel::converted(
                                                   Image(drawn(plain, kSide, kSide, 0)), true)),
                                               false));
    };
    const auto plain = [](const std::string& transform) {
        return document("<g transform='" + transform + "'>" + kScene + "</g>");
    };
    const auto by = [](double x, double y) -> Model {
        return [=](const Image& image) { return FilterModel::blurred(image, x, y); };
    };
    // What lies inside stays away from the edges, so that nothing outside the picture is missed.
    expectLike(blur("translate(10 10) scale(.5)", "3"), plain("translate(10 10) scale(.5)"),
               by(1.5, 1.5));
    expectLike(blur("translate(10 0) scale(.5 1)", "2 3"), plain("translate(10 0) scale(.5 1)"),
               by(1, 3));
    expectLike(blur("translate(40 0) rotate(90)", "1 2.5"), plain("translate(40 0) rotate(90)"),
               by(2.5, 1));
    expectLike(blur("rotate(30 20 20)", "2"), plain("rotate(30 20 20)"), by(2, 2));
    // An offset turns, too.
    expectSquare("<filter id='f' x='-2' y='-2' width='5' height='5'><feOffset dx='4' "
                 "dy='-6'/></filter><rect x='10' y='10' width='10' height='10' fill='red' "
                 "transform='rotate(90 15 15) translate(0 2)' filter='url(#f)'/>",
                 14, 23);
}

// What lies outside of the picture reaches into it, whatever part of the drawing is asked for.
TEST(SvgFilters, APartIsThatPartOfTheWhole)
{
    const std::string svg =
        filtered("<feGaussianBlur stdDeviation='3'/><feOffset dx='7' dy='-4'/><feMorphology "
                 "radius='1'/><feMerge><feMergeNode/><feMergeNode in='SourceGraphic'/></feMerge>");
    MMSvgDocument whole;
    ASSERT_TRUE(whole.loadBytes(svg));
    const Picture expected = drawn(whole, kSide, kSide, 0);
    constexpr int kPart = 9;
    for (const int left : {0, 11, 25})
        for (const int top : {3, 16, 31}) {
            Picture part(kPart, kPart, 0);
            ASSERT_TRUE(whole.render({kPart, kPart, kPart * 4, 0, part.pixels.data(), 0},
                                     {double(-left), double(-top), kSide, kSide}));
            for (int y = 0; y < kPart; ++y)
                for (int x = 0; x < kPart; ++x)
                    ASSERT_EQ(part.at(x, y), expected.at(left + x, top + y))
                        << x << ' ' << y << " of the part at " << left << ' ' << top;
        }
}

TEST(SvgFilters, GroupsMayHoldFiltersOfTheirOwn)
{
    expectSquare("<filter id='f' x='-2' y='-2' width='9' height='9'><feOffset dx='3' "
                 "dy='3'/></filter><g filter='url(#f)'><g filter='url(#f)'><rect x='5' y='5' "
                 "width='10' height='10' fill='red' filter='url(#f)'/></g></g>",
                 14, 23);
}

// --- What is not drawn ---------------------------------------------------------------------------

TEST(SvgFilters, WhatIsNotDrawnIsNamed)
{
    const std::pair<std::string, std::string> cases[] = {
        {"<feNothing/>", "<feNothing>"},
        {"<feOffset in='BackgroundAlpha'/>", "filter input BackgroundAlpha"},
        {"<feDisplacementMap scale='1e6'/>",
         "<feDisplacementMap> of a larger scale than the limit"},
        {"<feMerge><feMergeNode in='BackgroundImage'/></feMerge>", "filter input BackgroundImage"},
        {"<feGaussianBlur stdDeviation='2' edgeMode='wrap'/>",
         "<feGaussianBlur> with an edgeMode"}};
    for (const auto& [primitive, what] : cases) {
        MMSvgDocument svg;
        ASSERT_TRUE(svg.loadBytes(filtered("<feFlood/>" + primitive)));
        const Picture picture = drawn(svg, kSide, kSide, 0);
        EXPECT_TRUE(lacks(svg, what)) << what;
        EXPECT_EQ(svg.shortcomings().size(), 1u) << what;
        EXPECT_EQ(picture.at(8, 8), 0xFFC84010) << what; // drawn without the filter
    }
    for (const auto& [primitive, what] :
         {std::pair{"<feOffset><set attributeName='dx' to='9'/></feOffset>", "animation"},
          {"<feGaussianBlur stdDeviation='501' result='b'/><feOffset in='SourceGraphic'/><feMerge>"
           "<feMergeNode in='b'/><feMergeNode in='SourceGraphic'/></feMerge>",
           "<feGaussianBlur> of a larger radius than the limit"},
          {"<feConvolveMatrix order='1' kernelMatrix='1' kernelUnitLength='2'/>",
           "<feConvolveMatrix> with a kernelUnitLength"}}) {
        MMSvgDocument svg;
        ASSERT_TRUE(svg.loadBytes(filtered(primitive)));
        EXPECT_EQ(drawn(svg, kSide, kSide, 0).at(8, 8), 0xFFC84010) << what; // all the same
        EXPECT_TRUE(lacks(svg, what)) << what;
    }
    MMSvgDocument image;
    ASSERT_TRUE(image.loadBytes(filtered("<feImage href='#none'/>")));
    EXPECT_EQ(drawn(image, kSide, kSide, 0).at(8, 8), 0u);
    EXPECT_TRUE(lacks(image, "filter image of nothing that is there"));
    for (const char* value :
         {"url(#none)", "url(other.svg#f)", "blur(", "blur(-1)", "glow(3)", "blur(1) 7"}) {
        MMSvgDocument svg;
        ASSERT_TRUE(svg.loadBytes(document("<rect width='40' height='40' fill='red' filter='" +
                                           std::string(value) + "'/>")));
        EXPECT_EQ(drawn(svg, kSide, kSide, 0).at(9, 9), 0xFFFF0000) << value;
        EXPECT_EQ(svg.shortcomings().size(), 1u) << value;
    }
}

// Each ends at once, with a message where something is left out.
TEST(SvgFilters, HostileValues)
{
    const auto draws = [](const std::string& svg) {
        MMSvgDocument drawing;
        EXPECT_TRUE(drawing.loadBytes(svg)) << svg.substr(0, 200);
        drawn(drawing, kSide, kSide, 0);
        drawing.elementAt({0, 0, kSide, kSide}, 9, 9);
        return drawing.shortcomings().size();
    };
    for (const char* number : {"NaN", "inf", "-1", "1e9", "-1e9", "1e400", "1e-300", "", "%"}) {
        const std::string n = number;
        for (const std::string& primitive :
             {"<feGaussianBlur stdDeviation='" + n + "'/>", "<feOffset dx='" + n + "' dy='3'/>",
              "<feMorphology operator='dilate' radius='" + n + "'/>",
              "<feFlood x='" + n + "' width='" + n + "'/><feTile/>",
              "<feColorMatrix type='saturate' values='" + n + "'/>",
              "<feColorMatrix type='hueRotate' values='" + n + "'/>",
              "<feComposite operator='arithmetic' in2='SourceAlpha' k1='" + n + "' k4='" + n +
                  "'/>",
              "<feComponentTransfer><feFuncR type='gamma' exponent='" + n +
                  "'/><feFuncG "
                  "type='table' tableValues='" +
                  n + " 1'/></feComponentTransfer>",
              "<feConvolveMatrix order='" + n + "' kernelMatrix='" + n + "'/>",
              "<feConvolveMatrix kernelMatrix='1 1 1 1 1 1 1 1 " + n + "' divisor='" + n +
                  "' bias='" + n + "' targetX='" + n + "'/>",
              "<feDisplacementMap scale='" + n + "'/>",
              "<feTurbulence baseFrequency='" + n + "' numOctaves='" + n + "' seed='" + n +
                  "' stitchTiles='stitch'/>",
              "<feDiffuseLighting surfaceScale='" + n + "' diffuseConstant='" + n +
                  "'><feSpotLight x='" + n + "' z='" + n + "' specularExponent='" + n +
                  "' limitingConeAngle='" + n + "'/></feDiffuseLighting>",
              "<feSpecularLighting specularExponent='" + n + "'><feDistantLight azimuth='" + n +
                  "' elevation='" + n + "'/></feSpecularLighting>",
              "<feDropShadow dx='" + n + "' stdDeviation='1 " + n + "'/>"}) {
            draws(filtered(primitive));
            draws(document("<filter id='f' x='" + n + "' y='" + n + "' width='" + n +
                           "' height='9'>" + primitive + "</filter><g filter='url(#f)'>" + kScene +
                           "</g>"));
            draws(document("<filter id='f'>" + primitive + "</filter><g transform='scale(1e6 " + n +
                           ")'><rect width='1' height='1' filter='url(#f)'/></g>"));
        }
        draws(document("<rect width='9' height='9' filter='blur(" + n + ") drop-shadow(" + n +
                       " 1 " + n + ")'/>"));
    }

    std::string many;
    for (int i = 0; i < 5000; ++i)
        many += "<feGaussianBlur stdDeviation='9'/>";
    EXPECT_EQ(draws(filtered(many)), 1u);

    std::string nested = "<filter id='f'><feGaussianBlur stdDeviation='30'/></filter>";
    for (int i = 0; i < 120; ++i)
        nested += "<g filter='url(#f)'>";
    nested += kScene;
    for (int i = 0; i < 120; ++i)
        nested += "</g>";
    EXPECT_EQ(draws(document(nested)), 1u);

    // An image of the element itself, and two of each other.
    EXPECT_EQ(draws(document("<filter id='f'><feImage href='#r'/></filter><rect id='r' width='9' "
                             "height='9' filter='url(#f)'/>")),
              1u);
    EXPECT_EQ(draws(document("<filter id='f'><feImage href='#s'/></filter><filter id='g'><feImage "
                             "href='#r'/></filter><rect id='r' width='9' height='9' "
                             "filter='url(#f)'/><rect id='s' width='9' height='9' "
                             "filter='url(#g)'/>")),
              1u);
}

} // namespace
