// SPDX-License-Identifier: MIT
// SVG drawings: loaded from a file or from bytes, drawn by mm2d.
//
//     KAVO::Svg::MMSvgDocument drawing;
//     if (!drawing.loadFile("map.svg")) std::puts(drawing.problem().c_str());
//     drawing.render(pixmap, {0, 0, 320, 240});
//     for (const auto& s : drawing.shortcomings()) ...
//
// Nothing throws for bad input: what is wrong comes back as a value. There is no global state; a
// document is used by one thread at a time, and the contexts it draws with share the font engine as
// all contexts do (see MMContext2D.h).
#pragma once

#include "../graphics2d/MMContext2D.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace KAVO {
namespace Svg {

// How much a drawing may ask for. Beyond a limit the rest is left out and named, but for a document
// that is too large, which is not loaded.
struct Limits {
    uint64_t documentBytes = 256u << 20; // also after decompression
    uint32_t depth = 200;                // of elements in elements, uses of uses counted
    uint32_t usedElements = 200000;      // drawn again through use, patterns and markers
    uint32_t characters = 1u << 20;      // of one text element
    uint64_t imagePixels = 128u << 20;   // of all images together
    uint64_t patternTiles = 20000;       // of one paint, drawn beside each other
    uint64_t shapeRows = 1u << 23; // that the lines of one shape cross in the picture; those of
                                   // a stroke count four times, as its outline crosses them, and
                                   // all count more from some 8,000 lines in a row on
};

struct LoadOptions {
    Limits limits;
    std::string folder;                       // that references to files start from
    bool files = true;                        // other files may be read: images, style sheets
    std::vector<std::string> languages{"en"}; // for systemLanguage, most wanted first
};

// Where a drawing goes, in device pixels. A width or height of 0 follows from the other by the
// drawing's own proportions; both 0 are the drawing's own size. A rectangle that has these
// proportions but for less than a pixel is filled to its edges.
struct Placement {
    double x = 0;
    double y = 0;
    double width = 0;
    double height = 0;
    const char* aspectRatio = nullptr; // as preserveAspectRatio is written; null: the drawing's own
};

struct RenderOptions {
    bool antiAlias = true;
};

struct Size {
    double width = 0;
    double height = 0;
};

// Something that a drawing asked for and did not get.
struct Shortcoming {
    std::string what;
    std::string element; // name of the element that asked first
    uint32_t line = 0;   // where it stands in the document, from 1 on; 0: unknown
};

// What the last render did.
struct RenderResult {
    bool outOfMemory = false;
    uint32_t peakScratchWords = 0;
    MMFixedRegion bounds{}; // of all that was drawn, device pixels; x0 above x1: nothing
};

#pragma GCC visibility push(default)

class MMSvgDocument {
public:
    explicit MMSvgDocument(LoadOptions options = {});
    ~MMSvgDocument();
    MMSvgDocument(MMSvgDocument&&) noexcept;
    MMSvgDocument& operator=(MMSvgDocument&&) noexcept;

    // Each replaces what was loaded before. False leaves an empty document and a problem.
    bool loadFile(const std::string& fileName); // its folder is where references start from
    bool loadBytes(std::string_view bytes);
    const std::string& problem() const; // one line without a full stop; empty: none

    Size size() const; // in user units, that the drawing asks for; 0 for an empty document

    // Draws over what the pixmap holds, whose pixels are premultiplied. Larger sides than 8,192
    // pixels, and placements of no size, draw nothing and answer false.
    bool render(const MMPixmap& target, const Placement& place, const RenderOptions& options = {});

    // Draws with a caller's context over what its target holds, whose pixels are premultiplied,
    // inside its clip rectangle, by the refined rules; antiAlias is the context's. All fields that
    // drawing changes come back, but for the bounds fields, outOfMemory and what the scratch stack
    // and the glyph cache hold.
    bool render(Graphics2D::MMContext2D& context, const Placement& place);

    const RenderResult& result() const;

    // What loading and all renderings so far had to leave out, each thing once.
    std::vector<Shortcoming> shortcomings() const;

    // The id of the topmost element that covers the point, in device pixels, when the drawing is
    // placed so: the element's own, or else that of the nearest around it. Empty when nothing is
    // there or nothing has a name.
    std::string elementAt(const Placement& place, double x, double y) const;

private:
    struct Parts;
    std::unique_ptr<Parts> parts_;
};

// A colour as SVG writes it, not premultiplied; false leaves *colour alone.
bool parseColour(std::string_view text, Pixel* colour);

#pragma GCC visibility pop

} // namespace Svg
} // namespace KAVO
