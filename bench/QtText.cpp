// SPDX-License-Identifier: MIT
// Text through Qt's raster engine: glyphs that have been placed before.
#include "Paints.h"
#include "QtStops.h"
#include "Text.h"

#include <QGlyphRun>
#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QRawFont>

#include <memory>

namespace {

// Fonts need an application, which here has no screen.
void startApplication()
{
    static char name[] = "mm2d_bench";
    static char option[] = "-platform";
    static char platform[] = "offscreen";
    static char* arguments[] = {name, option, platform, nullptr};
    static int count = 3;
    static const QGuiApplication application(count, arguments);
}

struct Drawing {
    QImage target{kSceneSize, kSceneSize, QImage::Format_ARGB32_Premultiplied};
    QPen pen{Qt::black};
    std::vector<QGlyphRun> lines;

    explicit Drawing(const TextLines& text)
    {
        target.fill(Qt::white);
        if (text.gradient) {
            QLinearGradient gradient(0, 0, kSceneSize, kSceneSize);
            gradient.setStops(qtStops());
            pen = QPen(gradient, 1);
        }
        const QRawFont font(QString(MM2D_BENCH_FONT), text.size, QFont::PreferNoHinting);
        for (const std::string& line : text.lines())
            lines.push_back(placed(line, font, text.baseline(lines.size())));
    }

    static QGlyphRun placed(const std::string& line, const QRawFont& font, double y)
    {
        QGlyphRun run;
        run.setRawFont(font);
        run.setGlyphIndexes(font.glyphIndexesForString(QString::fromStdString(line)));
        QVector<QPointF> positions;
        double x = kMargin;
        for (const QPointF& advance : font.advancesForGlyphIndexes(run.glyphIndexes())) {
            positions.push_back({x, y});
            x += advance.x();
        }
        run.setPositions(positions);
        return run;
    }

    void draw()
    {
        QPainter painter(&target);
        painter.setPen(pen);
        for (const QGlyphRun& line : lines)
            painter.drawGlyphRun({0, 0}, line);
    }
};

} // namespace

// Its sizes are whole 1/64 pixels, so the uncached ones would be cached.
Draw drawWithQt(const TextLines& text)
{
    if (!text.cached) return {};
    startApplication();
    auto drawing = std::make_shared<Drawing>(text);
    return [drawing] { drawing->draw(); };
}
