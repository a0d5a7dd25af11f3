// SPDX-License-Identifier: MIT
// Mounts for tests, which need root's rights. Nothing of them is seen outside the test's process.
#pragma once

#include <string>

namespace tav::test {

/// Gives this process and its children mounts of their own, with a /Volumes in memory that holds a
/// link "Linux" to "/" only. To be called before there are threads.
/// Fails: the reason; empty when done.
std::string isolateMounts();

/// The path in the form in which the library names what is on the start-up disk.
inline std::string onStartupDisk(const std::string& path) {
    return "/Volumes/Linux" + path;
}

/// Something mounted on a folder, which is made if need be, and taken away again.
class Mounted {
public:
    virtual ~Mounted();
    Mounted(const Mounted&) = delete;
    Mounted& operator=(const Mounted&) = delete;

    const std::string& point() const { return _point; }
    /// Before the end of the object.
    void unmount();
    /// Another program has unmounted it.
    void forget() { _isMounted = false; }

protected:
    explicit Mounted(const std::string& point);

    std::string _point;
    bool _isMounted = true;
};

/// An ext4 file system in an image file beside the folder, on a loop device.
class MountedImage : public Mounted {
public:
    explicit MountedImage(const std::string& point, const std::string& imageFolder,
                          const std::string& label = "", const std::string& options = "loop");

    /// "/dev/loop3"
    const std::string& device() const { return _device; }
    const std::string& image() const { return _image; }

private:
    std::string _image;
    std::string _device;
};

/// A file system in memory.
class MountedMemory : public Mounted {
public:
    explicit MountedMemory(const std::string& point, const std::string& source = "tmpfs");
};

/// A folder shown in a second place, or a file in the place of another.
class BoundFolder : public Mounted {
public:
    BoundFolder(const std::string& folder, const std::string& point);
};

/// A share whose server never says a word: whoever asks the file system waits until this object's
/// end.
class DeadShare : public Mounted {
public:
    explicit DeadShare(const std::string& point, const std::string& source = "user@host:/folder");
    ~DeadShare();

    /// The share's server ends: whoever asks gets an error from now on. It stays mounted.
    void die();

private:
    int _connection;
};

}  // namespace tav::test
