// SPDX-License-Identifier: MIT
#include "guide/Recipes.h"

using namespace KAVO;
using namespace KAVO::Graphics2D;

void strokeLines(MMContext2D& context)
{
    context.antiAlias = 1;
    context.fillPaint.paintType = kPaintNone; // the line alone
    context.strokePaint.paintType = kPaintSolid;
    context.strokePaint.paintColour = 0xFF264653;
    context.strokeHalfWidth = 5_fx; // 10 pixels wide
    context.joinStyle = kJoinRound;
    context.capStyle = kCapRound;
    MMPathBuilder line;
    line.moveTo(20_fx, 60_fx).lineBy(40_fx, -40_fx).lineBy(30_fx, 40_fx);
    line.arcBy(20_fx, 20_fx, 0, false, true, 40_fx, 0).lineBy(40_fx, -40_fx);
    context.drawPath(line.words());

    static const Fixed dashes[] = {12_fx, 6_fx}; // on, off
    context.dashArray = dashes;
    context.dashCount = 2;
    context.strokeHalfWidth = 2_fx;
    context.capStyle = kCapButt;
    line.clear();
    line.moveTo(16_fx, 95_fx).quadTo(100_fx, 125_fx, 184_fx, 95_fx);
    context.drawPath(line.words());
    context.dashArray = nullptr;
}
