// A context over a small picture with guard bands, for text drawn by the fake font engine.
#pragma once

#include "graphics2d/FontLibrary.h"
#include "graphics2d/MMContext2D.h"
#include "tests/support/FakeFontEngine.h"

#include <algorithm>
#include <string>
#include <vector>

using namespace KAVO::Graphics2D;

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
    explicit FreshEngine(uint32_t refused = 0) : engine_(fontEngine), users_(fontEngineUsers)
    {
        fontEngine = nullptr;
        fontEngineUsers = 0;
        fakeFontEngine = {};
        fakeFontEngine.refused = refused;
    }
    ~FreshEngine()
    {
        fontEngine = engine_;
        fontEngineUsers = users_;
    }
    FreshEngine(const FreshEngine&) = delete;
    FreshEngine& operator=(const FreshEngine&) = delete;

private:
    void* engine_;
    int32_t users_;
};

// With an identity transform and a whole font size, glyphs are fontSize pixels square.
struct TextScene : FreshEngine {
    static constexpr int32_t kGuard = 100; // words before and after the picture
    static constexpr Pixel kGuardPixel = 0xDEADBEEF;

    TextScene(uint16_t width, uint16_t height, uint32_t refused = 0)
        : FreshEngine(refused), words(static_cast<size_t>(width) * height + 2 * kGuard, kGuardPixel)
    {
        context.target = {width, height, width * 4u, 0xFFFFFFFF, words.data() + kGuard, 0};
        context.clipRight = static_cast<int16_t>(width);
        context.clipBottom = static_cast<int16_t>(height);
        fill(0xFFFFFFFF);
    }

    void fill(Pixel ground) { storePicture(std::vector<Pixel>(pixelCount(), ground)); }

    std::vector<Pixel> picture() const { return {words.begin() + kGuard, words.end() - kGuard}; }

    void storePicture(const std::vector<Pixel>& pixels)
    {
        std::copy(pixels.begin(), pixels.end(), words.begin() + kGuard);
    }

    Pixel at(int32_t x, int32_t y) const
    {
        return words[static_cast<size_t>(kGuard + y * context.target.width + x)];
    }

    bool guardsIntact() const
    {
        for (size_t i = 0; i < static_cast<size_t>(kGuard); ++i)
            if (words[i] != kGuardPixel || words[words.size() - 1 - i] != kGuardPixel) return false;
        return true;
    }

    void draw(const char16_t* s, int32_t x, int32_t y)
    {
        Text text(s);
        context.drawText(text.data(), x * kFixedOne, y * kFixedOne);
    }

    size_t pixelCount() const { return words.size() - 2 * kGuard; }

    std::vector<Pixel> words;
    MMContext2D context;
};
