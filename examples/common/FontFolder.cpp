// SPDX-License-Identifier: MIT
#include "common/FontFolder.h"

#include <cstdlib>
#include <filesystem>
#include <unistd.h>

namespace fs = std::filesystem;

FontFolder::FontFolder(const std::string& fontFile)
{
    std::error_code error;
    const fs::path font = fs::absolute(fontFile, error);
    if (!fs::is_regular_file(font, error)) {
        problem_ = fontFile + ": no such font file";
        return;
    }
    std::string name = (fs::temp_directory_path(error) / "mm2d-font-XXXXXX").string();
    if (!mkdtemp(name.data())) {
        problem_ = "cannot make a temporary folder";
        return;
    }
    folder_ = name;
    fs::create_symlink(font, fs::path(folder_) / "AMCSL.TTF", error);
    if (error) problem_ = error.message();
    setenv("YBN_RES_FONT_PATH", folder_.c_str(), 1);
}

FontFolder::~FontFolder()
{
    std::error_code error;
    if (!folder_.empty()) fs::remove_all(folder_, error);
}
