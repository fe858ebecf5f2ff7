// SPDX-License-Identifier: MIT
// The shapes of a scene through Qt's raster engine.
#include "Scene.h"

#include <QImage>
#include <QPainter>
#include <QPainterPath>

#include <memory>

namespace {

struct Drawing {
    QImage image{kSceneSize, kSceneSize, QImage::Format_ARGB32_Premultiplied};
    std::vector<Shape> shapes;
    std::vector<QPainterPath> paths;

    void add(const Shape& shape)
    {
        QPainterPath path;
        path.setFillRule(Qt::WindingFill);
        for (const Outline::Segment& segment : shape.outline.segments()) {
            const Point* p = segment.points;
            switch (segment.verb) {
            case Outline::Move:
                path.moveTo(p[0].x, p[0].y);
                break;
            case Outline::Line:
                path.lineTo(p[0].x, p[0].y);
                break;
            case Outline::Curve:
                path.cubicTo(p[0].x, p[0].y, p[1].x, p[1].y, p[2].x, p[2].y);
                break;
            case Outline::Close:
                path.closeSubpath();
                break;
            }
        }
        shapes.push_back(shape);
        paths.push_back(path);
    }

    static QPen penOf(const Shape& shape, const QColor& colour)
    {
        const bool round = shape.roundJoinsAndCaps;
        QPen pen(colour, shape.strokeWidth, Qt::SolidLine, round ? Qt::RoundCap : Qt::FlatCap,
                 round ? Qt::RoundJoin : Qt::MiterJoin);
        QVector<qreal> dashes; // in widths of the pen
        for (const double dash : shape.dashes)
            dashes.push_back(dash / shape.strokeWidth);
        if (!dashes.isEmpty()) pen.setDashPattern(dashes);
        return pen;
    }

    void draw()
    {
        QPainter painter(&image);
        painter.setRenderHint(QPainter::Antialiasing);
        for (size_t i = 0; i < shapes.size(); ++i) {
            const QColor colour = QColor::fromRgba(shapes[i].colour);
            if (shapes[i].strokeWidth == 0)
                painter.fillPath(paths[i], colour);
            else
                painter.strokePath(paths[i], penOf(shapes[i], colour));
        }
    }
};

} // namespace

Draw drawWithQt(const std::vector<Shape>& shapes)
{
    auto drawing = std::make_shared<Drawing>();
    drawing->image.fill(Qt::white);
    for (const Shape& shape : shapes)
        drawing->add(shape);
    return [drawing] { drawing->draw(); };
}
