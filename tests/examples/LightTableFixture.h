// SPDX-License-Identifier: MIT
#pragma once

#include "examples/lighttable/ThumbnailGrid.h"
#include "tests/support/TemporaryFolder.h"

#import <AppKit/AppKit.h>
#include <array>
#include <gtest/gtest.h>
#include <string>
#include <sys/types.h>
#include <vector>

namespace tav::test {

/// A PNG that the application has drawn.
class Shot {
public:
    using Colour = std::array<int, 3>;

    explicit Shot(const std::string& path);
    ~Shot();
    Shot(const Shot&) = delete;
    Shot& operator=(const Shot&) = delete;

    int width() const { return static_cast<int>([_pixels pixelsWide]); }
    int height() const { return static_cast<int>([_pixels pixelsHigh]); }
    /// From the upper left.
    Colour at(int x, int y) const;
    /// How many pixels of a part of the picture have another colour here than there.
    int differences(const Shot& other, int left, int top, int right, int bottom) const;
    int count(const Colour& colour, int left, int top, int right, int bottom) const;
    std::size_t colours() const;

private:
    NSBitmapImageRep* _pixels;
};

/// The application, with a home folder of its own.
class LightTable : public testing::Test {
protected:
    // Where it draws the thumbnails.
    static constexpr int kSidebar = 233;
    static constexpr int kHeader = 60;

    LightTable();
    ~LightTable() override;

    std::string path(const std::string& name) const { return folder / name; }
    /// A picture of one colour.
    void paint(const std::string& name, Shot::Colour colour, int width = 60, int height = 40) const;
    pid_t start(const std::vector<std::string>& words) const;
    /// The exit code, or minus the number of the signal.
    static int wait(pid_t process);
    int run(const std::vector<std::string>& words) const { return wait(start(words)); }
    /// The picture "shot.png" of a scene. Fails the test when it is not taken.
    int take(const std::string& scene, const std::string& shown, const std::string& name) const;
    std::string errors() const { return readFile(folder / "errors"); }
    /// The middle of a thumbnail among so many.
    static std::array<int, 2> middleOf(std::size_t index, std::size_t count);

    TemporaryFolder folder;

private:
    NSAutoreleasePool* const _pool;
};

}  // namespace tav::test
