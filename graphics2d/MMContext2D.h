// SPDX-License-Identifier: MIT
// The drawing context: the one object through which everything is drawn.
//
// Give a context a target and a clip rectangle, set its transform, paints and stroke style, and
// call the drawing operations. Most state has no setters: the fields are public and written
// directly.
//
//     KAVO::Graphics2D::MMContext2D context;
//     context.target = {width, height, width * 4u, 0xFFFFFFFF, pixels, 0};
//     context.clipRight = width;
//     context.clipBottom = height;
//     context.antiAlias = 1;
//     context.fillPaint.paintColour = 0xFF2060C0;
//     context.drawPath(path);
//
// Pixel grid. Without anti-aliasing pixel c covers [c, c + 1) and is drawn when its centre is
// inside the shape. With it, the half pixel that the rasterisers add to every vertex makes pixel c
// cover [c - 1/2, c + 1/2): for the grid that SVG uses, set refined, by which pixel c always covers
// [c, c + 1). Text does not take part in the shift, and of an image only the outline does.
//
// Background. Translucent gradients and patterns, and glyphs of any paint, read what lies under a
// pixel from its right-hand neighbour: where they are drawn, the picture behind them moves left by
// one pixel. Only the last pixel of the target reads itself. Solid colours blend pixels over
// themselves.
//
// Two modes. What stands here are the classic rules, the default. With refined set, rules that come
// closer to the ideal picture take the place of those whose flaws show; docs/design.md lists them.
// setTarget (convenience/MMContextState.h), which replaces the three lines of the target above,
// chooses the refined ones.
//
// Failure. Nothing throws and nothing is logged. An operation that cannot get memory sets bit 0 of
// outOfMemory, gives back what it took and draws nothing (further); the bit stays until the caller
// clears it. One case is silent: drawEllipticalRect without memory for its fill. No input makes the
// library write outside the target and the clip rectangle.
//
// Null pointers. A null pointer to points, records, a path, a pixmap, a text or a result draws
// nothing and answers 0. This holds for every call of the library, and for the points inside
// records as well.
//
// Threads. A context is used by one thread at a time. The font engine is shared by all contexts of
// a process without a lock, so contexts are created, used for text and destroyed on one thread.
#pragma once

#include "../math/Matrix2D.h"
#include "../memory/MMCacheContext.h"
#include "../memory/MMStackContext.h"
#include "MMLayerSurface.h"
#include "MMLinkPath.h"
#include "MMMask.h"
#include "MMPaint.h"
#include "MMPathPos.h"
#include "MMPixmap.h"
#include "MMTextLayout.h"

namespace KAVO {
namespace Graphics2D {

struct OwnFillers; // Internal.

// Values of MMContext2D::joinStyle, capStyle, fillRule and patternFilter.
enum MMJoinStyle : uint8_t { kJoinMiter = 0, kJoinRound = 1, kJoinBevel = 2 };
enum MMCapStyle : uint8_t { kCapButt = 0, kCapRound = 1, kCapSquare = 2 };
enum MMFillRule : uint8_t { kFillNonZero = 0, kFillEvenOdd = 1 };
enum MMPatternFilter : uint8_t { kFilterNearest = 0, kFilterBilinear = 1, kFilterBicubic = 2 };

// Values of MMContext2D::fontStyle and textAnchor. Both slanted styles are the same shear, by 20
// degrees: along the rows of pixels, by the refined rules along the baseline.
enum MMFontStyle : uint32_t { kFontUpright = 0, kFontItalic = 1, kFontOblique = 2 };
enum MMTextAnchor : uint32_t { kAnchorStart = 0, kAnchorMiddle = 1, kAnchorEnd = 2 };

// Bits of MMContext2D::renderFlags and outOfMemory.
constexpr uint32_t kRenderBoundsOnly = 8; // drawPath computes untransformed bounds, draws nothing
constexpr uint16_t kScratchExhausted = 1;

// The bounds fields of an operation that drew nothing.
constexpr Fixed kEmptyBoundsMin = 0x7FFFFFFF;
constexpr Fixed kEmptyBoundsMax = -0x7FFFFFFF;

struct LevelTable;

#pragma GCC visibility push(default)

class MMContext2D {
public:
    MMContext2D();
    ~MMContext2D();
    MMContext2D(const MMContext2D&) = delete;
    MMContext2D& operator=(const MMContext2D&) = delete;

    // --- Polygons, in device space, closed implicitly -------------------------------------------
    // They are drawn with currentPaint, whatever fillPaint and strokePaint hold. Other operations
    // leave their own paint there, so set it before each of these calls.

    // Fills a polygon by the fill rule. Fewer than three points, or all on one horizontal line,
    // draw nothing and leave the bounds fields as they are; otherwise they are set.
    void rasterPolygon(MMPoint2D* points, uint16_t count);

    // The quick way for a polygon that every horizontal line meets at most twice. Any other polygon
    // is drawn wrongly, but safely.
    void rasterMonotonePolygon(MMPoint2D* points, uint16_t count);

    // The general way: self-crossing outlines, holes, many subpaths bridged into one polygon.
    void rasterComplexPolygon(MMPoint2D* points, uint16_t count);

    // Draws the edge pixels and the interior of one anti-aliased row from the span and the edge
    // state below. For callers with rows of their own: the rasterisers draw rows between two
    // straight edges as this does, but from values that they hold, and cut rows with vertices into
    // slabs.
    void smoothEdges();

    // --- Paths, in user space -------------------------------------------------------------------

    // Fills an encoded path with fillPaint, all subpaths as one shape, and then strokes each with
    // strokePaint. A path of fewer than three points is not filled. Strokes meet at the tangents of
    // curves, unless they are dashed, and are round inside them whatever joinStyle says.
    //
    // The first word is the header: the number of subpaths in its low half, the number of segments
    // in its high half (a hint, not relied on). Commands follow:
    //   bits 0-27   number of items that follow
    //   bits 28-29  0: points (x, y each), 1: cubic curves (two control points and the end each),
    //               2 and 3: ignored, without words of their own
    //   bit 30      ends the subpath;  bit 31: and closes it
    // Coordinates are 16.16. A path has no length of its own: the array must hold what its commands
    // announce up to the last subpath's end bit; everything else about it may be wrong.
    void drawPath(const uint32_t* path);

    // Number of points and curve ends of a stored path (one word, which is skipped, then the path
    // as drawPath reads it), and of the items that ignored commands announce; one more for each
    // command with bit 31.
    uint32_t getPathKeyPointCount(const uint32_t* storedPath);

    // Walks along a stored path to the given distance from its start, in user units, curves
    // flattened as drawing does. Leaves the point in pos.current and the direction of the path
    // there in *result; a null result is not written. Gaps between subpaths add no length; beyond
    // the end the walk stays at the end. A smaller distance than before, or pos.subpathsLeft of 0,
    // starts anew. Without a path nothing moves, and *result is 0.
    void getPathPos(MMPathPos& pos, Fixed distance, Degrees* result);

    // Flattens one cubic curve into points every pointStep positions from out on, its start left
    // out and its end always the last; fine enough for the current transform. Returns pointStep
    // plus the index of the last position written. out must have room for 1,024 points.
    int32_t getBezierPts(MMPoint2D* out, MMPoint2D start, MMPoint2D control1, MMPoint2D control2,
                         MMPoint2D end);

    // Strokes one subpath of consecutive records in user space with the current paint and the
    // stroke style below. The outline is built in user space, so the pen takes part in the
    // transform, and is filled as one polygon by the non-zero rule. A subpath without length leaves
    // a dot with round caps, a square along the user space's axes with square caps and nothing with
    // butt caps; a half width of 0 or less, no records and no points draw nothing. Without
    // anti-aliasing a stroke is at least one device pixel wide, and lights a pixel however short it
    // is, butt caps aside. Sets pointStep to 1, and the bounds fields to the outline's, empty when
    // nothing was drawn.
    void drawPolyline(MMLinkPath* records, int16_t segmentCount, uint8_t closed);

    // The same cut into dashes; one without length is a dot, a square one turned with its edge.
    // Without a usable pattern (no dashArray, no entries, a negative one, or only zeros), or where
    // one would make more than 65,535 dashes and gaps, the line is stroked whole. A subpath of one
    // record with one point draws nothing; three words of scratch memory then stay counted in
    // usedWords until the context ends.
    void drawDashArray(MMLinkPath* records, uint16_t segmentCount, uint8_t closed);

    // Fills and strokes a rectangle with elliptical corners, or an ellipse (radii equal to the half
    // sizes). Its stroke has round joins whatever joinStyle says.
    void drawEllipticalRect(Fixed cx, Fixed cy, Fixed halfWidth, Fixed halfHeight, Fixed rx,
                            Fixed ry);

    // Points on the circle from `from` (not written) to `to` (written exactly, last), every
    // pointStep positions from out on, in the direction of increasing or decreasing angle; of both
    // only the directions from the centre count for the points between. The same direction twice
    // gives `to` alone. Returns pointStep plus the index of the last position written. At most 360
    // points, fine enough for the current transform up to a radius of some 2,000 device pixels.
    int32_t getCircularArcPts(MMPoint2D* out, MMPoint2D& centre, MMPoint2D& from, MMPoint2D& to,
                              Fixed radius, uint8_t increasing);

    // Fills and strokes a circular arc of sweep degrees from the direction start, which may be any
    // angle, negative ones too; a positive sweep goes with increasing angles. With outline 0, pie 1
    // closes it through the centre and pie 0 by the chord. Outline 1 fills nothing and strokes the
    // open arc, whatever pie says. A sweep of 360 degrees or more either way is the whole circle,
    // always closed and without its centre. Sets the bounds fields to those of all that was drawn.
    // A radius of 0 or less, or a null centre, draws nothing.
    void drawCircularArc(MMPoint2D* centre, Fixed radius, Degrees start, Degrees sweep, uint8_t pie,
                         uint8_t outline);

    // --- Images ---------------------------------------------------------------------------------
    // The image is the pattern paint of these calls, with imageOpacity and sampled by
    // patternFilter; beyond its edges the outermost texels repeat. Both leave the image, its
    // transform and the opacity behind in currentPaint and give back its paint type alone: the
    // parameters of the paint that was there are gone.
    //
    // Draw upright images with antiAlias off and the nearest filter: at its own size and at whole
    // coordinates an image is copied texel for texel. The other filters sample from where the span
    // of each row starts in 16.16, half a pixel right of the image's left edge, and blur it along
    // its rows. With antiAlias the edges are those of any shape, half covered pixels all around
    // that image; between them spans start at whole columns, and bilinear all but copies it too.
    // By the refined rules an image at its own size and at whole coordinates is copied whatever
    // antiAlias is, by the nearest filter and by the bilinear one.

    // Draws through the transform into the rectangle of w by h at (x, y) in user space. Without
    // offsetByPosition the image lies at the user space's origin; with it, it is moved by (x, y)
    // device pixels. Either way the rectangle selects what is drawn: w and h do not scale, only the
    // transform does. The image's alpha counts when the low byte of its pixmapExtra is not 0.
    void drawImage(const MMPixmap* image, Fixed x, Fixed y, Fixed w, Fixed h,
                   uint8_t offsetByPosition);

    // Draws the part source of the image into destinationRect of another pixmap, scaled to fit and
    // turned by 360 degrees - angle about the rectangle's top left corner. Takes over the
    // destination as target, with the clip open, no masks and transform without anything but the
    // turn, and leaves them so. Whether the image has alpha is as currentPaint.patternHasAlpha
    // stands.
    void drawImage(const MMPixmap* image, const MMFixedRegion* source, const MMPixmap* destination,
                   const MMFixedRegion* destinationRect, Degrees angle);

    // --- Text -----------------------------------------------------------------------------------
    // All text is UTF-16, each code unit a character of its own: surrogate halves have no glyphs,
    // and a character without a glyph is left out without advance. With fontMetrics null nothing is
    // drawn or measured. Lengths are cut to 16 bits: a text of 65,536 characters draws nothing.
    //
    // Text is drawn with fillPaint, or with strokePaint when the fill is kPaintNone; exclusive-or
    // and picking paints draw none. In a gradient or pattern it takes paintOpacity twice:
    // 128 shows as 64. The rows of the target are addressed by width * 4, whatever its rowBytes
    // says.
    //
    // The font is the file AMCSL.TTF in the folder that the environment variable YBN_RES_FONT_PATH
    // names, by default /usr/lib/ybn/lib/fonts, looked up when a context starts the font engine.
    // SVG_FONT_CACHE_KB, from 10 to 200, is the number of kilobytes of glyph images that a context
    // keeps, by default 40; the index to them is not counted.

    // Brings the white space of a document into shape; dst may be src. Without preserveSpace,
    // leading white space and line ends go and runs of blanks become one space (also at the end);
    // with it, tabs and line feeds become spaces and carriage returns go.
    void ParseText(uint16_t* dst, const uint16_t* src);

    // Draws the lines one after the other on one baseline, starting at (x, y) in user space as
    // textAnchor says. The lines are normalised in place by ParseText. Leaves the pen at the end of
    // the text and the bounds fields empty, or with accumulateBounds around all glyph boxes.
    void drawText(uint16_t** lines, uint8_t count, Fixed x, Fixed y);
    void drawText(uint16_t* text, Fixed x, Fixed y);

    // Advance of the first length characters in user units. Neither pen nor bounds change.
    Fixed getTextWidth(const uint16_t* text, uint16_t length);

    // The advance, after ParseText in place, and lineHeight; two zeros for a null text.
    void getTextSize(uint16_t* text, uint16_t length, Fixed& width, Fixed& height);

    // Box of a text at (x, y) in whole pixels, with no transform; the bounds fields hold it too,
    // and the pen is left at its end. For an anchored text the caller puts the text's width into
    // the box beforehand: its right less its left end. Returns 0.
    uint32_t getTextBBox(uint16_t* text, Fixed x, Fixed y, MMFixedRegion* box);

    // Draws (draw not 0) or only measures up to length characters from the pen on, and moves the
    // pen. firstIndex is the place of the first character in charX, charY and charRotate. With
    // accumulateBounds the glyph boxes join the bounds fields.
    void renderText(const uint16_t* text, uint16_t length, uint8_t draw, uint32_t firstIndex);

    // The pen to x 0, down by lineHeight; sets newLineFlag.
    void newLine();

    // Breaks a text into lines of at most width whole units, for destroyTextLayout. Null for a null
    // text or when the layout engine fails; memory that runs out sets outOfMemory.
    MMTextLayout* createTextLayout(const uint16_t* text, int32_t width);
    void destroyTextLayout(MMTextLayout* layout); // null is accepted

    // Draws a text wrapped to wrapWidth from the pen on, each line moved by wrapOffsetX and
    // wrapOffsetY, underlined when textDecoration is 1. Leaves the pen on the line below the last.
    // An underline leaves strokePaint solid in the text's colour, and its own strokeHalfWidth. The
    // last two arguments are ignored.
    void drawWrappedText(uint16_t* text, uint8_t, uint8_t);

    // The font engine is started by the first context and ended with the last. The constructor and
    // the destructor call these. updateFont must also follow a change of fontWeight: it sets the
    // emboldening of the shared engine, and so that of every context's text from then on. It sets
    // lineHeight to fontSize, too; the size of the text itself follows fontSize without it.
    // initFontLib returns 1 when there is no memory for the engine.
    uint32_t initFontLib();
    void releaseFontLib();
    void updateFont();
    void releaseFont();
    void createLayoutManager();
    void destroyLayoutManager();

    // --- Strip fillers --------------------------------------------------------------------------
    // Each fills the current span with the current paint. They take everything from the span fields
    // and do no clipping. The T fillers blend with the coverage fields.

    void drawSolidStrip();
    void drawSolidXORStrip();
    void drawPickingStrip();
    void drawSolidTStrip();
    void drawTransStrip(); // blends with paintOpacity alone; for callers, no rasteriser uses it

    // What follows is said of the classic rules; by the refined ones all of them sample at pixel
    // centres and blend a pixel over itself, and colours written are opaque.

    // Gradients: the parameter is taken at the pixel's top left corner. The T fillers advance
    // spanCoverageNext over every pixel and use up the tail coverage; a span without pixels can
    // still have a tail. They blend each pixel with its right-hand neighbour as the background.
    // Inside the ramp the alpha written or approached is 255, outside it is the end stop's.
    void drawLinearGradientStrip();
    void drawLinearGradientTStrip();
    void drawRadialGradientStrip();
    void drawRadialGradientTStrip();

    // Image patterns by nearest, bilinear and bicubic sampling; coverage and background as for the
    // gradients. The nearest ones sample at pixel centres, the others on the top edge of the row,
    // the first pixel at spanStart. Bicubic ones want an image of at least 2 by 2 texels.
    void drawPatternStrip();
    void drawPatternTStrip();
    void drawBiLinPatternStrip();
    void drawBiLinPatternTStrip();
    void drawBiCubPatternStrip();
    void drawBiCubPatternTStrip();

    // A function's pixels, in both modes by the refined rules. The first writes them as they are.
    void drawSourceStrip();
    void drawSourceTStrip();

    // --- State ----------------------------------------------------------------------------------
    // All fields, in the order of the record. The heading of a group says whose it is:
    //   SET     by callers; operations read it, and where one writes it, that is said there
    //   LEFT    by operations, for callers to read
    //   INNER   to the library; callers leave it alone unless they draw spans or rows themselves
    // A field starts at 0 (empty, off, null) unless its default stands here.

    // INNER: memory.
    MMStackContext scratchStack;  // temporary arrays of all operations
    MMCacheContext<48> fontCache; // glyph images; each font size leaves eight nodes of its index

    // SET: paints.
    MMPaint strokePaint; // default: kPaintNone, opacity 255
    MMPaint fillPaint;   // default: solid, opaque black

    // INNER: the font engine's.
    void* currentGlyph;    // glyph image that is still to be given back
    uint16_t* fontMetrics; // record of the font engine, owned; null: no text

    // SET: font and pen. Drawing text moves the pen.
    Fixed lineHeight;    // distance between baselines, user units; default: 12.0. See updateFont
    Fixed fontSize;      // user units per em; default: 12.0
    uint32_t fontStyle;  // MMFontStyle; default: upright
    uint32_t textAnchor; // MMTextAnchor; default: start
    uint8_t fontWeight;  // hundreds, bold from 6 on; default: 4. Call updateFont after a change
    uint8_t newLineFlag; // LEFT: set by newLine, cleared by drawWrappedText
    Fixed penX;          // where the next text goes on, user units
    Fixed penY;

    // SET: placing of single characters, by their index in the text. A list of positions counts
    // from two values on; one rotation turns all characters, more turn one each.
    const Fixed* charX; // user units
    uint32_t charXCount;
    const Fixed* charY;
    uint32_t charYCount;
    const Degrees* charRotate;
    uint32_t charRotateCount;
    uint8_t preserveSpace; // 1: ParseText keeps white space

    // SET: wrapped text.
    Fixed wrapWidth;   // line width of drawWrappedText, user units; its whole part counts
    Fixed wrapOffsetX; // added to the pen for each of its lines
    Fixed wrapOffsetY;
    uint32_t textDecoration; // 1: drawWrappedText underlines

    // SET: the transform, and the clip rectangle: left and top inclusive, right and bottom
    // exclusive. By default it is empty, so that nothing is drawn.
    Matrix2D savedTransforms[2]; // free for callers; default: identity
    Matrix2D transform;          // user space to device pixels; default: identity
    int16_t clipLeft;            // device pixels
    int16_t clipTop;
    int16_t clipRight;
    int16_t clipBottom;

    // SET: stroke style.
    Fixed strokeHalfWidth;  // user units; default: 0.5
    Fixed miterLimit;       // greatest miter length by stroke width; default: 4.0
    uint8_t joinStyle;      // MMJoinStyle; default, and for unknown values: miter
    uint8_t capStyle;       // MMCapStyle; default, and for unknown values: butt
    const Fixed* dashArray; // lengths on and off alternately, user units; null: no dashes
    Fixed dashOffset;       // distance into the pattern at which a subpath starts
    uint16_t dashCount;     // entries of dashArray

    // SET: images, and what the bounds cover.
    uint8_t patternFilter;    // MMPatternFilter; default: bilinear. Unknown values draw no image
    uint8_t imageOpacity;     // taken over into paintOpacity by drawImage; default: 255
    uint8_t accumulateBounds; // strokes and text unite the bounds of all their pieces
    uint8_t reservedFlag;     // nothing reads it; default: 1

    // LEFT: bounds of the last polygon drawn, or of what accumulateBounds unites; device space.
    Fixed boundsMinX;
    Fixed boundsMinY;
    Fixed boundsMaxX;
    Fixed boundsMaxY;

    // INNER: the paint being drawn, a copy of fillPaint or strokePaint, or an image. SET before the
    // polygon operations.
    MMPaint currentPaint;

    // INNER: the current span, from the rasteriser to the strip filler. The first pixel is column
    // spanStart >> 16, the one after the last spanEnd >> 16. Without antiAlias both are exact:
    // where the shape, half a pixel further right, meets the row; with it they are whole columns,
    // but for polygons that lie within one row by the classic rules.
    Fixed spanStart;
    Fixed spanEnd;
    int32_t spanRow;
    Pixel* spanPixels;         // column 0 of the row
    Coverage spanCoverage;     // of the first pixel
    Coverage spanCoverageNext; // of the second pixel; the T fillers advance it
    Coverage spanCoverageStep; // added per pixel from the second on
    Coverage spanTailCoverage; // of one more pixel right of the span; 0 or less: none

    // INNER: the edge state of a row. Only smoothEdges reads it; rasterMonotonePolygon leaves here
    // the last anti-aliased row that it drew between two straight edges. The edges' x at the bottom
    // of the row are spanStart and spanEnd. Where the alphas differ each edge takes its own, and
    // what lies between the edges, or in a column of both, the lesser one.
    Fixed leftPreviousX; // x at the top of the row
    Fixed rightPreviousX;
    Fixed leftSlope; // x per row
    Fixed rightSlope;
    Fixed leftCoverageSlope; // coverage per pixel of travel
    Fixed rightCoverageSlope;
    uint8_t leftEdgeAlpha; // height of the edge within the row, 255 for a whole row
    uint8_t rightEdgeAlpha;

    // SET: the target and how it is drawn into.
    uint8_t antiAlias;      // bit 0: edges are anti-aliased; default: off
    uint8_t drawSuppressed; // not 0: polygons only set the bounds
    MMPixmap target;        // default: no pixels, background 0xFFFFFFFF

    // SET: the point that kPaintPicking looks for. It is hit by a span from spanStart to spanEnd,
    // both included, when pickY is just that row, without a fraction.
    Fixed pickX;
    Fixed pickY;

    // LEFT: cleared by the caller alone.
    uint8_t pickHit;      // 1 after a hit
    uint16_t outOfMemory; // bit 0: kScratchExhausted

    uint32_t renderFlags; // SET: kRenderBoundsOnly
    void* layoutControl;  // INNER: the layout engine's handle, made by the first createTextLayout

    // SET: positions between the points that getBezierPts and getCircularArcPts write. Paths,
    // strokes and rounded rectangles put its default back: 1.
    int32_t pointStep;
    uint8_t fillRule; // SET: MMFillRule of fills; default, and for unknown values: non-zero

    // SET: the rules that everything is drawn by. 0: the classic ones, which stay as they are. 1:
    // refined drawing, closer to the ideal picture; it may change as it becomes better.
    // Decided once per call, so that neither costs the other anything.
    uint8_t refined;

    // SET: what shows of all that is drawn by the operations (not by the strip fillers above);
    // null, the default: everything. Coverage is multiplied with the mask's levels; exclusive-or
    // and picking take a pixel whole from a level of 128 on. The bounds fields are those of the
    // shapes, as with the clip rectangle. The mask must stay while it is named here.
    const MMMask* clipMask;

    // SET: null, the default, or the mask that the operations draw into in place of the target:
    // whatever the paint, it writes its coverage times its opacity (by the refined rules also times
    // the alpha of a solid colour) over the levels that are there. kPaintNone and kPaintPicking
    // draw nothing. clipMask counts here too: so a clip is drawn inside another.
    MMMask* maskTarget;

    const MMLayerSurface* layer; // INNER: where the innermost MMLayer is drawn

    // INNER: the drawing code of the processor's level, chosen by the constructor: the widest that
    // the processor has, with the same pixels at each. The environment variable MM2D_LEVEL may name
    // another: "base", which there always is, "avx2", "avx512" or "neon". A name of none counts for
    // nothing.
    const LevelTable* level;

    // INNER: what the paint itself draws the current polygon by where a mask or a layer comes
    // first.
    const OwnFillers* ownFillers;

    // INNER: rows from spanRow on that the fillers of solid colours and patterns draw alike; 1 but
    // while they are called.
    uint32_t spanRows;
};

// Turns every run of tabs, line ends and spaces into one space, also at both ends; dst may be src.
void ParseText2(uint16_t* dst, const uint16_t* src);

#pragma GCC visibility pop

} // namespace Graphics2D
} // namespace KAVO
