// SPDX-License-Identifier: MIT
// Filling lines with a measured text. Knows nothing of where the measures come from.
#pragma once

#include <cstddef>
#include <cstdint>

constexpr uint16_t kSoftHyphen = 0x00AD;
constexpr uint16_t kHyphen = 0x002D; // what a soft hyphen shows as: a character that all fonts have

// What the filler knows of the place before a code unit; the last entry is the end of the text.
struct TextPosition {
    int64_t sum;          // width of all units before, 16.16
    uint32_t visibleEnd;  // behind the last unit before that is not blank
    uint32_t nextBreak;   // the next place further on where a line may end
    uint32_t nextCluster; // the next place further on that is not inside a grapheme cluster
};

struct FilledLine {
    uint32_t first; // index of its first unit in the filled text
    uint32_t count;
};

bool isLineEnd(uint16_t unit);

// Greedy: every line takes as much as fits. A line ends where the text may break, or, when not even
// the first word fits, between grapheme clusters, of which it takes at least one. Blanks at the end
// of a line need no room and are dropped where the line was broken.
class LineFiller {
public:
    // count units with count + 1 positions; limit is the width of a line, hyphenWidth that of
    // kHyphen, both 16.16.
    LineFiller(const uint16_t* units, const TextPosition* positions, uint32_t count, int64_t limit,
               int64_t hyphenWidth)
        : units_(units), positions_(positions), count_(count), limit_(limit),
          hyphenWidth_(hyphenWidth)
    {
    }
    ~LineFiller();
    LineFiller(const LineFiller&) = delete;
    LineFiller& operator=(const LineFiller&) = delete;

    // False when memory runs out. What does not fit into 65,535 lines is left out.
    bool fill();

    // The lines and the text they refer to, without soft hyphens and line ends; the caller takes
    // both over.
    FilledLine* takeLines();
    uint16_t* takeText();
    uint32_t lineCount() const { return lineCount_; }

private:
    // Where a line's content ends and where the next one starts.
    struct LineBreak {
        uint32_t end;
        uint32_t next;
    };

    bool fillParagraph(uint32_t start, uint32_t end);
    LineBreak breakAfter(uint32_t start, uint32_t end) const;
    bool breakAtWords(uint32_t start, uint32_t end, LineBreak& best) const;
    LineBreak breakAtClusters(uint32_t start, uint32_t end) const;
    uint32_t clusterEnd(uint32_t start, uint32_t end) const;
    uint32_t skipBlanks(uint32_t start, uint32_t end) const;
    int64_t widthOf(uint32_t start, uint32_t end) const;
    bool addLine(uint32_t start, uint32_t end, bool broken);

    const uint16_t* units_;
    const TextPosition* positions_;
    uint32_t count_;
    int64_t limit_;
    int64_t hyphenWidth_;

    uint16_t* text_ = nullptr;
    uint32_t textSize_ = 0;
    FilledLine* lines_ = nullptr;
    uint32_t lineCount_ = 0;
    uint32_t lineRoom_ = 0;
};
