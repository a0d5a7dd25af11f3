// SPDX-License-Identifier: MIT
// Cameras that libgphoto2 speaks to.
#pragma once

#include "CoreFoundation/Descriptor.h"
#include "ImageCapture/Camera.h"

#include <chrono>

struct _Camera;
struct _GPContext;

namespace imagecapture {

// A camera that speaks through libgphoto2: by USB or network. It is opened at the first use, which
// takes it away from other programs, and given back at the end of this object.
class GphotoCamera : public Camera {
public:
    // The port as libgphoto2 names it, "usb:001,005" or "ptpip:192.168.1.20:15740"; the model as
    // its drivers name it.
    GphotoCamera(std::string model, std::string port);
    ~GphotoCamera() override;

    int list(const std::string& folder, std::vector<Item>& items) override;
    int read(const std::string& folder, const Item& file, uint64_t offset,
             std::span<char>& bytes) override;
    int copy(const std::string& folder, const Item& file, int descriptor) override;
    std::string problem() const override { return _problem; }

private:
    // A file that was brought over whole, for cameras that give no parts.
    struct Fetched {
        std::string folder, name;
        cf::Descriptor file;
    };

    int open();
    int connect();
    void close();
    int prepare(_Camera* camera);
    int addItem(const std::string& path, const char* name, bool isFolder, std::vector<Item>& items);
    void noteLife();
    bool isLate();
    int addItems(const std::string& path, bool folders, std::vector<Item>& items);
    int readPart(const std::string& folder, const Item& file, uint64_t offset,
                 std::span<char> bytes);
    int readFetched(uint64_t offset, std::span<char>& bytes);
    int fetch(const std::string& folder, const Item& file);
    int copyWhole(const std::string& folder, const Item& file, int descriptor);
    int fail(const std::string& what, int result);

    std::string _model;
    std::string _port;
    std::string _problem;
    _GPContext* _context;
    _Camera* _camera = nullptr;
    Fetched _fetched;
    // When whoever waits has waited long enough without a sign of life.
    std::chrono::steady_clock::time_point _deadline;
    int _target = -1;  // of the copy under way
    int64_t _arrived = 0;
};

struct DetectedCamera {
    std::string model;
    std::string port;
};

// The cameras on USB that libgphoto2 has a driver for. Does not speak to them.
std::vector<DetectedCamera> detectUsbCameras();

}  // namespace imagecapture
