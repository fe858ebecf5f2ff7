// SPDX-License-Identifier: MIT
// Texts, and a picture of them as the fake font engine draws them.
#pragma once

#include "graphics2d/MMContext2D.h"
#include "graphics2d/text/FontLibrary.h"
#include "tests/support/FakeFontEngine.h"
#include "tests/support/Picture.h"

#include <algorithm>
#include <string>
#include <vector>

// A text with room to be normalised in place.
class Text {
public:
    explicit Text(const std::u16string& s) : units_(s.begin(), s.end()) { units_.push_back(0); }

    uint16_t* data() { return units_.data(); }
    std::u16string string() const
    {
        return {units_.begin(), std::find(units_.begin(), units_.end(), 0)};
    }

private:
    std::vector<uint16_t> units_;
};

// No engine and no users of one until the scope ends.
class FreshEngine {
public:
    // refused: bits of the calls that the new engine refuses, see FakeFontEngine.
    explicit FreshEngine(uint32_t refused = 0)
    {
        KAVO::Graphics2D::fontEngine = nullptr;
        KAVO::Graphics2D::fontEngineUsers = 0;
        fakeFontEngine = {};
        fakeFontEngine.refused = refused;
    }
    ~FreshEngine()
    {
        KAVO::Graphics2D::fontEngine = engine_;
        KAVO::Graphics2D::fontEngineUsers = users_;
    }
    FreshEngine(const FreshEngine&) = delete;
    FreshEngine& operator=(const FreshEngine&) = delete;

private:
    void* engine_ = KAVO::Graphics2D::fontEngine;
    int32_t users_ = KAVO::Graphics2D::fontEngineUsers;
};

// With an identity transform and a whole font size, glyphs are fontSize pixels square.
struct TextScene : FreshEngine, Picture {
    explicit TextScene(int side, uint32_t refused = 0) : FreshEngine(refused), Picture(side) {}

    void draw(const char16_t* s, int32_t x, int32_t y)
    {
        context.drawText(Text(s).data(), x * KAVO::kFixedOne, y * KAVO::kFixedOne);
    }
};
