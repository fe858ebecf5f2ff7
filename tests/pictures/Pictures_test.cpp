// SPDX-License-Identifier: MIT
// Whole pictures, held to recorded hashes: the same pixels from every compiler, at every level of
// optimisation, on every machine. Whether a picture is right is for the other tests, and for the
// eye, to say.
//
//   MM2D_RECORD_PICTURES=1      writes hashes.txt anew instead of comparing
//   MM2D_WRITE_PICTURES=FOLDER  leaves each picture as FOLDER/NAME.ppm to look at
#include "tests/pictures/Scenes.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <map>
#include <sstream>
#include <string>

using namespace KAVO;

namespace KAVO::Graphics2D::pictures {
namespace {

// 64-bit FNV-1a over the pixels' bytes, lowest first on every machine.
uint64_t hashOf(const std::vector<Pixel>& pixels)
{
    uint64_t hash = 0xCBF29CE484222325;
    for (const Pixel pixel : pixels)
        for (uint32_t shift = 0; shift < 32; shift += 8)
            hash = (hash ^ (pixel >> shift & 0xFF)) * 0x100000001B3;
    return hash;
}

void write(const std::string& path, const std::string& content)
{
    ASSERT_TRUE(std::ofstream(path, std::ios::binary) << content << std::flush) << path;
}

std::string ppmOf(const std::vector<Pixel>& pixels)
{
    const std::string side = std::to_string(kSide);
    std::string ppm = "P6 " + side + ' ' + side + " 255\n";
    for (const Pixel pixel : pixels)
        for (uint32_t shift : {16, 8, 0})
            ppm += static_cast<char>(pixel >> shift & 0xFF);
    return ppm;
}

} // namespace

TEST(Pictures, AreTheSameEverywhere)
{
    const char* folder = std::getenv("MM2D_WRITE_PICTURES");
    std::map<std::string, uint64_t> hashes;
    size_t drawn = 0;
    const auto draw = [&](const Scene& scene, const std::string& name, uint8_t refined) {
        Canvas canvas;
        canvas.context.refined = refined;
        scene.draw(canvas);
        hashes[name] = hashOf(canvas.pixels);
        ++drawn;
        if (folder != nullptr)
            write(std::string(folder) + '/' + name + ".ppm", ppmOf(canvas.pixels));
    };
    for (const Scene& scene : kScenes) {
        const std::string name = scene.name;
        draw(scene, name, 0);
        draw(scene, "refined-" + name, 1);
    }
    EXPECT_EQ(hashes.size(), drawn) << "two scenes of one name";

    if (std::getenv("MM2D_RECORD_PICTURES") != nullptr) {
        std::ostringstream lines;
        for (const auto& [name, hash] : hashes)
            lines << name << ' ' << std::hex << hash << '\n';
        return write(PICTURE_HASHES, lines.str());
    }
    std::ifstream file(PICTURE_HASHES);
    file >> std::hex;
    size_t found = 0;
    std::string name;
    for (uint64_t hash; file >> name >> hash;) {
        const auto picture = hashes.find(name);
        if (picture == hashes.end()) {
            EXPECT_FALSE(kHasAllScenes) << "nothing draws " << name;
            continue;
        }
        EXPECT_EQ(picture->second, hash) << "the picture " << name << " has changed";
        ++found;
    }
    EXPECT_EQ(hashes.size(), found) << "pictures without a hash";
}

} // namespace KAVO::Graphics2D::pictures
