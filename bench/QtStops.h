// SPDX-License-Identifier: MIT
// The gradients' stops for Qt.
#pragma once

#include "Paints.h"

#include <QBrush>

inline QGradientStops qtStops()
{
    QGradientStops result;
    for (const Stop& stop : kStops)
        result.push_back({stop.offset, QColor::fromRgb(stop.colour)});
    return result;
}
