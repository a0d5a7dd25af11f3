// SPDX-License-Identifier: MIT
#include "CoreServices/AliasResolver.h"

#include "CoreServices/AliasLook.h"
#include "CoreServices/MacAliasPaths.h"
#include "CoreServices/NetworkPlace.h"
#include "CoreServices/Patience.h"
#include "CoreServices/StallingMount.h"
#include "CoreServices/Volumes.h"

#include <algorithm>
#include <cerrno>
#include <sys/stat.h>

namespace coreservices {

namespace {

// As many links as the kernel follows.
constexpr int kMostSteps = 40;

Resolution resolutionOf(int error) {
    switch (error) {
    case ETIMEDOUT:
        return Resolution::NoAnswer;
    case EACCES:
    case EPERM:
        return Resolution::NoPermission;
    case ELOOP:
        return Resolution::TooLong;
    default:
        return Resolution::Missing;
    }
}

bool isNothingThere(int error) {
    return error == ENOENT || error == ENOTDIR;
}

// One resolution on its way.
class Walk {
public:
    Walk(Chains chains, Mounting mounting, const AliasPlaces& places)
        : _chains(chains), _mounting(mounting), _places(places) {}

    ResolvedAlias follow(const std::string& path);

private:
    const std::vector<Mount>& mounts();
    AliasLook look(const std::string& path);
    bool step(const AliasLook& from);
    void stepToLink(const AliasLook& from);
    void stepTo(const DesktopLink& link);
    void stepTo(const MacAlias& alias, const AliasLook& from);
    void stepToPath(const std::string& path);
    void stepToPlace(const std::string& url);
    void stepToFirst(const std::vector<std::string>& paths, const MacAlias& alias);
    std::string placePath(const std::string& url);
    std::string mount(const UnmountedVolume& volume);
    std::optional<UnmountedVolume> unmountedAbove(const std::string& path);
    void lookAgain(const std::string& path, const UnmountedVolume& volume);
    void stopAt(Resolution resolution) { _result.resolution = resolution; }
    void expect(AliasKind kind);
    ResolvedAlias found();
    bool isVolume(const AliasLook& place);

    Chains _chains;
    Mounting _mounting;
    const AliasPlaces& _places;
    std::optional<std::vector<Mount>> _mounts;
    AliasLook _here;
    ResolvedAlias _result;
};

const std::vector<Mount>& Walk::mounts() {
    if (!_mounts)
        _mounts = _places.mounts();
    return *_mounts;
}

// A file system that has not answered is not asked again before it does.
AliasLook Walk::look(const std::string& path) {
    auto mount = stallingMountOn(path, mounts());
    if (!mount)
        return lookAt(path);
    auto seen = askPatiently<AliasLook>(*mount, _places.patience, [path] { return lookAt(path); });
    if (seen)
        return std::move(*seen);
    AliasLook nothing;
    nothing.error = ETIMEDOUT;
    nothing.path = path;
    return nothing;
}

// What was not found is of the kind that any alias on the way has said.
void Walk::expect(AliasKind kind) {
    _result.kind = std::max(_result.kind, kind);
}

bool Walk::isVolume(const AliasLook& place) {
    if (place.path == "/")
        return true;
    if (!place.isMountRoot)
        return false;
    auto mount = std::find_if(mounts().begin(), mounts().end(), [&](const Mount& candidate) {
        return candidate.id == place.mountId;
    });
    if (mount == mounts().end())
        return false;
    std::vector<std::string> points = volumePoints(mounts(), _places.volumesFolder);
    return std::find(points.begin(), points.end(), mount->point) != points.end();
}

ResolvedAlias Walk::found() {
    _result.resolution = Resolution::Found;
    _result.isFolder = S_ISDIR(_here.mode);
    _result.path = _here.path;
    _result.kind = AliasKind::File;
    if (_result.isFolder)
        _result.kind = isVolume(_here) ? AliasKind::Disk : AliasKind::Folder;
    return _result;
}

// Where the volume's point is to be found then, or empty. A label may be mounted elsewhere.
std::string Walk::mount(const UnmountedVolume& volume) {
    if (_mounting == Mounting::Never || _places.mounter == nullptr)
        return {};
    _mounts.reset();
    if (volume.source == UnmountedVolume::Source::Label)
        return _places.mounter->mountLabel(volume.point.substr(volume.point.rfind('/') + 1));
    return _places.mounter->mountPoint(volume.point) ? volume.point : std::string();
}

void Walk::lookAgain(const std::string& path, const UnmountedVolume& volume) {
    std::string point = mount(volume);
    if (point.empty())
        return stopAt(Resolution::NotMounted);
    _here = look(point + path.substr(volume.point.size()));
    if (_here.error != 0)
        stopAt(resolutionOf(_here.error));
}

// The table may know the point by another path than the kernel, through links.
std::optional<UnmountedVolume> Walk::unmountedAbove(const std::string& path) {
    auto volume = unmountedByTable(path, _places.mountTable, mounts());
    if (!volume)
        return std::nullopt;
    AliasLook point = look(volume->point);
    return point.isMountRoot || S_ISLNK(point.mode) ? std::nullopt : volume;
}

// What lies on a volume that is not there counts as a folder: it is what people make links to.
void Walk::stepToPath(const std::string& path) {
    auto volume = unmountedAbove(path);
    if (!volume) {
        _here = look(path);
        if (_here.error == 0)
            return;
        if (isNothingThere(_here.error))
            volume = unmountedByLabel(path, _places);
    }
    if (!volume)
        return stopAt(resolutionOf(_here.error));
    expect(path == volume->point ? AliasKind::Disk : AliasKind::Folder);
    lookAgain(path, *volume);
}

std::string Walk::placePath(const std::string& url) {
    std::string path = mountedPathOf(url, mounts());
    return path.empty() && _places.mounter != nullptr ? _places.mounter->pathOf(url) : path;
}

void Walk::stepToPlace(const std::string& url) {
    std::string path = placePath(url);
    bool mayMount = _mounting == Mounting::IfNeeded && _places.mounter != nullptr;
    if (path.empty() && mayMount && _places.mounter->mountPlace(url)) {
        _mounts.reset();
        path = placePath(url);
    }
    if (path.empty())
        return stopAt(Resolution::NotMounted);
    stepToPath(path);
}

void Walk::stepToLink(const AliasLook& from) {
    if (from.linkTarget.empty())
        return stopAt(Resolution::Missing);
    stepToPath(from.linkTarget);
}

void Walk::stepTo(const DesktopLink& link) {
    expect(link.hint);
    if (link.path.empty())
        return stepToPlace(link.url);
    stepToPath(link.path);
}

// The first reason for which a place could not be seen is the one that is told.
void Walk::stepToFirst(const std::vector<std::string>& paths, const MacAlias& alias) {
    Resolution reason = Resolution::Missing;
    for (const std::string& path : paths) {
        _here = look(path);
        if (_here.error == 0)
            return;
        if (reason == Resolution::Missing)
            reason = resolutionOf(_here.error);
    }
    auto volume = paths.empty() || alias.volumeName.empty()
                      ? std::nullopt
                      : unmountedByLabel(paths.front(), _places);
    if (reason == Resolution::Missing && volume)
        return lookAgain(paths.front(), *volume);
    stopAt(reason);
}

void Walk::stepTo(const MacAlias& alias, const AliasLook& from) {
    expect(alias.kind);
    std::string ownVolume = "/";
    for (const Mount& mount : mounts())
        if (mount.id == from.mountId)
            ownVolume = mount.point;
    stepToFirst(pathsOf(alias, ownVolume, _places), alias);
}

// Goes on from an alias file or a link. False when it led nowhere.
bool Walk::step(const AliasLook& from) {
    _result.resolution = Resolution::Found;
    _result.wasAliased = true;
    if (S_ISLNK(from.mode))
        stepToLink(from);
    else if (const auto* link = std::get_if<DesktopLink>(&*from.alias))
        stepTo(*link);
    else
        stepTo(std::get<MacAlias>(*from.alias), from);
    return _result.resolution == Resolution::Found;
}

ResolvedAlias Walk::follow(const std::string& path) {
    _here = look(path);
    if (_here.error != 0) {
        stopAt(resolutionOf(_here.error));
        return _result;
    }
    for (int steps = 0; steps < kMostSteps; ++steps) {
        bool leadsOn = S_ISLNK(_here.mode) || _here.alias.has_value();
        if (!leadsOn && steps == 0) {
            found();
            stopAt(Resolution::NotAnAlias);
            return _result;
        }
        if (!leadsOn || (steps > 0 && _chains == Chains::OneStep))
            return found();
        AliasLook from = std::move(_here);
        if (!step(from))
            return _result;
    }
    stopAt(Resolution::TooLong);
    return _result;
}

}  // namespace

ResolvedAlias resolveAlias(const std::string& path, Chains chains, Mounting mounting,
                           const AliasPlaces& places) {
    return Walk(chains, mounting, places).follow(path);
}

}  // namespace coreservices
