// SPDX-License-Identifier: MIT
// Text through this library.
#include "OursGradient.h"
#include "Text.h"

#include "graphics2d/convenience/MMContextState.h"
#include "graphics2d/convenience/MMText.h"
#include "svg/geometry/PathEncoder.h"

#include <memory>

using namespace KAVO;
using namespace KAVO::Graphics2D;

using KAVO::Svg::toFixed;

namespace {

struct Drawing {
    std::vector<Pixel> pixels = std::vector<Pixel>(kSceneSize * kSceneSize, 0xFFFFFFFF);
    MMGradient<3> gradient = oursGradient();
    MMContext2D context;
    TextLines text;
    std::vector<std::unique_ptr<MMText>> lines;
    Sizes sizes;

    Drawing(const TextLines& description, bool refined) : text(description), sizes(text)
    {
        setTarget(context, pixels.data(), kSceneSize, kSceneSize);
        context.refined = refined;
        if (text.gradient)
            gradient.setLinear(context, context.fillPaint, {0, 0},
                               {toFixed(kSceneSize), toFixed(kSceneSize)});
        for (const std::string& line : text.lines())
            lines.push_back(std::make_unique<MMText>(line.c_str()));
    }

    void draw()
    {
        context.fontSize = toFixed(sizes.next());
        for (size_t i = 0; i < lines.size(); ++i)
            context.drawText(lines[i]->units(), toFixed(kMargin), toFixed(text.baseline(i)));
    }
};

} // namespace

Draw drawWithOurs(const TextLines& text, bool refined)
{
    auto drawing = std::make_shared<Drawing>(text, refined);
    return [drawing] { drawing->draw(); };
}
