// SPDX-License-Identifier: MIT
#include "ImageCapture/Errors.h"
#include "ImageCapture/Gphoto.h"
#include "ImageCapture/GphotoLibrary.h"
#include "ImageCapture/GphotoOwners.h"
#include "ImageCapture/ICAApplication.h"
#include "ImageCapture/UsbHolder.h"

#include <algorithm>
#include <fcntl.h>
#include <gphoto2/gphoto2-port-result.h>
#include <sys/stat.h>

namespace imagecapture {

namespace {

// A camera that wakes its disk, or asks its user, takes its time.
constexpr std::chrono::seconds kPatience{30};
// More than any camera makes. A device that lists for ever is stopped.
constexpr int kMostItems = 100'000;

ListOwner makeList() {
    CameraList* list = nullptr;
    gp_list_new(&list);
    return ListOwner(list);
}

std::string absolute(const std::string& folder) {
    return "/" + folder;
}

int codeOf(int result) {
    switch (result) {
    case GP_ERROR_IO_USB_CLAIM:
    case GP_ERROR_IO_LOCK:
    case GP_ERROR_CAMERA_BUSY:
        return kICACannotYieldDevice;
    case GP_ERROR_FILE_NOT_FOUND:
    case GP_ERROR_DIRECTORY_NOT_FOUND:
        return fnfErr;
    case GP_ERROR_NO_MEMORY:
        return memFullErr;
    case GP_ERROR_NO_SPACE:
        return dskFulErr;
    case GP_ERROR_CORRUPTED_DATA:
        return kICAFileCorruptedErr;
    default:
        return kICACommunicationErr;
    }
}

bool isAboutOneFile(int code) {
    return code == fnfErr || code == dskFulErr || code == kICAFileCorruptedErr;
}

// libgphoto2 closes descriptor 0 with every camera on the network, as it never opened the port that
// it closes. Whatever has that number gets it back.
class KeptDescriptorZero {
public:
    KeptDescriptorZero() : _copy(fcntl(0, F_DUPFD_CLOEXEC, 3)), _flags(fcntl(0, F_GETFD)) {}
    ~KeptDescriptorZero() {
        bool isLost = _copy && fcntl(0, F_GETFD) < 0;
        if (isLost)
            dup3(_copy.get(), 0, (_flags & FD_CLOEXEC) != 0 ? O_CLOEXEC : 0);
    }
    KeptDescriptorZero(const KeptDescriptorZero&) = delete;
    KeptDescriptorZero& operator=(const KeptDescriptorZero&) = delete;

private:
    cf::Descriptor _copy;
    int _flags;
};

// A file that is gone with its descriptor.
cf::Descriptor temporaryFile() {
    return cf::Descriptor(::open("/tmp", O_TMPFILE | O_RDWR | O_CLOEXEC, 0600));
}

}  // namespace

GphotoCamera::GphotoCamera(std::string model, std::string port)
    : _model(std::move(model)), _port(std::move(port)), _context(gp_context_new()) {
    gp_context_set_cancel_func(
        _context,
        [](GPContext*, void* self) {
            return static_cast<GphotoCamera*>(self)->isLate() ? GP_CONTEXT_FEEDBACK_CANCEL
                                                              : GP_CONTEXT_FEEDBACK_OK;
        },
        this);
    gp_context_set_progress_funcs(
        _context, [](GPContext*, float, const char*, void*) { return 0u; },
        [](GPContext*, unsigned, float, void* self) {
            static_cast<GphotoCamera*>(self)->noteLife();
        },
        [](GPContext*, unsigned, void*) {}, this);
}

GphotoCamera::~GphotoCamera() {
    close();
    gp_context_unref(_context);
}

void GphotoCamera::noteLife() {
    _deadline = std::chrono::steady_clock::now() + kPatience;
}

// Not all drivers tell of progress: what has arrived is a sign of life, too.
bool GphotoCamera::isLate() {
    struct stat info {};
    if (_target >= 0 && fstat(_target, &info) == 0 && info.st_size != _arrived) {
        _arrived = info.st_size;
        noteLife();
    }
    return std::chrono::steady_clock::now() > _deadline;
}

void GphotoCamera::close() {
    if (_camera == nullptr)
        return;
    noteLife();
    const KeptDescriptorZero kept;
    gp_camera_exit(_camera, _context);
    gp_camera_unref(_camera);
    _camera = nullptr;
}

int GphotoCamera::open() {
    noteLife();
    _problem.clear();
    if (_camera != nullptr)
        return 0;
    std::lock_guard lock(GphotoLibrary::instance().lock());
    int result = connect();
    return result < GP_OK ? fail("open the camera", result) : 0;
}

int GphotoCamera::connect() {
    if (int result = gp_camera_new(&_camera); result < GP_OK)
        return result;
    int result = prepare(_camera);
    if (result >= GP_OK)
        result = gp_camera_init(_camera, _context);
    if (result < GP_OK) {
        const KeptDescriptorZero kept;
        gp_camera_unref(_camera);
        _camera = nullptr;
    }
    return result;
}

int GphotoCamera::prepare(_Camera* camera) {
    CameraAbilities abilities{};
    if (!GphotoLibrary::instance().findDriver(_model, abilities))
        return GP_ERROR_MODEL_NOT_FOUND;
    PortList ports = currentPorts();
    if (ports == nullptr)
        return GP_ERROR_TIMEOUT;
    int index = gp_port_info_list_lookup_path(ports.get(), _port.c_str());
    if (index < GP_OK)
        return index;
    GPPortInfo info;
    if (int result = gp_port_info_list_get_info(ports.get(), index, &info); result < GP_OK)
        return result;
    int result = gp_camera_set_abilities(camera, abilities);
    return result < GP_OK ? result : gp_camera_set_port_info(camera, info);
}

// After an error of the line the camera is opened anew: it may have been switched off and on.
int GphotoCamera::fail(const std::string& what, int result) {
    int code = codeOf(result);
    _problem = "cannot " + what + ": " + gp_result_as_string(result);
    if (_port.starts_with("usb:"))
        _problem += usbAdvice(_port.substr(4), "/proc", "/dev/bus/usb");
    else if (code == kICACommunicationErr)
        _problem += "; is it switched on, and its transfer mode chosen?";
    if (!isAboutOneFile(code))
        close();
    return code;
}

int GphotoCamera::list(const std::string& folder, std::vector<Item>& items) {
    items.clear();
    if (int error = open(); error != 0)
        return error;
    int result = addItems(absolute(folder), true, items);
    if (result >= GP_OK)
        result = addItems(absolute(folder), false, items);
    if (result < GP_OK)
        return fail("list \"" + absolute(folder) + "\"", result);
    std::sort(items.begin(), items.end(),
              [](const Item& left, const Item& right) { return left.name < right.name; });
    return 0;
}

int GphotoCamera::addItems(const std::string& path, bool folders, std::vector<Item>& items) {
    ListOwner list = makeList();
    auto ask = folders ? gp_camera_folder_list_folders : gp_camera_folder_list_files;
    if (int result = ask(_camera, path.c_str(), list.get(), _context); result < GP_OK)
        return result;
    int count = std::min(gp_list_count(list.get()), kMostItems);
    for (int i = 0; i < count; ++i) {
        const char* name = nullptr;
        gp_list_get_name(list.get(), i, &name);
        if (name == nullptr || name[0] == '\0')
            continue;
        noteLife();
        if (int result = addItem(path, name, folders, items); result < GP_OK)
            return result;
    }
    return GP_OK;
}

int GphotoCamera::addItem(const std::string& path, const char* name, bool isFolder,
                          std::vector<Item>& items) {
    Item item;
    item.name = name;
    item.isFolder = isFolder;
    if (!isFolder) {
        CameraFileInfo info{};
        int result = gp_camera_file_get_info(_camera, path.c_str(), name, &info, _context);
        // One that has gone since.
        if (result == GP_ERROR_FILE_NOT_FOUND)
            return GP_OK;
        if (result < GP_OK)
            return result;
        item.size = (info.file.fields & GP_FILE_INFO_SIZE) != 0 ? info.file.size : 0;
        item.modified = (info.file.fields & GP_FILE_INFO_MTIME) != 0 ? info.file.mtime : 0;
    }
    items.push_back(std::move(item));
    return GP_OK;
}

int GphotoCamera::read(const std::string& folder, const Item& file, uint64_t offset,
                       std::span<char>& bytes) {
    if (int error = open(); error != 0)
        return error;
    const uint64_t left = offset < file.size ? file.size - offset : 0;
    bytes = bytes.first(static_cast<size_t>(std::min<uint64_t>(bytes.size(), left)));
    if (bytes.empty())
        return 0;
    bool isFetched = _fetched.file && _fetched.folder == folder && _fetched.name == file.name;
    int result = isFetched ? GP_ERROR_NOT_SUPPORTED : readPart(folder, file, offset, bytes);
    if (result != GP_ERROR_NOT_SUPPORTED)
        return result < GP_OK ? fail("read \"" + file.name + "\"", result) : 0;
    if (!isFetched)
        if (int error = fetch(folder, file); error != 0)
            return error;
    return readFetched(offset, bytes);
}

int GphotoCamera::readPart(const std::string& folder, const Item& file, uint64_t offset,
                           std::span<char> bytes) {
    size_t done = 0;
    while (done < bytes.size()) {
        noteLife();
        uint64_t count = bytes.size() - done;
        int result = gp_camera_file_read(_camera, absolute(folder).c_str(), file.name.c_str(),
                                         GP_FILE_TYPE_NORMAL, offset + done, bytes.data() + done,
                                         &count, _context);
        if (result < GP_OK)
            return result;
        if (count == 0)
            return GP_ERROR_CORRUPTED_DATA;
        done += static_cast<size_t>(std::min<uint64_t>(count, bytes.size() - done));
    }
    return GP_OK;
}

int GphotoCamera::readFetched(uint64_t offset, std::span<char>& bytes) {
    ssize_t count = cf::retryInterrupted([&] {
        return pread(_fetched.file.get(), bytes.data(), bytes.size(), static_cast<off_t>(offset));
    });
    if (count < 0)
        return readingError(errno);
    bytes = bytes.first(static_cast<size_t>(count));
    return 0;
}

int GphotoCamera::fetch(const std::string& folder, const Item& file) {
    _fetched = {};
    cf::Descriptor target = temporaryFile();
    if (!target) {
        _problem = describe("cannot write", "/tmp", errno);
        return writingError(errno);
    }
    if (int error = copyWhole(folder, file, target.get()); error != 0)
        return error;
    _fetched = {folder, file.name, std::move(target)};
    return 0;
}

int GphotoCamera::copy(const std::string& folder, const Item& file, int descriptor) {
    int error = open();
    return error != 0 ? error : copyWhole(folder, file, descriptor);
}

int GphotoCamera::copyWhole(const std::string& folder, const Item& file, int descriptor) {
    CameraFile* made = nullptr;
    int own = fcntl(descriptor, F_DUPFD_CLOEXEC, 0);
    if (own < 0 || gp_file_new_from_fd(&made, own) < GP_OK) {
        cf::Descriptor unused(own);
        return memFullErr;
    }
    FileOwner target(made);
    _target = descriptor;
    errno = 0;
    int result = gp_camera_file_get(_camera, absolute(folder).c_str(), file.name.c_str(),
                                    GP_FILE_TYPE_NORMAL, target.get(), _context);
    _target = -1;
    // The library tells a full disk by errno alone, and leaves the camera in the middle of a file.
    if (int reason = errno; result < GP_OK && (reason == ENOSPC || reason == EDQUOT)) {
        close();
        _problem = describe("cannot write the copy of", file.name, reason);
        return writingError(reason);
    }
    if (result < GP_OK)
        return fail("read \"" + file.name + "\"", result);
    struct stat info {};
    if (fstat(descriptor, &info) == 0 && static_cast<uint64_t>(info.st_size) == file.size)
        return 0;
    _problem = "\"" + file.name + "\" came with another size than the camera had told";
    return kICAFileCorruptedErr;
}

}  // namespace imagecapture
