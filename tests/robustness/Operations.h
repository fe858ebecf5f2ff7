// Every public operation that draws or measures, each with something for it to do.
#pragma once

#include "tests/robustness/SmallScene.h"
#include "tests/support/EncodedPath.h"
#include "tests/support/TextScene.h"
#include "tests/support/UserUnits.h"

namespace robust {

// Whether an operation says that memory ran out. Text that lacks memory for a glyph leaves it out
// and says nothing, as for a character without a glyph.
enum class Report { kAlways, kSometimes, kNever };

struct Operation {
    const char* name;
    bool draws;
    Report report;
    void (*run)(SmallScene&);
};

inline const EncodedPath& curvedPath()
{
    static const EncodedPath path =
        EncodedPath()
            .points({at(2, 2)})
            .curves({at(30, 4), at(-9, 18), at(20, 20)}, EncodedPath::kClosed)
            .points({at(4, 20), at(12, 3), at(20, 20), at(3, 9), at(21, 9)}, EncodedPath::kOpen);
    return path;
}

const Operation kOperations[] = {
    {"drawPath", true, Report::kAlways,
     [](SmallScene& s) { s.context.drawPath(curvedPath().data()); }},
    {"drawPath, dashed", true, Report::kAlways,
     [](SmallScene& s) {
         s.dash();
         s.context.drawPath(curvedPath().data());
     }},
    {"drawPolyline", true, Report::kAlways,
     [](SmallScene& s) { s.context.drawPolyline(&s.starPath, 1, 1); }},
    {"drawDashArray", true, Report::kAlways,
     [](SmallScene& s) {
         s.dash();
         s.context.drawDashArray(&s.starPath, 1, 0);
     }},
    {"drawEllipticalRect", true, Report::kAlways,
     [](SmallScene& s) {
         s.context.drawEllipticalRect(fx(12), fx(12), fx(9), fx(7), fx(4), fx(3));
     }},
    {"drawCircularArc", true, Report::kAlways,
     [](SmallScene& s) {
         MMPoint2D centre = at(12, 12);
         s.context.drawCircularArc(&centre, fx(8), fx(20), fx(250), 1, 0);
     }},
    {"rasterPolygon", true, Report::kAlways,
     [](SmallScene& s) { s.context.rasterPolygon(s.star, 5); }},
    {"rasterComplexPolygon", true, Report::kAlways,
     [](SmallScene& s) { s.context.rasterComplexPolygon(s.star, 5); }},
    {"drawImage through the transform", true, Report::kAlways,
     [](SmallScene& s) { s.context.drawImage(&s.image, 0, 0, fx(20), fx(20), 0); }},
    {"drawImage into another pixmap", true, Report::kAlways,
     [](SmallScene& s) {
         const MMFixedRegion from = {0, 0, fx(4), fx(4)}, to = {fx(4), fx(4), fx(19), fx(22)};
         const MMPixmap target = s.context.target;
         s.context.drawImage(&s.image, &from, &target, &to, fx(20));
     }},
    {"drawText", true, Report::kNever,
     [](SmallScene& s) { s.context.drawText(Text(u"Ag i").data(), fx(1), fx(9)); }},
    {"drawText of lines, through a row buffer", true, Report::kSometimes,
     [](SmallScene& s) {
         Text first(u"Ag"), second(u"j");
         uint16_t* lines[] = {first.data(), second.data()};
         s.context.fillPaint.paintType = kPaintNone;
         s.context.strokePaint.paintType = kPaintPattern;
         s.context.drawText(lines, 2, fx(1), fx(9));
     }},
    {"drawWrappedText", true, Report::kSometimes,
     [](SmallScene& s) {
         s.dash(); // for the underline
         s.context.drawWrappedText(Text(u"Ag ij kl").data(), 0, 0);
     }},
    {"createTextLayout", false, Report::kSometimes,
     [](SmallScene& s) {
         s.context.destroyTextLayout(s.context.createTextLayout(Text(u"Ag ij kl").data(), 12));
     }},
    {"texts measured", false, Report::kNever,
     [](SmallScene& s) {
         Fixed width, height;
         MMFixedRegion box = {};
         s.context.getTextSize(Text(u"A").data(), 1, width, height);
         s.context.getTextWidth(Text(u"g").data(), 1);
         s.context.getTextBBox(Text(u"i").data(), 0, 0, &box);
     }},
    {"getPathPos", false, Report::kAlways,
     [](SmallScene& s) {
         const std::vector<uint32_t> stored = curvedPath().stored();
         MMPathPos pos = {};
         pos.path = stored.data();
         s.context.getPathPos(pos, fx(12), nullptr);
     }},
};

} // namespace robust
