// SPDX-License-Identifier: MIT
// contact_sheet: puts many pictures side by side into one.
#include "common/Picture.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

namespace {

constexpr int kMargin = 4;
constexpr uint32_t kPaper = 0xFFFFFFFF;

uint32_t overPaper(uint32_t pixel)
{
    const uint32_t alpha = pixel >> 24;
    uint32_t result = 0xFF000000;
    for (int shift = 0; shift < 24; shift += 8)
        result |= (((pixel >> shift & 0xFF) * alpha + 255 * (255 - alpha) + 127) / 255) << shift;
    return result;
}

// In the middle of the cell; what does not fit is left out.
void place(Picture& sheet, const Picture& picture, int left, int top, int cell)
{
    const int width = std::min(picture.width, cell);
    const int height = std::min(picture.height, cell);
    const int x0 = left + (cell - width) / 2;
    const int y0 = top + (cell - height) / 2;
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x)
            sheet.at(x0 + x, y0 + y) = overPaper(picture.at(x, y));
    }
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 5) {
        std::fputs("usage: contact_sheet CELL COLUMNS LIST OUTPUT.png\n"
                   "  LIST names a file with one picture file per line; CELL is in pixels\n",
                   stderr);
        return 1;
    }
    const int cell = std::atoi(argv[1]);
    const int columns = std::atoi(argv[2]);
    std::ifstream list(argv[3]);
    std::vector<std::string> files;
    for (std::string line; std::getline(list, line);)
        files.push_back(line);
    const int pitch = cell + kMargin;
    const int rows = columns > 0 ? (static_cast<int>(files.size()) + columns - 1) / columns : 0;
    if (cell <= 0 || rows == 0 || columns * pitch > kLargestSide || rows * pitch > kLargestSide) {
        std::fprintf(stderr, "contact_sheet: nothing to show, or too much for one sheet\n");
        return 1;
    }

    Picture sheet(columns * pitch + kMargin, rows * pitch + kMargin, kPaper);
    for (size_t i = 0; i < files.size(); ++i) {
        Picture picture;
        const std::string problem = readPng(files[i], picture);
        if (!problem.empty()) {
            std::fprintf(stderr, "contact_sheet: %s: %s\n", files[i].c_str(), problem.c_str());
            return 1;
        }
        const int index = static_cast<int>(i);
        place(sheet, picture, kMargin + index % columns * pitch, kMargin + index / columns * pitch,
              cell);
    }
    const std::string problem = writePng(argv[4], sheet);
    if (!problem.empty()) {
        std::fprintf(stderr, "contact_sheet: %s: %s\n", argv[4], problem.c_str());
        return 1;
    }
    return 0;
}
