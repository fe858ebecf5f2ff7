// SPDX-License-Identifier: MIT
// A paragraph broken into lines, as a record for callers.
#include "graphics2d/MMContext2D.h"
#include "graphics2d/OutOfMemory.h"
#include "graphics2d/text/ParagraphLayout.h"

#include <cstdlib>

namespace KAVO {
namespace Graphics2D {

namespace {

// The room of one line of n code units in bytes.
constexpr size_t lineBytes(uint32_t n)
{
    return (2 * size_t{n} + 5) & ~size_t{3};
}

// The lines in blocks of their own, or less of them when memory runs out.
void copyLines(const ParagraphLayout& paragraph, MMTextLayout& layout)
{
    const uint16_t count = paragraph.lineCount();
    layout.lines = static_cast<uint16_t**>(std::calloc(count, sizeof(uint16_t*)));
    if (layout.lines == nullptr) return;
    for (; layout.lineCount < count; ++layout.lineCount) {
        const size_t bytes = lineBytes(paragraph.lengthOf(layout.lineCount));
        uint16_t* line = static_cast<uint16_t*>(std::malloc(bytes));
        if (line == nullptr) return;
        paragraph.copyLine(layout.lineCount, line);
        layout.lines[layout.lineCount] = line;
    }
}

} // namespace

void MMContext2D::createLayoutManager()
{
    layoutControl = nullptr;
}

void MMContext2D::destroyLayoutManager()
{
    if (layoutControl != nullptr)
        TsLayoutControl_delete(static_cast<TsLayoutControl*>(layoutControl));
    layoutControl = nullptr;
}

MMTextLayout* MMContext2D::createTextLayout(const uint16_t* text, int32_t width)
{
    if (text == nullptr) return nullptr;
    ParagraphLayout paragraph;
    if (!paragraph.compose(*this, text, width)) return nullptr;
    MMTextLayout* layout = static_cast<MMTextLayout*>(std::calloc(1, sizeof(MMTextLayout)));
    if (layout != nullptr && paragraph.lineCount() != 0) copyLines(paragraph, *layout);
    if (layout != nullptr && layout->lineCount == paragraph.lineCount()) return layout;
    noteOutOfMemory(*this);
    destroyTextLayout(layout);
    return nullptr;
}

void MMContext2D::destroyTextLayout(MMTextLayout* layout)
{
    if (layout == nullptr) return;
    for (uint32_t i = 0; i < layout->lineCount; ++i)
        std::free(layout->lines[i]);
    std::free(layout->lines);
    std::free(layout);
}

} // namespace Graphics2D
} // namespace KAVO
