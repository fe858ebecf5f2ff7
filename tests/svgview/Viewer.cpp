// SPDX-License-Identifier: MIT
#include "svgview/Viewer.h"

#include <cstdio>
#include <gtest/gtest.h>
#include <unistd.h>

using namespace KAVO;

namespace {

// A window of 100 by 100 with a red square of a drawing of the same size.
class ViewerTest : public testing::Test {
protected:
    ViewerTest() : name_(testing::TempDir() + "svgview." + std::to_string(getpid()) + ".svg")
    {
        write("red");
        Arguments arguments;
        arguments.width = arguments.height = 100;
        WatchedFile file(name_);
        Svg::MMSvgDocument drawing;
        EXPECT_TRUE(drawing.loadFile(name_)) << drawing.problem();
        viewer_ = std::make_unique<Viewer>(std::move(file), std::move(drawing), arguments);
        EXPECT_TRUE(viewer_->draw());
    }
    ~ViewerTest() override { std::remove(name_.c_str()); }

    void write(const std::string& colour)
    {
        save("<svg xmlns='http://www.w3.org/2000/svg' width='100' height='100'>"
             "<g id='group'><rect x='20' y='20' width='30' height='30' fill='" +
             colour + "'/></g></svg>");
    }
    void save(const std::string& text)
    {
        FILE* file = std::fopen(name_.c_str(), "w");
        ASSERT_TRUE(file && std::fputs(text.c_str(), file) >= 0 && std::fclose(file) == 0);
    }
    Pixel at(int x, int y) const { return viewer_->picture().pixels[y * 100 + x] & 0xFFFFFF; }
    std::string clicked(int x, int y)
    {
        testing::internal::CaptureStdout();
        viewer_->press(x, y);
        viewer_->moveTo(x + 2, y - 3);
        viewer_->release();
        return testing::internal::GetCapturedStdout();
    }
    std::string title() const { return viewer_->title().substr(viewer_->title().find('-')); }

    std::string name_;
    std::unique_ptr<Viewer> viewer_;
};

constexpr Pixel kRed = 0xFF0000;
constexpr Pixel kBlue = 0x0000FF;
constexpr Pixel kWhite = 0xFFFFFF;

} // namespace

TEST_F(ViewerTest, ClickNamesWhatLiesUnderIt)
{
    EXPECT_EQ(clicked(20, 20), "group\n");
    EXPECT_EQ(title(), "- 100 % - #group");
    EXPECT_EQ(clicked(19, 20), "\n");
    EXPECT_EQ(title(), "- 100 %");
    EXPECT_EQ(clicked(49, 49), "group\n");
    EXPECT_EQ(clicked(50, 49), "\n");
    EXPECT_FALSE(viewer_->draw()); // nothing has moved
}

TEST_F(ViewerTest, DraggingMovesByTheWholeWayAndNamesNothing)
{
    testing::internal::CaptureStdout();
    viewer_->moveTo(90, 90); // not pressed
    viewer_->press(30, 30);
    viewer_->moveTo(32, 32); // not yet far enough
    EXPECT_FALSE(viewer_->draw());
    viewer_->moveTo(37, 30);
    viewer_->moveTo(41, 25);
    viewer_->release();
    viewer_->moveTo(0, 0);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_TRUE(viewer_->draw());
    EXPECT_TRUE(at(31, 15) == kRed && at(60, 44) == kRed); // 11 to the right, 5 up
    EXPECT_TRUE(at(30, 15) == kWhite && at(31, 14) == kWhite && at(61, 44) == kWhite);
}

TEST_F(ViewerTest, ReloadsWhatHasBeenWrittenAndKeepsWhatItHasWhenThatIsBroken)
{
    viewer_->reloadIfChanged();
    EXPECT_FALSE(viewer_->draw());
    viewer_->pan(10, 0);
    write("blue ");
    viewer_->reloadIfChanged(); // seen for the first time: it may be half written
    viewer_->draw();
    EXPECT_EQ(at(40, 30), kRed);
    viewer_->reloadIfChanged();
    EXPECT_TRUE(viewer_->draw());
    EXPECT_TRUE(at(40, 30) == kBlue && at(59, 30) == kBlue && at(60, 30) == kWhite); // in its place

    save("<svg><g>");
    testing::internal::CaptureStderr();
    viewer_->reload();
    const std::string complaint = testing::internal::GetCapturedStderr();
    EXPECT_EQ(complaint.find("svgview: " + name_ + ": "), 0u) << complaint;
    EXPECT_EQ(complaint.find('\n'), complaint.size() - 1) << complaint;
    EXPECT_NE(title(), "- 100 %");
    viewer_->zoom(1, 0, 0);
    EXPECT_TRUE(viewer_->draw());
    EXPECT_EQ(at(50, 30), kBlue); // from 37.5 to 75 across, 25 to 62.5 down

    std::remove(name_.c_str());
    viewer_->reloadIfChanged();
    viewer_->reloadIfChanged();
    EXPECT_FALSE(viewer_->draw());
}

TEST_F(ViewerTest, NamesOnceWhatIsNotDrawn)
{
    save("<svg xmlns='http://www.w3.org/2000/svg' width='100' height='100'><foreignObject/></svg>");
    viewer_->reload();
    testing::internal::CaptureStderr();
    viewer_->draw();
    viewer_->zoom(1, 0, 0);
    viewer_->draw();
    const std::string complaint = testing::internal::GetCapturedStderr();
    EXPECT_EQ(complaint.find("svgview: " + name_ + ":1: not drawn: "), 0u) << complaint;
    EXPECT_EQ(complaint.find('\n'), complaint.size() - 1) << complaint;
}
