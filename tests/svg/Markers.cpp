// SPDX-License-Identifier: MIT
// The vertices of paths, what stands on them, and the dots of strokes without length.
#include "svg/geometry/Vertices.h"
#include "svg/values/PathParser.h"
#include "tests/svg/Drawing.h"

#include <cmath>
#include <sstream>

using namespace KAVO::Svg;

namespace {

// Place and whole degrees of each vertex.
std::string verticesOf(const char* path)
{
    Outline outline;
    EXPECT_TRUE(parsePath(path, outline)) << path;
    std::ostringstream text;
    for (const Vertex& vertex : KAVO::Svg::verticesOf(outline))
        text << vertex.place.x << ',' << vertex.place.y << '@' << std::lround(vertex.direction)
             << ' ';
    return text.str();
}

TEST(SvgMarkers, VerticesAndTheirDirections)
{
    const struct {
        const char* path;
        const char* vertices;
    } cases[] = {
        {"M0 0H5V5", "0,0@0 5,0@45 5,5@90 "},
        // Closed: the directions at both ends of the seam are one.
        {"M0 0H4V4z", "0,0@-68 4,0@45 4,4@158 0,0@-68 "},
        {"M0 0C0 5 5 5 5 0", "0,0@90 5,0@-90 "},
        // The pieces of an arc are one: a half circle from the left over the top to the right.
        {"M0 0A5 5 0 0 1 10 0", "0,0@-90 10,0@90 "},
        // Without length: the direction of the neighbour.
        {"M0 0h0V5h0", "0,0@90 0,0@90 0,5@90 0,5@90 "},
        // Subpaths of a point alone are vertices.
        {"M3 4", "3,4@0 "},
        {"M3 4z", "3,4@0 3,4@0 "},
        {"M1 1M2 2H5", "1,1@0 2,2@0 5,2@0 "},
        {"M0 0V5M7 7", "0,0@90 0,5@90 7,7@0 "},
        {"m1 1m1 1m1 1", "1,1@0 2,2@0 3,3@0 "},
        // After a closed subpath the next one begins without a vertex of its own.
        {"M0 0H4V4zv7", "0,0@-68 4,0@45 4,4@158 0,0@-68 0,7@90 "}};
    for (const auto& c : cases)
        EXPECT_EQ(verticesOf(c.path), c.vertices) << c.path;
}

TEST(SvgMarkers, APointAloneHasAStartAndAnEnd)
{
    const char* const shapes[] = {"<path d='M10 10' MARKERS/>", "<path d='M10 10z' MARKERS/>",
                                  "<path d='M10 10h0' MARKERS/>",
                                  "<polyline points='10 10' MARKERS/>"};
    for (std::string shape : shapes) {
        shape.replace(shape.find("MARKERS"), 7, "marker-start='url(#s)' marker-end='url(#e)'");
        const Picture picture =
            drawn("<svg width='20' height='20'><marker id='s' markerWidth='8' markerHeight='8' "
                  "refX='4' refY='4'><rect width='8' height='8' fill='red'/></marker>"
                  "<marker id='e' markerWidth='4' markerHeight='4' refX='2' refY='2'>"
                  "<rect width='4' height='4' fill='blue'/></marker>" +
                      shape + "</svg>",
                  20, 20);
        for (int y = 0; y < 20; ++y)
            for (int x = 0; x < 20; ++x) {
                const auto within = [&](int reach) {
                    return x >= 10 - reach && x < 10 + reach && y >= 10 - reach && y < 10 + reach;
                };
                ASSERT_EQ(picture.at(x, y) & 0xFFFFFF, within(2)   ? 0x0000FFu
                                                       : within(4) ? 0xFF0000u
                                                                   : 0xFFFFFFu)
                    << shape << " at " << x << ", " << y;
            }
    }
}

// Ink in pixels around the only point of a stroke 16 wide.
double inkOf(const std::string& path, const char* cap)
{
    const Picture picture = drawn("<svg width='40' height='40'><path fill='none' stroke='black' "
                                  "stroke-width='16' stroke-linecap='" +
                                      std::string(cap) + "' d='" + path + "'/></svg>",
                                  40, 40);
    double ink = 0;
    for (const uint32_t pixel : picture.pixels)
        ink += (255 - (pixel & 0xFF)) / 255.0;
    return ink;
}

TEST(SvgMarkers, StrokesWithoutLengthAreDots)
{
    const double circle = 64 * std::acos(-1.0);
    for (const char* path : {"M20 20z", "M20 20h0", "M20 20l0 0z", "M5 5M20 20z"}) {
        EXPECT_NEAR(inkOf(path, "round"), circle, circle / 50) << path;
        EXPECT_NEAR(inkOf(path, "square"), 256, 3) << path;
        EXPECT_EQ(inkOf(path, "butt"), 0) << path;
    }
    for (const char* cap : {"round", "square", "butt"})
        EXPECT_EQ(inkOf("M20 20", cap), 0) << cap;
}

} // namespace
