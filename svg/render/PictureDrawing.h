// SPDX-License-Identifier: MIT
// Drawing into a picture of its own, for patterns and filters.
#pragma once

#include "svg/geometry/PixelArea.h"
#include "svg/render/PicturePixmap.h"
#include "svg/render/Renderer.h"

namespace KAVO {
namespace Svg {

// What is drawn is no part of the outer drawing's bounds.
class Renderer::PictureDrawing {
public:
    // Premultiplied pixels, of which all may be drawn.
    PictureDrawing(Renderer& outer, Picture& picture)
        : outer_(outer), drawn_(outer.session_.bounds),
          renderer_(outer.document_, context_, outer.session_, outer.report_)
    {
        context_.target = pixmapOf(picture, false);
        context_.antiAlias = outer.context_.antiAlias;
        context_.accumulateBounds = 1;
        context_.refined = 1;
        clipTo({0, 0, picture.width, picture.height});
        renderer_.images_ = outer.images_;
        renderer_.active_ = outer.active_;
    }
    ~PictureDrawing()
    {
        outer_.session_.bounds = drawn_;
        outer_.context_.outOfMemory |= context_.outOfMemory;
    }
    PictureDrawing(const PictureDrawing&) = delete;
    PictureDrawing& operator=(const PictureDrawing&) = delete;

    Renderer& renderer() { return renderer_; }

    void clipTo(const PixelArea& area)
    {
        context_.clipLeft = static_cast<int16_t>(area.left);
        context_.clipTop = static_cast<int16_t>(area.top);
        context_.clipRight = static_cast<int16_t>(area.right);
        context_.clipBottom = static_cast<int16_t>(area.bottom);
    }

private:
    Renderer& outer_;
    Box drawn_;
    Graphics2D::MMContext2D context_;
    Renderer renderer_;
};

} // namespace Svg
} // namespace KAVO
