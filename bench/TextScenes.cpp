// SPDX-License-Identifier: MIT
// Text in cached and uncached glyphs, and a paragraph to wrap.
#include "Text.h"

#include "graphics2d/convenience/MMText.h"

#include <memory>

using namespace KAVO::Graphics2D;

std::vector<std::string> TextLines::lines() const
{
    const std::string letters = "TheQuickBrownFxJmpsvLazydgABCDEGHIKMNOPRSUVWXYZbfjqtlu";
    std::vector<std::string> result(lineCount);
    size_t next = 0;
    for (std::string& line : result)
        while (line.size() < lineLength)
            line += letters[next++ % letters.size()];
    return result;
}

namespace {

// Breaking alone; no peer has anything like it.
Scene wrapScene()
{
    std::string paragraph;
    while (paragraph.size() < 2000)
        paragraph += "Words of several lengths, one after the other, make up this paragraph. ";
    paragraph.resize(2000);
    auto context = std::make_shared<MMContext2D>();
    auto text = std::make_shared<MMText>(paragraph.c_str());
    Scene scene;
    scene.name = kWrapScene;
    scene.classic = [context, text] {
        context->destroyTextLayout(context->createTextLayout(text->units(), 300));
    };
    return scene;
}

} // namespace

std::vector<Scene> textScenes()
{
    const struct {
        const char* name;
        TextLines text;
    } kTexts[] = {
        {kCachedTextScene, {8, 125, 12, false, true}},
        {"text 12 px cached gradient", {8, 125, 12, true, true}},
        {"text 12 px uncached", {1, 52, 12, false, false}},
        {"text 48 px uncached", {2, 26, 48, false, false}},
    };
    std::vector<Scene> scenes;
    for (const auto& t : kTexts)
        scenes.push_back(sceneOf(t.name, t.text));
    scenes.push_back(wrapScene());
    return scenes;
}
