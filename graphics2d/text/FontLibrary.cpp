// SPDX-License-Identifier: MIT
// Starting, sharing and ending the font engine, and the font state of a context.
//
// One engine serves all contexts of the process, because starting one is expensive: the first
// context to come starts it, the last one to go ends it.
#include "graphics2d/text/FontLibrary.h"

#include "graphics2d/MMContext2D.h"
#include "math/FixedMath.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace KAVO {
namespace Graphics2D {

void* fontEngine = nullptr;
int32_t fontEngineUsers = 0;
int32_t fontEmboldening = 0;
char* fontFile = nullptr;

namespace {

constexpr int32_t kEngineHeapBytes = 512000;
constexpr char kFontName[] = "SSong";
constexpr char kFontFile[] = "AMCSL.TTF";
constexpr char kFontDirectory[] = "/usr/lib/ybn/lib/fonts";
constexpr char kFontDirectoryVariable[] = "YBN_RES_FONT_PATH";

constexpr uint8_t kLastUprightWeight = 5;
constexpr int32_t kBoldFraction = 0x199C; // about 0.1 em

void registerFont()
{
    const size_t bytes = copyFontFile(nullptr, 0) + 1;
    char* path = static_cast<char*>(std::malloc(bytes));
    if (path == nullptr) return;
    copyFontFile(path, bytes);
    FS_add_font(fontEngine, kFontName, path, 0, 0);
    std::free(path);
}

bool hasRegisteredFont()
{
    uint32_t word;
    std::memcpy(&word, static_cast<uint8_t*>(fontEngine) + FS_REGISTERED_BYTE, sizeof word);
    return word != 0;
}

void endEngine()
{
    FS_exit(fontEngine);
    std::free(fontEngine);
    fontEngine = nullptr;
    fontEmboldening = 0;
}

// Gives the engine its font. Nothing is reported: without one the engine answers without glyphs,
// until a context comes for which it can be registered.
void chooseFont()
{
    if (!hasRegisteredFont()) registerFont();
    FS_set_font(fontEngine, kFontName);
    FS_set_cmap(fontEngine, 3, 1);
}

// False when there is no memory for it.
bool startEngine()
{
    fontEngine = std::calloc(1, FS_STATE_BYTES);
    if (fontEngine == nullptr) return false;
    if (FS_init(fontEngine, kEngineHeapBytes) == 0) return true;
    endEngine();
    return false;
}

void endUnusedEngine()
{
    if (fontEngineUsers == 0 && fontEngine != nullptr) endEngine();
}

// Makes the context one that uses the engine. False when there is no memory for its metrics.
bool joinEngine(MMContext2D& context)
{
    context.fontMetrics = static_cast<uint16_t*>(std::calloc(1, FS_METRICS_BYTES));
    if (context.fontMetrics != nullptr)
        ++fontEngineUsers;
    else
        endUnusedEngine();
    return context.fontMetrics != nullptr;
}

// The font's full extent at a size; 0 for a font without units.
Fixed fullExtent(const uint16_t* metrics, Fixed size)
{
    const int32_t ascent = static_cast<int16_t>(metrics[FS_METRICS_ASCENT]);
    const int32_t descent = static_cast<int16_t>(metrics[FS_METRICS_DESCENT]);
    const int32_t unitsPerEm = metrics[FS_METRICS_UNITS_PER_EM];
    return unitsPerEm != 0 ? fixMulDiv(size, ascent - descent, unitsPerEm) : 0;
}

} // namespace

size_t copyFontFile(char* path, size_t bytes)
{
    int length;
    if (fontFile != nullptr) {
        length = std::snprintf(path, bytes, "%s", fontFile);
    } else {
        const char* variable = std::getenv(kFontDirectoryVariable);
        const char* directory = variable != nullptr ? variable : kFontDirectory;
        length = std::snprintf(path, bytes, "%s/%s", directory, kFontFile);
    }
    return length > 0 ? static_cast<size_t>(length) : 0;
}

uint32_t MMContext2D::initFontLib()
{
    const bool starts = fontEngine == nullptr;
    if (starts && !startEngine()) return 1;
    if (starts || !hasRegisteredFont()) chooseFont();
    if (fontMetrics == nullptr && !joinEngine(*this)) return 0;
    FS_font_metrics(fontEngine, fontMetrics);
    lineHeight = fullExtent(fontMetrics, fontSize);
    return 0;
}

void MMContext2D::releaseFontLib()
{
    releaseFont();
    if (fontMetrics == nullptr) return;
    std::free(fontMetrics);
    fontMetrics = nullptr;
    --fontEngineUsers;
    endUnusedEngine();
}

void MMContext2D::updateFont()
{
    if (fontEngine != nullptr) {
        fontEmboldening = fontWeight > kLastUprightWeight ? kBoldFraction : 0;
        FS_set_bold_pct(fontEngine, fontEmboldening);
    }
    lineHeight = fontSize;
}

void MMContext2D::releaseFont()
{
    if (currentGlyph == nullptr) return;
    if (fontEngine != nullptr) FS_free_char(fontEngine, currentGlyph);
    currentGlyph = nullptr;
}

} // namespace Graphics2D
} // namespace KAVO
