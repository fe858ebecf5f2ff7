// SPDX-License-Identifier: MIT
#include "platform/icu/LineFiller.h"

#include <cstdlib>

namespace {

constexpr uint32_t kMaxLines = 65535;
constexpr uint32_t kFirstLineRoom = 16;

} // namespace

bool isLineEnd(uint16_t unit)
{
    return (unit >= 0x0A && unit <= 0x0D) || unit == 0x85 || unit == 0x2028 || unit == 0x2029;
}

LineFiller::~LineFiller()
{
    std::free(text_);
    std::free(lines_);
}

FilledLine* LineFiller::takeLines()
{
    FilledLine* lines = lines_;
    lines_ = nullptr;
    return lines;
}

uint16_t* LineFiller::takeText()
{
    uint16_t* text = text_;
    text_ = nullptr;
    return text;
}

bool LineFiller::fill()
{
    // Every hyphen stands for a soft hyphen, so the filled text is never longer than the text.
    text_ = static_cast<uint16_t*>(std::malloc((size_t{count_} + 1) * sizeof(uint16_t)));
    if (text_ == nullptr) return false;
    uint32_t start = 0;
    while (start < count_) {
        uint32_t end = start;
        while (end < count_ && !isLineEnd(units_[end]))
            ++end;
        if (!fillParagraph(start, end)) return false;
        const bool isPair = end + 1 < count_ && units_[end] == '\r' && units_[end + 1] == '\n';
        start = end + (isPair ? 2 : 1);
    }
    return true;
}

bool LineFiller::fillParagraph(uint32_t start, uint32_t end)
{
    if (start == end) return addLine(start, end, false);
    while (start < end && lineCount_ < kMaxLines) {
        const LineBreak lineBreak = breakAfter(start, end);
        const bool broken = lineBreak.next < end;
        // A line that broken blanks would leave empty is none.
        const uint32_t first = broken && lineBreak.end == start ? lineBreak.next : start;
        if (first == start && !addLine(start, lineBreak.end, broken)) return false;
        start = lineBreak.next;
    }
    return true;
}

LineFiller::LineBreak LineFiller::breakAfter(uint32_t start, uint32_t end) const
{
    LineBreak best;
    if (breakAtWords(start, end, best)) return best;
    const uint32_t word = skipBlanks(start, end);
    if (word > start) return {start, word};
    return breakAtClusters(start, end);
}

// The last place at which a line from start on may end, if any fits. A soft hyphen wants room for
// its hyphen, unless the line goes on.
bool LineFiller::breakAtWords(uint32_t start, uint32_t end, LineBreak& best) const
{
    bool found = false;
    uint32_t next = start;
    while (next < end) {
        next = positions_[next].nextBreak;
        if (next > end) next = end;
        uint32_t visibleEnd = positions_[next].visibleEnd;
        if (visibleEnd < start) visibleEnd = start;
        const int64_t width = widthOf(start, visibleEnd);
        if (width > limit_) break;
        if (next == end) {
            best = {end, end};
            return true;
        }
        const bool hyphenated = units_[next - 1] == kSoftHyphen;
        if (visibleEnd == start || (hyphenated && width + hyphenWidth_ > limit_)) continue;
        best = {visibleEnd, next};
        found = true;
    }
    return found;
}

LineFiller::LineBreak LineFiller::breakAtClusters(uint32_t start, uint32_t end) const
{
    uint32_t lineEnd = clusterEnd(start, end);
    while (lineEnd < end) {
        const uint32_t next = clusterEnd(lineEnd, end);
        const bool hyphenated = next < end && units_[next - 1] == kSoftHyphen;
        if (widthOf(start, next) + (hyphenated ? hyphenWidth_ : 0) > limit_) break;
        lineEnd = next;
    }
    return {lineEnd, skipBlanks(lineEnd, end)};
}

// A soft hyphen belongs to the cluster before it.
uint32_t LineFiller::clusterEnd(uint32_t start, uint32_t end) const
{
    uint32_t next = positions_[start].nextCluster;
    while (next < end && units_[next] == kSoftHyphen)
        ++next;
    return next < end ? next : end;
}

uint32_t LineFiller::skipBlanks(uint32_t start, uint32_t end) const
{
    // A unit is blank when the last visible one before it is still that before its end.
    while (start < end && positions_[start + 1].visibleEnd <= start)
        ++start;
    return start;
}

int64_t LineFiller::widthOf(uint32_t start, uint32_t end) const
{
    return positions_[end].sum - positions_[start].sum;
}

bool LineFiller::addLine(uint32_t start, uint32_t end, bool broken)
{
    if (lineCount_ == kMaxLines) return true;
    if (lineCount_ == lineRoom_) {
        const uint32_t room = lineRoom_ != 0 ? 2 * lineRoom_ : kFirstLineRoom;
        void* lines = std::realloc(lines_, room * sizeof(FilledLine));
        if (lines == nullptr) return false;
        lines_ = static_cast<FilledLine*>(lines);
        lineRoom_ = room;
    }
    const uint32_t first = textSize_;
    for (uint32_t i = start; i < end; ++i)
        if (units_[i] != kSoftHyphen) text_[textSize_++] = units_[i];
    if (broken && end > start && units_[end - 1] == kSoftHyphen) text_[textSize_++] = kHyphen;
    lines_[lineCount_++] = {first, textSize_ - first};
    return true;
}
