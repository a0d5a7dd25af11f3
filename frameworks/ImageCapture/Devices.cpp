// SPDX-License-Identifier: MIT
#include "ImageCapture/Devices.h"

#include "ImageCapture/Errors.h"
#include "ImageCapture/ICAApplication.h"
#include "ImageCapture/NewFile.h"
#include "ImageCapture/SafeName.h"

#include <algorithm>

namespace imagecapture {

namespace {

// More than cameras make; a device that has folders in folders for ever is stopped.
constexpr int kDeepest = 16;
constexpr size_t kMostFiles = 1'000'000;

// The folders of a device are named by paths: none may lead out of them, or round in circles.
bool leadsDown(const Item& item) {
    return !item.name.empty() && item.name != "." && item.name != ".." &&
           item.name.find('/') == std::string::npos;
}

}  // namespace

Devices::Devices(std::vector<std::unique_ptr<DeviceSource>> sources)
    : _sources(std::move(sources)) {
}

std::vector<DeviceFacts> Devices::scan() {
    std::lock_guard scanning(_scanning);
    std::vector<FoundDevice> found;
    for (const auto& source : _sources)
        for (FoundDevice& device : source->look())
            found.push_back(std::move(device));
    forgetMissing(found);
    addNew(std::move(found));
    return known();
}

// Cameras are closed where they are last used, and never under the lock.
void Devices::forgetMissing(const std::vector<FoundDevice>& found) {
    std::vector<std::shared_ptr<Device>> gone;
    std::lock_guard lock(_mutex);
    auto isGone = [&](const std::shared_ptr<Device>& device) {
        return std::none_of(found.begin(), found.end(), [&](const FoundDevice& other) {
            return other.identity == device->found.identity;
        });
    };
    auto firstGone = std::stable_partition(_devices.begin(), _devices.end(),
                                           [&](const auto& device) { return !isGone(device); });
    gone.assign(firstGone, _devices.end());
    _devices.erase(firstGone, _devices.end());
    for (const auto& device : gone) {
        _children.erase(device->facts.number);
        for (const auto& [path, number] : device->numbersByPath) {
            _objects.erase(number);
            _children.erase(number);
        }
    }
}

void Devices::addNew(std::vector<FoundDevice> found) {
    std::lock_guard lock(_mutex);
    for (FoundDevice& candidate : found) {
        bool isKnown = std::any_of(_devices.begin(), _devices.end(), [&](const auto& device) {
            return device->found.identity == candidate.identity;
        });
        if (isKnown)
            continue;
        auto device = std::make_shared<Device>();
        device->facts = {_next++, candidate.name, candidate.kind, {}};
        device->found = std::move(candidate);
        _devices.push_back(std::move(device));
    }
}

std::vector<DeviceFacts> Devices::known() const {
    std::lock_guard lock(_mutex);
    std::vector<DeviceFacts> facts;
    for (const auto& device : _devices)
        facts.push_back(device->facts);
    return facts;
}

std::optional<DeviceFacts> Devices::device(ObjectNumber number) const {
    for (const DeviceFacts& facts : known())
        if (facts.number == number)
            return facts;
    return std::nullopt;
}

std::optional<ObjectFacts> Devices::object(ObjectNumber number) const {
    std::lock_guard lock(_mutex);
    auto found = _objects.find(number);
    return found == _objects.end() ? std::nullopt : std::optional(found->second.facts);
}

Devices::Place Devices::place(ObjectNumber number) const {
    std::lock_guard lock(_mutex);
    for (const auto& device : _devices)
        if (device->facts.number == number)
            return {device, {}, {{}, true, 0, 0}};
    auto found = _objects.find(number);
    if (found == _objects.end())
        return {};
    const Object& object = found->second;
    return {object.device.lock(), object.folder, object.facts.item};
}

int Devices::use(const std::shared_ptr<Device>& device, const std::function<int(Camera&)>& work) {
    std::lock_guard alone(device->inUse);
    if (!device->camera)
        device->camera = device->found.connect();
    int error = work(*device->camera);
    std::string problem = error == 0 ? "" : device->camera->problem();
    std::lock_guard lock(_mutex);
    device->facts.problem = std::move(problem);
    return error;
}

ObjectFacts Devices::note(const std::shared_ptr<Device>& device, const std::string& folder,
                          Item item) {
    std::string path = folder.empty() ? item.name : folder + "/" + item.name;
    std::lock_guard lock(_mutex);
    auto [entry, isNew] = device->numbersByPath.try_emplace(std::move(path), 0);
    if (isNew)
        entry->second = _next++;
    Object& object = _objects[entry->second];
    object = {device, folder, {entry->second, safeName(item.name), std::move(item)}};
    return object.facts;
}

int Devices::list(const Place& place, std::vector<ObjectFacts>& result) {
    std::string folder = place.path();
    std::vector<Item> items;
    int error = use(place.device, [&](Camera& camera) { return camera.list(folder, items); });
    for (Item& item : items)
        if (leadsDown(item))
            result.push_back(note(place.device, folder, std::move(item)));
    return error;
}

int Devices::children(ObjectNumber parent, std::vector<ObjectFacts>& result) {
    result.clear();
    Place folder = place(parent);
    if (!folder.device || !folder.item.isFolder)
        return kICAInvalidObjectErr;
    int error = list(folder, result);
    std::vector<ObjectNumber> numbers;
    for (const ObjectFacts& object : result)
        numbers.push_back(object.number);
    std::lock_guard lock(_mutex);
    _children[parent] = std::move(numbers);
    return error;
}

int Devices::nthListed(ObjectNumber parent, size_t index, ObjectFacts& result) const {
    std::lock_guard lock(_mutex);
    auto children = _children.find(parent);
    if (children == _children.end() || index == 0 || index > children->second.size())
        return kICAIndexOutOfRangeErr;
    auto object = _objects.find(children->second[index - 1]);
    if (object == _objects.end())
        return kICAInvalidObjectErr;
    result = object->second.facts;
    return 0;
}

int Devices::allFiles(ObjectNumber device, std::vector<ObjectFacts>& result) {
    result.clear();
    Place top = place(device);
    return top.device ? addFiles(top, 0, result) : kICAInvalidObjectErr;
}

int Devices::addFiles(const Place& folder, int depth, std::vector<ObjectFacts>& result) {
    std::vector<ObjectFacts> listed;
    if (int error = list(folder, listed); error != 0)
        return error;
    for (const ObjectFacts& object : listed)
        if (!object.item.isFolder && result.size() < kMostFiles)
            result.push_back(object);
    for (const ObjectFacts& object : listed)
        if (object.item.isFolder && depth < kDeepest && result.size() < kMostFiles) {
            int error = addFiles({folder.device, folder.path(), object.item}, depth + 1, result);
            // A folder that may not be read, or has gone since, keeps nobody from the others.
            if (error != 0 && error != afpAccessDenied && error != fnfErr)
                return error;
        }
    return 0;
}

int Devices::read(ObjectNumber file, uint64_t offset, std::span<char>& bytes) {
    Place found = place(file);
    if (!found.device || found.item.isFolder)
        return kICAInvalidObjectErr;
    return use(found.device, [&](Camera& camera) {
        return camera.read(found.folder, found.item, offset, bytes);
    });
}

int Devices::download(ObjectNumber file, const std::string& folder, bool keepDate,
                      std::string& path) {
    Place found = place(file);
    if (!found.device || found.item.isFolder)
        return kICAInvalidObjectErr;
    std::string name = safeName(found.item.name);
    NewFile target(folder, name);
    if (target.error() != 0)
        return writingError(target.error());
    int error = use(found.device, [&](Camera& camera) {
        return camera.copy(found.folder, found.item, target.descriptor());
    });
    if (error != 0)
        return error;
    if (keepDate && found.item.modified != 0 && !target.setModified(found.item.modified))
        return writingError(errno);
    path = folder + "/" + name;
    return target.publish() ? 0 : writingError(errno);
}

}  // namespace imagecapture
