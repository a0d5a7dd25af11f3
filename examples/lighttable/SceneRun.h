// SPDX-License-Identifier: MIT
#pragma once

#include "examples/lighttable/LightTable.h"
#include "examples/lighttable/Options.h"

#include <chrono>
#include <memory>
#include <string>
#include <ula/NativeTimer.h>

namespace lighttable {

/// Takes a picture of the application for a script: waits until everything is there, opens what
/// the scene has, draws it into a file and stops the application.
/// Thread: main.
class SceneRun {
public:
    SceneRun(LightTable& lightTable, Scene scene, std::string path);
    /// 0 when the picture was taken.
    int exitCode() const { return _exitCode; }

private:
    void look();
    void begin();
    bool isReady() const;
    void take();
    void end(int exitCode);

    LightTable& _lightTable;
    const Scene _scene;
    const std::string _path;
    const std::chrono::steady_clock::time_point _start = std::chrono::steady_clock::now();
    bool _hasBegun = false;
    int _exitCode = 1;
    std::unique_ptr<tav::ula::NativeTimer> _timer;
};

}  // namespace lighttable
