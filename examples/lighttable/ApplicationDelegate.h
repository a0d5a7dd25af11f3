// SPDX-License-Identifier: MIT
#pragma once

#include "examples/lighttable/LightTable.h"
#include "examples/lighttable/Options.h"
#include "examples/lighttable/Preferences.h"
#include "examples/lighttable/SceneRun.h"

#import <AppKit/AppKit.h>
#include <memory>
#include <string>
#include <vector>

/// Stands between AppKit and the application: passes on what the user and the system ask for.
@interface ApplicationDelegate : NSObject <LightTableActions> {
@private
    std::unique_ptr<lighttable::Preferences> _preferences;
    std::unique_ptr<lighttable::LightTable> _lightTable;
    std::unique_ptr<lighttable::SceneRun> _scene;
}

- (id)initWithOptions:(const lighttable::Options&)options;
/// What a later instance was started with: nothing, a folder, or "--quit".
- (void)serve:(const std::vector<std::string>&)arguments;
/// Of a picture that was to be taken.
- (int)exitCode;
/// Ends everything that runs; to be called at the end.
- (void)finish;

- (void)enlargeThumbnails:(id)sender;
- (void)reduceThumbnails:(id)sender;

@end
