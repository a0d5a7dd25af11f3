// SPDX-License-Identifier: MIT
#import "tests/examples/LightTableFixture.h"

#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <set>
#include <sys/wait.h>
#include <unistd.h>

namespace tav::test {

namespace fs = std::filesystem;

Shot::Shot(const std::string& path)
    : _pixels([[NSBitmapImageRep
          imageRepWithData:[NSData dataWithContentsOfFile:
                                       [NSString stringWithUTF8String:path.c_str()]]] retain]) {
}

Shot::~Shot() {
    [_pixels release];
}

Shot::Colour Shot::at(int x, int y) const {
    const unsigned char* const pixel =
        [_pixels bitmapData] + y * [_pixels bytesPerRow] + x * [_pixels samplesPerPixel];
    return {pixel[0], pixel[1], pixel[2]};
}

int Shot::differences(const Shot& other, int left, int top, int right, int bottom) const {
    int count = 0;
    for (int y = top; y < bottom; ++y)
        for (int x = left; x < right; ++x)
            count += at(x, y) != other.at(x, y);
    return count;
}

int Shot::count(const Colour& colour, int left, int top, int right, int bottom) const {
    int found = 0;
    for (int y = top; y < bottom; ++y)
        for (int x = left; x < right; ++x)
            found += at(x, y) == colour;
    return found;
}

std::size_t Shot::colours() const {
    std::set<Colour> found;
    for (int y = 0; y < height(); ++y)
        for (int x = 0; x < width(); ++x)
            found.insert(at(x, y));
    return found.size();
}

LightTable::LightTable() : _pool([[NSAutoreleasePool alloc] init]) {
    fs::create_directories(folder / "home");
}

LightTable::~LightTable() {
    [_pool release];
}

void LightTable::paint(const std::string& name, Shot::Colour colour, int width, int height) const {
    NSBitmapImageRep* const pixels =
        [[[NSBitmapImageRep alloc] initWithBitmapDataPlanes:nullptr
                                                 pixelsWide:width
                                                 pixelsHigh:height
                                              bitsPerSample:8
                                            samplesPerPixel:3
                                                   hasAlpha:NO
                                                   isPlanar:NO
                                             colorSpaceName:NSDeviceRGBColorSpace
                                                bytesPerRow:width * 3
                                               bitsPerPixel:24] autorelease];
    for (int i = 0; i < width * height * 3; ++i)
        [pixels bitmapData][i] =
            static_cast<unsigned char>(colour[static_cast<std::size_t>(i) % 3]);
    fs::create_directories(fs::path(path(name)).parent_path());
    NSData* const data = [pixels representationUsingType:NSPNGFileType
                                              properties:[NSDictionary dictionary]];
    ASSERT_TRUE([data writeToFile:[NSString stringWithUTF8String:path(name).c_str()]
                       atomically:NO]);
}

pid_t LightTable::start(const std::vector<std::string>& words) const {
    std::vector<char*> arguments = {const_cast<char*>(ULA_LIGHTTABLE)};
    for (const std::string& word : words)
        arguments.push_back(const_cast<char*>(word.c_str()));
    arguments.push_back(nullptr);
    const pid_t process = fork();
    if (process == 0) {
        // Of the child alone: later tests make their folders elsewhere.
        setenv("HOME", path("home").c_str(), 1);
        setenv("XDG_DATA_HOME", path("home/data").c_str(), 1);
        setenv("TMP", folder.path().c_str(), 1);
        setenv("LIGHTTABLE_NO_MOVE", "1", 1);
        const int errors = open(path("errors").c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
        dup2(errors, STDERR_FILENO);
        execv(arguments[0], arguments.data());
        _exit(127);
    }
    return process;
}

int LightTable::wait(pid_t process) {
    int status = 0;
    if (waitpid(process, &status, 0) != process)
        return -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

int LightTable::take(const std::string& scene, const std::string& shown,
                     const std::string& name) const {
    return run({"--screenshot", path(name), "--folder", shown, "--scene", scene});
}

std::array<int, 2> LightTable::middleOf(std::size_t index, std::size_t count) {
    // The window is 1080 points wide, the scroller 12.
    const lighttable::ThumbnailGrid grid(1080 - kSidebar - 12, 160, count);
    const auto square = grid.picture(index);
    return {kSidebar + static_cast<int>(square.x + square.width / 2),
            kHeader + static_cast<int>(square.y + square.height / 2)};
}

}  // namespace tav::test
