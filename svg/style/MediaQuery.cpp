// SPDX-License-Identifier: MIT
#include "svg/style/MediaQuery.h"

#include "svg/style/Selector.h"
#include "svg/values/TextScanner.h"

#include <string>

namespace KAVO {
namespace Svg {

namespace {

bool holdsIgnoringSpace(std::string_view text, std::string_view wanted)
{
    std::string packed;
    forWords(text, [&](std::string_view word) { packed += word; });
    return equalsIgnoringCase(packed, wanted);
}

// In parentheses.
MediaMatch matchFeature(std::string_view feature)
{
    for (const std::string_view known : {"(color)", "(prefers-color-scheme:light)",
                                         "(prefers-reduced-motion:reduce)", "(scripting:none)"}) {
        if (holdsIgnoringSpace(feature, known)) return MediaMatch::Yes;
    }
    for (const std::string_view prefix :
         {"(prefers-", "(monochrome", "(hover", "(pointer", "(grid"}) {
        if (equalsIgnoringCase(feature.substr(0, prefix.size()), prefix)) return MediaMatch::No;
    }
    return MediaMatch::Unknown;
}

MediaMatch bothOf(MediaMatch a, MediaMatch b)
{
    if (a == MediaMatch::No || b == MediaMatch::No) return MediaMatch::No;
    return a == MediaMatch::Yes ? b : a;
}

// One query: [not | only] medium or feature, and features joined to it by "and".
MediaMatch matchQuery(std::string_view query)
{
    MediaMatch match = MediaMatch::Yes;
    bool negated = false;
    query = trimmed(query);
    while (!query.empty()) {
        size_t end = query.front() == '(' ? query.find(')') : query.find_first_of(" \t\r\n\f(");
        if (query.front() == '(' && end != query.npos) ++end;
        const std::string_view word = query.substr(0, end);
        query = end >= query.size() ? std::string_view() : trimmed(query.substr(end));
        if (equalsIgnoringCase(word, "not"))
            negated = true;
        else if (word.front() == '(')
            match = bothOf(match, matchFeature(word));
        else if (!equalsIgnoringCase(word, "and") && !equalsIgnoringCase(word, "only") &&
                 !equalsIgnoringCase(word, "all") && !equalsIgnoringCase(word, "screen"))
            match = MediaMatch::No;
    }
    if (!negated || match == MediaMatch::Unknown) return match;
    return match == MediaMatch::Yes ? MediaMatch::No : MediaMatch::Yes;
}

} // namespace

MediaMatch matchMedia(std::string_view list)
{
    if (trimmed(list).empty()) return MediaMatch::Yes;
    MediaMatch match = MediaMatch::No;
    while (!list.empty() && match != MediaMatch::Yes) {
        const size_t comma = findOutside(list, ',');
        const MediaMatch one = matchQuery(list.substr(0, comma));
        if (one != MediaMatch::No) match = one;
        list = comma == list.npos ? std::string_view() : list.substr(comma + 1);
    }
    return match;
}

} // namespace Svg
} // namespace KAVO
