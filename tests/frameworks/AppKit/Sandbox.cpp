// SPDX-License-Identifier: MIT
#include "Sandbox.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace trashtest {

namespace fs = std::filesystem;

Sandbox::Sandbox() {
    std::string path = fs::canonical(fs::temp_directory_path()).string() + "/trash-XXXXXX";
    if (mkdtemp(path.data()) == nullptr)
        throw std::runtime_error("no temporary folder");
    _path = path;
}

Sandbox::~Sandbox() {
    std::error_code error;
    fs::remove_all(_path, error);
}

std::string Sandbox::makeFile(const std::string& name, const std::string& content) const {
    std::string path = _path + "/" + name;
    fs::create_directories(fs::path(path).parent_path());
    writeFile(path, content);
    return path;
}

appkit::TrashPlaces Sandbox::places() const {
    appkit::TrashPlaces places = appkit::TrashPlaces::ofProcess();
    places.homeTrash = _path + "/data/Trash";
    places.mayHoldTrash = [](const coreservices::Mount&) { return true; };
    return places;
}

MountedImage::MountedImage(const Sandbox& sandbox, const std::string& name)
    : _path(sandbox / name) {
    fs::create_directory(_path);
    std::string image = _path + ".img";
    std::string command = "truncate -s 16M " + image + " && mkfs.ext4 -q " + image +
                          " && mount -o loop " + image + " " + _path;
    if (std::system(command.c_str()) != 0)
        throw std::runtime_error("no image could be mounted; are you root?");
}

MountedImage::~MountedImage() {
    if (std::system(("umount " + _path).c_str()) != 0)
        std::fprintf(stderr, "%s is still mounted\n", _path.c_str());
}

std::string contentOf(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::ostringstream content;
    content << file.rdbuf();
    return content.str();
}

void writeFile(const std::string& path, const std::string& content) {
    std::ofstream(path, std::ios::binary) << content;
}

bool exists(const std::string& path) {
    return fs::exists(fs::symlink_status(path));
}

std::vector<std::string> namesIn(const std::string& folder) {
    std::vector<std::string> names;
    std::error_code error;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder, error))
        names.push_back(entry.path().filename());
    std::sort(names.begin(), names.end());
    return names;
}

std::string run(const std::string& command) {
    std::string output;
    FILE* pipe = popen(command.c_str(), "r");
    if (pipe == nullptr)
        return output;
    char buffer[512];
    while (size_t length = std::fread(buffer, 1, sizeof buffer, pipe))
        output.append(buffer, length);
    pclose(pipe);
    return output;
}

}  // namespace trashtest
