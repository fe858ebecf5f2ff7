// SPDX-License-Identifier: MIT
// What every scene through AGG draws on and with.
#pragma once

#include "Scene.h"

#include <agg_pixfmt_rgba.h>
#include <agg_rasterizer_scanline_aa.h>
#include <agg_renderer_scanline.h>
#include <agg_scanline_u.h>

inline agg::rgba8 aggColour(uint32_t c)
{
    return agg::rgba8(c >> 16 & 255, c >> 8 & 255, c & 255, c >> 24);
}

struct AggTarget {
    using Format = agg::pixfmt_bgra32;
    using Base = agg::renderer_base<Format>;

    std::vector<uint32_t> pixels = std::vector<uint32_t>(kSceneSize * kSceneSize, 0xFFFFFFFF);
    agg::rendering_buffer buffer{reinterpret_cast<agg::int8u*>(pixels.data()), kSceneSize,
                                 kSceneSize, kSceneSize * 4};
    Format format{buffer};
    Base base{format};
    agg::rasterizer_scanline_aa<> rasterizer;
    agg::scanline_u8 scanline;

    AggTarget() = default;
    AggTarget(const AggTarget&) = delete;
};
