// SPDX-License-Identifier: MIT
#include "svg/text/GlyphOutlines.h"

#ifdef MM2D_WITH_FREETYPE
#include "graphics2d/convenience/MMText.h"

#include <string>

#include <ft2build.h>
#include FT_FREETYPE_H
#include FT_OUTLINE_H
#endif

namespace KAVO {
namespace Svg {

namespace {

constexpr uint32_t kBoldKey = 0x10000; // above all characters
constexpr size_t kMostSegments = 1 << 18;

} // namespace

#ifdef MM2D_WITH_FREETYPE

namespace {

// The emboldening of the library: a part of the em, of which three quarters go into the width.
constexpr double kBoldPart = 0x199C / 65536.0;
constexpr double kBoldWidth = kBoldPart * 3 / 4;
constexpr double kBoldHeight = kBoldPart / 4;

std::string fontFileOfContexts()
{
    std::string path(Graphics2D::getFontFile(nullptr, 0) + 1, '\0');
    Graphics2D::getFontFile(&path[0], path.size());
    path.pop_back();
    return path;
}

// Takes the curves of a glyph, in font units, y up.
struct Pen {
    Outline& outline;
    double unitsPerEm;

    Point point(const FT_Vector* p) const
    {
        return {static_cast<double>(p->x) / unitsPerEm, -static_cast<double>(p->y) / unitsPerEm};
    }
    static int moveTo(const FT_Vector* to, void* pen)
    {
        Pen& self = *static_cast<Pen*>(pen);
        if (!self.outline.empty()) self.outline.close();
        self.outline.moveTo(self.point(to));
        return 0;
    }
    static int lineTo(const FT_Vector* to, void* pen)
    {
        Pen& self = *static_cast<Pen*>(pen);
        self.outline.lineTo(self.point(to));
        return 0;
    }
    static int conicTo(const FT_Vector* control, const FT_Vector* to, void* pen)
    {
        Pen& self = *static_cast<Pen*>(pen);
        self.outline.quadraticTo(self.point(control), self.point(to));
        return 0;
    }
    static int cubicTo(const FT_Vector* control1, const FT_Vector* control2, const FT_Vector* to,
                       void* pen)
    {
        Pen& self = *static_cast<Pen*>(pen);
        self.outline.curveTo(self.point(control1), self.point(control2), self.point(to));
        return 0;
    }
};

} // namespace

struct GlyphOutlines::Font {
    FT_Library library = nullptr;
    FT_Face face = nullptr; // null: no font

    Font()
    {
        if (FT_Init_FreeType(&library) != 0) return;
        if (FT_New_Face(library, fontFileOfContexts().c_str(), 0, &face) != 0) return;
        if (!FT_IS_SCALABLE(face) || face->units_per_EM == 0) {
            FT_Done_Face(face);
            face = nullptr;
            return;
        }
        // As the library does, the first 65,536 characters of Unicode.
        for (int i = 0; i < face->num_charmaps; ++i) {
            FT_CharMap map = face->charmaps[i];
            if (map->platform_id == 3 && map->encoding_id == 1) {
                FT_Set_Charmap(face, map);
                break;
            }
        }
    }
    ~Font()
    {
        if (library != nullptr) FT_Done_FreeType(library); // and its face
    }
    Font(const Font&) = delete;
    Font& operator=(const Font&) = delete;

    // In font units.
    std::unique_ptr<GlyphOutline> load(uint16_t character, bool bold) const
    {
        constexpr FT_Int32 kFlags = FT_LOAD_NO_SCALE | FT_LOAD_NO_HINTING | FT_LOAD_NO_BITMAP;
        const FT_UInt index = face != nullptr ? FT_Get_Char_Index(face, character) : 0;
        if (index == 0 || FT_Load_Glyph(face, index, kFlags) != 0) return nullptr;
        const FT_GlyphSlot slot = face->glyph;
        if (slot->format != FT_GLYPH_FORMAT_OUTLINE) return nullptr;
        const double em = face->units_per_EM;
        const auto wider = static_cast<FT_Pos>(bold ? std::lround(kBoldWidth * em) : 0);
        const auto higher = static_cast<FT_Pos>(bold ? std::lround(kBoldHeight * em) : 0);
        if (bold && FT_Outline_EmboldenXY(&slot->outline, wider, higher) != 0) return nullptr;
        auto glyph = std::make_unique<GlyphOutline>();
        glyph->advance = static_cast<double>(slot->metrics.horiAdvance + wider) / em;
        const FT_Outline_Funcs calls{Pen::moveTo, Pen::lineTo, Pen::conicTo, Pen::cubicTo, 0, 0};
        Pen pen{glyph->outline, em};
        if (FT_Outline_Decompose(&slot->outline, &calls, &pen) != 0) return nullptr;
        if (!glyph->outline.empty()) glyph->outline.close();
        glyph->bounds = glyph->outline.bounds();
        return glyph;
    }
};

#else

struct GlyphOutlines::Font {
    static constexpr const void* face = nullptr;
    std::unique_ptr<GlyphOutline> load(uint16_t, bool) const { return nullptr; }
};

#endif

GlyphOutlines::GlyphOutlines() = default;
GlyphOutlines::~GlyphOutlines() = default;

GlyphOutlines::Font& GlyphOutlines::font()
{
    if (!font_) font_ = std::make_unique<Font>();
    return *font_;
}

bool GlyphOutlines::usable()
{
    return font().face != nullptr;
}

const GlyphOutline* GlyphOutlines::find(uint16_t character, bool bold)
{
    const uint32_t key = character | (bold ? kBoldKey : 0u);
    const auto found = glyphs_.find(key);
    if (found != glyphs_.end()) return found->second.get();
    if (segments_ > kMostSegments) {
        glyphs_.clear();
        segments_ = 0;
    }
    std::unique_ptr<GlyphOutline> glyph = font().load(character, bold);
    if (glyph) segments_ += glyph->outline.segments().size();
    return (glyphs_[key] = std::move(glyph)).get();
}

} // namespace Svg
} // namespace KAVO
