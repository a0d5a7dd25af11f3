// SPDX-License-Identifier: MIT
#include "ula/Drive.h"

#include <algorithm>
#include <iostream>

namespace tav::ula {

Drive::Drive(const DriveType& type, const FileProperties& properties, const std::string& mountPoint)
    : _type(type), _properties(properties), _mountPoint(mountPoint) {
}

bool Drive::operator==(const Drive& other) const {
    return _type == other._type && _properties == other._properties &&
           _mountPoint == other._mountPoint;
}

bool Drive::contains(const std::vector<Drive>& drives, const Drive& drive) {
    return std::find(drives.begin(), drives.end(), drive) != drives.end();
}

std::vector<Drive> Drive::drives() {
    return drivesImplMac();
}

std::vector<Drive> Drive::drivesImplWin() {
    return {};
}

void Drive::dump() {
    for (const Drive& drive : drives())
        std::cout << "Name:" << drive._properties.name() << " Title:" << drive._properties.title()
                  << " MountPoint:" << drive._mountPoint << std::endl;
}

}  // namespace tav::ula
