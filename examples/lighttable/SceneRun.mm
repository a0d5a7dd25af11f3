// SPDX-License-Identifier: MIT
#import "examples/lighttable/SceneRun.h"

#import "examples/WakeApplication.h"
#import "examples/lighttable/WindowPicture.h"

#include <cstdio>

namespace lighttable {

using tav::ula::NativeTimer;

namespace {

constexpr unsigned int kLookEveryMs = 50;
constexpr auto kLongest = std::chrono::seconds(60);

/// An import is shown when so much of it is done.
bool isWorthSeeing(const ImportState& state) {
    return state.files * 10 >= state.totalFiles * 6;
}

}  // namespace

SceneRun::SceneRun(LightTable& lightTable, Scene scene, std::string path)
    : _lightTable(lightTable),
      _scene(scene),
      _path(std::move(path)),
      _timer(NativeTimer::createTimer(kLookEveryMs, [this] { look(); })) {
    lightTable.setImportShown([this](const ImportState& state) {
        if (isWorthSeeing(state))
            take();
    });
}

void SceneRun::look() {
    if (std::chrono::steady_clock::now() - _start > kLongest) {
        std::fprintf(stderr, "lighttable: not everything was there within a minute\n");
        return end(1);
    }
    if (!_lightTable.isSettled())
        return;
    if (!_hasBegun)
        begin();
    else if (isReady())
        take();
}

void SceneRun::begin() {
    // What has just arrived is drawn, and more may be wanted then.
    [_lightTable.window() display];
    if (!_lightTable.isSettled())
        return;
    _hasBegun = true;
    if (_scene == Scene::Import || _scene == Scene::Cameras)
        _lightTable.importPictures();
    else if (_scene == Scene::Account)
        _lightTable.showAccount();
}

/// An import that has begun is not: its progress says when.
bool SceneRun::isReady() const {
    if (_scene == Scene::Account)
        return [_lightTable.accountPanel() isLoaded];
    if (_scene == Scene::Browser)
        return true;
    if (_scene == Scene::Cameras)
        return [_lightTable.importPanel() isLoaded];
    if (![_lightTable.importPanel() isLoaded] || _lightTable.isImporting())
        return false;
    [_lightTable.importPanel() importChosen:nil];
    return !_lightTable.isImporting();
}

void SceneRun::take() {
    if (!_timer)
        return;
    NSWindow* panel = nil;
    if (_scene == Scene::Account)
        panel = _lightTable.accountPanel();
    else if (_scene != Scene::Browser && !_lightTable.isImporting())
        panel = _lightTable.importPanel();
    const bool isSaved = saveWindowPicture(_lightTable.window(), panel, _path);
    if (!isSaved)
        std::fprintf(stderr, "lighttable: %s cannot be written\n", _path.c_str());
    end(isSaved ? 0 : 1);
}

void SceneRun::end(int exitCode) {
    _exitCode = exitCode;
    _timer.reset();
    [NSApp stop:nil];
    wakeApplication();
}

}  // namespace lighttable
