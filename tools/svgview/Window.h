// SPDX-License-Identifier: MIT
// The window that a drawing is shown in.
#pragma once

#include "svgview/Viewer.h"

#include <string>

// Shows the drawing until the user closes the window. Returns an empty string, or what is wrong.
std::string showWindow(Viewer& viewer);
