// SPDX-License-Identifier: MIT
// The pictures that image elements refer to.
#pragma once

#include "common/Picture.h"

#include <map>
#include <string>

class ImageStore {
public:
    // directory is the drawing's, "" or with a '/' at its end.
    explicit ImageStore(std::string directory) : directory_(std::move(directory)) {}

    // The PNG picture in a file relative to the drawing, or in a base64 data URI; each is read
    // once. Null when it cannot be had.
    const Picture* load(const std::string& href);

private:
    std::string directory_;
    std::map<std::string, Picture> pictures_; // without pixels when reading failed
};

// Half as wide and half as high, at least a pixel: each pixel the mean of four.
Picture halved(const Picture& picture);

// Gives fully transparent pixels near others their colour, since filters mix colours without regard
// to alpha.
void spreadColours(Picture& picture);
