// SPDX-License-Identifier: MIT
// The layout engine's objects for one paragraph. Internal.
#pragma once

#include "platform/LayoutEngine.h"

#include <cstdint>

namespace KAVO {
namespace Graphics2D {

class MMContext2D;

// A paragraph broken into lines. The objects are made one after the other and deleted from the last
// to the first.
class ParagraphLayout {
public:
    ParagraphLayout() = default;
    ParagraphLayout(const ParagraphLayout&) = delete;
    ParagraphLayout& operator=(const ParagraphLayout&) = delete;
    ~ParagraphLayout();

    // Breaks the text into lines of at most width whole units; only once. False when the engine
    // refuses or memory runs out, which sets the context's outOfMemory.
    bool compose(MMContext2D& context, const uint16_t* text, int32_t width);

    uint16_t lineCount() const { return lineCount_; }

    // Code units of a line.
    uint32_t lengthOf(uint32_t line) const;

    // Copies a line and a 0 behind it. A character that the engine refuses ends it.
    void copyLine(uint32_t line, uint16_t* units) const;

private:
    int32_t tryToCompose(MMContext2D& context, const uint16_t* text, int32_t width);
    bool prepare(MMContext2D& context);

    TsLayoutOptions* options_ = nullptr;
    TsFont* font_ = nullptr;
    TsFontStyle* style_ = nullptr;
    TsText* text_ = nullptr;
    TsLayout* layout_ = nullptr;
    uint16_t lineCount_ = 0;
};

} // namespace Graphics2D
} // namespace KAVO
