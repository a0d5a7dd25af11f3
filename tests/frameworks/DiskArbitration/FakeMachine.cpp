// SPDX-License-Identifier: MIT
#include "FakeMachine.h"

#include <filesystem>
#include <stdexcept>

namespace disktest {

namespace fs = std::filesystem;
using namespace diskarbitration;

namespace {

template <class Value>
Value valueOf(const std::map<std::string, Value>& values, const std::string& key) {
    auto found = values.find(key);
    return found == values.end() ? Value() : found->second;
}

}  // namespace

FakeMachine::FakeMachine() : _folder(fs::canonical(fs::temp_directory_path())) {
    for (const char* folder : {"sys/devices", "sys/dev/block", "sys/class/block", "dev"})
        fs::create_directories(_folder.path() / folder);
}

std::string FakeMachine::devices(const std::string& path) const {
    return (_folder.path() / "sys/devices" / path).string();
}

void FakeMachine::setAttribute(const std::string& path, const std::string& value) {
    fs::create_directories(fs::path(devices(path)).parent_path());
    tav::test::writeFile(devices(path), value + "\n");
}

void FakeMachine::addDisk(const std::string& place, const std::string& number) {
    setAttribute(place + "/dev", number);
    const std::string name = place.substr(place.rfind('/') + 1);
    fs::create_symlink(devices(place), _folder.path() / "sys/dev/block" / number);
    fs::create_symlink(devices(place), _folder.path() / "sys/class/block" / name);
    tav::test::writeFile(_folder / "dev/" + name, "");
}

void FakeMachine::addPartition(const std::string& place, const std::string& number) {
    addDisk(place, number);
    setAttribute(place + "/partition", "1");
}

void FakeMachine::putOn(const std::string& place, const std::string& slave) {
    fs::create_directories(devices(place) + "/slaves");
    fs::create_symlink(_folder.path() / "sys/class/block" / slave,
                       devices(place) + "/slaves/" + slave);
}

void FakeMachine::linkNode(const std::string& link, const std::string& name) {
    const fs::path path = _folder.path() / "dev" / link;
    fs::create_directories(path.parent_path());
    fs::create_symlink(_folder.path() / "dev" / name, path);
}

Machine FakeMachine::machine() const {
    auto list = std::make_shared<std::vector<coreservices::Mount>>(
        coreservices::reachableMounts(coreservices::parseMountInfo(mounts)));
    return {_folder / "sys",
            _folder / "dev",
            [list] { return list; },
            [this](const std::string& number) { return valueOf(udev, number); },
            [this](const std::string& name) { return valueOf(udisks, name); },
            [this](const std::string& name) { return valueOf(onDisk, name); }};
}

Description FakeMachine::at(const std::string& point) const {
    Machine here = machine();
    coreservices::MountList list = here.mounts();
    const coreservices::Mount* mount = coreservices::mountCovering(point, *list);
    if (mount == nullptr || mount->point != point)
        throw std::runtime_error("nothing is mounted on " + point);
    return describeMount(*mount, here);
}

VolumeLabel FakeMachine::namesAt(const std::string& point) const {
    return namesOf(at(point), machine());
}

}  // namespace disktest
