// SPDX-License-Identifier: MIT
// Devices of a test's own.
#pragma once

#include "ImageCapture/Camera.h"
#include "ImageCapture/ICAApplication.h"

#include <algorithm>
#include <map>
#include <unistd.h>

// A camera whose folders are lists of items, and whose files have their names as contents.
struct FakeFolders {
    std::map<std::string, std::vector<imagecapture::Item>> folders;
    std::map<std::string, int> errors;  // of listing a folder
    int copyError = 0;
};

class FakeCamera : public imagecapture::Camera {
public:
    explicit FakeCamera(const FakeFolders& facts) : _facts(facts) {}

    int list(const std::string& folder, std::vector<imagecapture::Item>& items) override {
        auto found = _facts.folders.find(folder);
        items = found == _facts.folders.end() ? std::vector<imagecapture::Item>() : found->second;
        auto error = _facts.errors.find(folder);
        return error == _facts.errors.end() ? 0 : error->second;
    }
    int read(const std::string&, const imagecapture::Item& file, uint64_t offset,
             std::span<char>& bytes) override {
        const size_t start = std::min<size_t>(offset, file.name.size());
        bytes = bytes.first(file.name.copy(bytes.data(), bytes.size(), start));
        return 0;
    }
    int copy(const std::string&, const imagecapture::Item& file, int descriptor) override {
        bool isWritten = write(descriptor, file.name.data(), file.name.size()) >= 0;
        return isWritten ? _facts.copyError : ioErr;
    }
    std::string problem() const override { return "it is broken"; }

private:
    const FakeFolders& _facts;
};

// Finds what a test puts there.
class FakeSource : public imagecapture::DeviceSource {
public:
    explicit FakeSource(std::vector<imagecapture::FoundDevice>& found) : _found(found) {}
    std::vector<imagecapture::FoundDevice> look() override { return _found; }

private:
    std::vector<imagecapture::FoundDevice>& _found;
};
