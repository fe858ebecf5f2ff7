// SPDX-License-Identifier: MIT
// Gradients and images through Qt's raster engine.
#include "Paints.h"
#include "QtStops.h"

#include <QImage>
#include <QPainter>

#include <memory>

namespace {

QBrush gradientBrush(PaintedSquare::Kind kind)
{
    if (kind == PaintedSquare::Linear) {
        QLinearGradient gradient(0, 0, kLinearEnd.x, kLinearEnd.y);
        gradient.setStops(qtStops());
        return gradient;
    }
    QRadialGradient gradient(kMiddle, kMiddle, kMiddle);
    gradient.setStops(qtStops());
    return gradient;
}

struct Drawing {
    PaintedSquare square;
    QImage target{kSceneSize, kSceneSize, QImage::Format_ARGB32_Premultiplied};
    std::vector<uint32_t> texels;
    QImage image;
    QBrush brush;

    explicit Drawing(const PaintedSquare& description)
        : square(description), texels(paintImage(square.hasAlpha, true)),
          image(reinterpret_cast<const uchar*>(texels.data()), kImageSize, kImageSize,
                kImageSize * 4,
                square.hasAlpha ? QImage::Format_ARGB32_Premultiplied : QImage::Format_RGB32)
    {
        target.fill(Qt::white);
        if (square.kind != PaintedSquare::Image) brush = gradientBrush(square.kind);
    }

    void draw()
    {
        QPainter painter(&target);
        painter.setOpacity(square.opacity / 255.0);
        const QRectF all(0, 0, square.size, square.size);
        if (square.kind != PaintedSquare::Image) {
            painter.fillRect(all, brush);
            return;
        }
        painter.setRenderHint(QPainter::SmoothPixmapTransform, square.filter == Filter::Bilinear);
        painter.rotate(square.degrees);
        painter.scale(square.scale, square.scale);
        if (square.degrees == 0)
            painter.drawImage(0, 0, image);
        else // in tiles, as an image alone would leave corners of the square unpainted
            painter.fillRect(painter.transform().inverted().mapRect(all), QBrush(image));
    }
};

} // namespace

// It has no bicubic filter.
Draw drawWithQt(const PaintedSquare& square)
{
    if (square.filter == Filter::Bicubic) return {};
    auto drawing = std::make_shared<Drawing>(square);
    return [drawing] { drawing->draw(); };
}
