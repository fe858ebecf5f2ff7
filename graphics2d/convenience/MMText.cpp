// SPDX-License-Identifier: MIT
#include "graphics2d/convenience/MMText.h"

#include "graphics2d/text/FontLibrary.h"

#include <cstdlib>
#include <cstring>

namespace KAVO {
namespace Graphics2D {

namespace {

constexpr uint32_t kReplacement = 0xFFFD;

// Well-formed UTF-8, one character at a time. What is not well formed is one replacement character
// for each byte that cannot go on or begin.
class Utf8Reader {
public:
    Utf8Reader(const char* text, size_t bytes)
        : at_(reinterpret_cast<const uint8_t*>(text)), end_(at_ + bytes)
    {
    }

    bool atEnd() const { return at_ == end_; }

    uint32_t next()
    {
        const uint8_t lead = *at_++;
        if (lead < 0x80) return lead;
        if (lead >= 0xC2 && lead < 0xE0) return withTail(lead & 0x1Fu, 1, 0x80);
        if (lead >= 0xE0 && lead < 0xF0) return withTail(lead & 0x0Fu, 2, 0x800);
        if (lead >= 0xF0 && lead < 0xF5) return withTail(lead & 0x07u, 3, 0x10000);
        return kReplacement;
    }

private:
    // Adds so many bytes of six bits. Nothing is taken when they are not there, or when the
    // character should have been written shorter, is a surrogate or lies beyond Unicode.
    uint32_t withTail(uint32_t character, size_t count, uint32_t least)
    {
        if (static_cast<size_t>(end_ - at_) < count) return kReplacement;
        for (size_t i = 0; i < count; ++i) {
            if ((at_[i] & 0xC0) != 0x80) return kReplacement;
            character = character << 6 | (at_[i] & 0x3Fu);
        }
        const bool surrogate = character >= 0xD800 && character < 0xE000;
        if (character < least || surrogate || character > 0x10FFFF) return kReplacement;
        at_ += count;
        return character;
    }

    const uint8_t* at_;
    const uint8_t* end_;
};

} // namespace

MMText::MMText(const char* utf8) : MMText(utf8, utf8 != nullptr ? std::strlen(utf8) : 0) {}

// No character has more code units than bytes.
MMText::MMText(const char* utf8, size_t bytes)
    : units_(bytes < SIZE_MAX / 2
                 ? static_cast<uint16_t*>(std::malloc((bytes + 1) * sizeof(uint16_t)))
                 : nullptr)
{
    if (units_ == nullptr) return;
    for (Utf8Reader reader(utf8, bytes); !reader.atEnd();) {
        const uint32_t character = reader.next();
        if (character > 0xFFFF)
            units_[length_++] = static_cast<uint16_t>(0xD7C0 + (character >> 10));
        units_[length_++] =
            static_cast<uint16_t>(character > 0xFFFF ? 0xDC00 | (character & 0x3FF) : character);
    }
    units_[length_] = 0;
}

MMText::~MMText()
{
    std::free(units_);
}

bool hasGlyph(const MMContext2D&, uint16_t character)
{
    if (fontEngine == nullptr) return false;
    FS_set_scale(fontEngine, kFixedOne, 0, 0, kFixedOne); // small; every text sets its own
    void* image = FS_get_graymap(fontEngine, character);
    if (image == nullptr) return false;
    FS_free_char(fontEngine, image);
    return true;
}

bool setFontFile(const char* file)
{
    if (fontEngine != nullptr) return false;
    char* copy = nullptr;
    if (file != nullptr) {
        const size_t bytes = std::strlen(file) + 1;
        copy = static_cast<char*>(std::malloc(bytes));
        if (copy == nullptr) return false;
        std::memcpy(copy, file, bytes);
    }
    std::free(fontFile);
    fontFile = copy;
    return true;
}

size_t getFontFile(char* path, size_t bytes)
{
    return copyFontFile(path, bytes);
}

} // namespace Graphics2D
} // namespace KAVO
