// SPDX-License-Identifier: MIT
// Which media a style sheet is for.
#pragma once

#include <string_view>

namespace KAVO {
namespace Svg {

enum class MediaMatch { No, Yes, Unknown };

// Whether a list of media queries takes in a picture on a light screen in colour. An empty one
// takes in everything. Unknown when it depends on what nobody has said, as the size of a window.
MediaMatch matchMedia(std::string_view list);

} // namespace Svg
} // namespace KAVO
