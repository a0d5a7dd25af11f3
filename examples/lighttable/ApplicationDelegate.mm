// SPDX-License-Identifier: MIT
#import "examples/lighttable/ApplicationDelegate.h"

using namespace lighttable;

namespace {

constexpr int kSizeStep = 40;

}  // namespace

@implementation ApplicationDelegate

- (id)initWithOptions:(const Options&)options {
    self = [super init];
    if (self == nil)
        return nil;
    const bool isScene = !options.screenshot.empty();
    _preferences = isScene ? std::make_unique<Preferences>(Preferences::InMemory())
                           : std::make_unique<Preferences>();
    _lightTable = std::make_unique<LightTable>(*_preferences, self);
    if (isScene)
        _scene = std::make_unique<SceneRun>(*_lightTable, options.scene, options.screenshot);
    _lightTable->open(options.folder);
    return self;
}

- (void)serve:(const std::vector<std::string>&)arguments {
    if (arguments == std::vector<std::string>{"--quit"})
        return [NSApp terminate:nil];
    [NSApp activateIgnoringOtherApps:YES];
    _lightTable->open(arguments.empty() ? "" : arguments[0]);
}

- (int)exitCode {
    return _scene ? _scene->exitCode() : 0;
}

- (void)finish {
    if (!_lightTable)
        return;
    _lightTable->rememberWindow();
    _scene.reset();
    _lightTable.reset();
    _preferences.reset();
}

- (void)importPictures:(id)sender {
    (void)sender;
    _lightTable->importPictures();
}

- (void)cancelImport:(id)sender {
    (void)sender;
    _lightTable->cancelImport();
}

- (void)showAccount:(id)sender {
    (void)sender;
    _lightTable->showAccount();
}

- (void)changeThumbnailSize:(id)sender {
    _lightTable->changeThumbnailSize([sender intValue]);
}

- (void)enlargeThumbnails:(id)sender {
    (void)sender;
    _lightTable->changeThumbnailSize(_preferences->thumbnailSize() + kSizeStep);
}

- (void)reduceThumbnails:(id)sender {
    (void)sender;
    _lightTable->changeThumbnailSize(_preferences->thumbnailSize() - kSizeStep);
}

// The folder among the program's arguments, which has been looked at already.
- (BOOL)application:(NSApplication*)application openFile:(NSString*)path {
    (void)application;
    (void)path;
    return YES;
}

- (BOOL)applicationShouldTerminateAfterLastWindowClosed:(NSApplication*)application {
    (void)application;
    return YES;
}

- (void)applicationWillTerminate:(NSNotification*)notification {
    (void)notification;
    [self finish];
}

@end
