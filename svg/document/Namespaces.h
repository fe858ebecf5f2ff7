// SPDX-License-Identifier: MIT
// Names of elements and attributes without their prefixes.
#pragma once

#include <pugixml.hpp>

namespace KAVO {
namespace Svg {

// Gives all elements of SVG their plain names and references the name xlink:href, whatever prefixes
// the document chose; elements of other namespaces get a name with a colon. A document that
// declares no namespace for its root is taken for SVG.
void resolveNamespaces(pugi::xml_node root);

} // namespace Svg
} // namespace KAVO
