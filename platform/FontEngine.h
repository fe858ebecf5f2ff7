// SPDX-License-Identifier: MIT
// The outline-font engine as the library sees it: a plain interface that a build may fill with any
// engine. platform/freetype is the usual one; MM2D_FONT_ENGINE names the CMake target to link.
//
// One engine serves the process. Its state is a block that the caller provides. All functions
// accept a block whose FS_init failed. Results are 0 for success unless said otherwise.
#pragma once

#include <stddef.h>
#include <stdint.h>

// The state block. The engine keeps what it likes in it, apart from the fifth word, which tells
// whether a font has been registered.
#define FS_STATE_BYTES 92u
#define FS_REGISTERED_BYTE 16u

// The metrics record, in 16-bit units; unused ones are 0.
#define FS_METRICS_BYTES 504u
#define FS_METRICS_UNITS_PER_EM 0u // unsigned
#define FS_METRICS_DESCENT 10u     // signed, font units, below the baseline negative
#define FS_METRICS_ASCENT 12u      // signed, font units

// A glyph image: 4 bits per pixel, two pixels per byte, the left one in the high half; 0 is empty
// and 15 full. A whole record is size bytes and can be copied as such. A size too small for the
// bitmap says that the record is without it: such an image is measured but not drawn.
typedef struct FS_GrayMap {
    uint32_t reserved;
    uint32_t size; // bytes, this header and the bitmap
    int16_t left;  // pixels from the pen to the leftmost column
    int16_t top;   // rows from the top row down to the pen
    uint32_t reserved2;
    int32_t advanceX; // 16.16 pixels
    int32_t advanceY; // 16.16 pixels, up
    int16_t width;    // pixels
    int16_t height;   // rows
    int16_t stride;   // bytes per row
    uint8_t reserved3;
    uint8_t bitmap[1]; // height * stride bytes
} FS_GrayMap;

#ifdef __cplusplus
extern "C" {
#endif

// Prepares a state block and clears its fifth word. heapBytes is what the engine may plan with.
int32_t FS_init(void* state, int32_t heapBytes);

// Releases everything except the block itself.
int32_t FS_exit(void* state);

// Registers a font file under a name and makes the fifth word non-zero; on failure it stays 0.
int32_t FS_add_font(void* state, const char* name, const char* path, int32_t index, int32_t flags);

// Makes the font of that name the current one.
int32_t FS_set_font(void* state, const char* name);

// Chooses the character map by TrueType platform and encoding; (3, 1) is Unicode's first 65,536.
int32_t FS_set_cmap(void* state, int32_t platform, int32_t encoding);

// Fills a metrics record, also without a font.
int32_t FS_font_metrics(void* state, void* metrics);

// Emboldens the glyphs that follow by a 16.16 fraction of the em.
int32_t FS_set_bold_pct(void* state, int32_t fraction);

// Maps an em square to pixels, both y up: x' = xx x + xy y, y' = yx x + yy y, 16.16.
int32_t FS_set_scale(void* state, int32_t xx, int32_t xy, int32_t yx, int32_t yy);

// The image of a character (an FS_GrayMap), to be given back with FS_free_char; null when the font
// has no glyph for it or memory runs out. An image larger than the engine draws is a record without
// its bitmap.
void* FS_get_graymap(void* state, uint32_t character);

// The same, but an image whose record would take more than bytes comes without its bitmap, at the
// cost of measuring it. An engine may leave this function out: what is only measured or lies
// outside the clip rectangle is then rendered too.
void* FS_get_graymap_within(void* state, uint32_t character, uint32_t bytes) __attribute__((weak));

int32_t FS_free_char(void* state, void* graymap);

#ifdef __cplusplus
}

// Whether the record has all of its bitmap.
inline bool FS_has_bitmap(const FS_GrayMap* image)
{
    const int32_t bytes = image->height * image->stride;
    return bytes >= 0 && image->size >= offsetof(FS_GrayMap, bitmap) + static_cast<uint32_t>(bytes);
}

static_assert(offsetof(FS_GrayMap, advanceX) == 16 && offsetof(FS_GrayMap, bitmap) == 31,
              "engines and the glyph cache share this layout");
#endif
