// SPDX-License-Identifier: MIT
#import "examples/lighttable/ImportPanel.h"

#import "examples/lighttable/FlatButtonCell.h"
#import "examples/lighttable/Look.h"

using namespace lighttable;
using namespace tav::ula;

namespace {

constexpr unsigned int kLookEveryMs = 2000;
constexpr CGFloat kWidth = 460;
constexpr CGFloat kHeight = 352;
constexpr CGFloat kMargin = kPanelMargin;
constexpr CGFloat kInside = kWidth - 2 * kMargin;

}  // namespace

@implementation ImportPanel

- (id)initWithChosen:(std::function<void(const ImportDevice&)>)chosen {
    self = [super initWithSize:NSMakeSize(kWidth, kHeight)
                         title:@"Import Pictures"
                       heading:@"Import pictures from"];
    if (self == nil)
        return nil;
    _chosen = std::move(chosen);
    _thread = std::make_unique<WorkThread>();
    [self makeDestination];
    [self makeChoices];
    [self makeButtons];
    return self;
}

- (void)makeDestination {
    _destination =
        look::makeLabel(NSMakeRect(kMargin, 136, kInside, 18), look::font(11), look::quietText());
    [[self contentView] addSubview:_destination];
}

- (void)makeChoices {
    NSView* const view = [self contentView];
    _devices = [[[DeviceList alloc]
        initWithFrame:NSMakeRect(kMargin, 166, kInside, kHeight - 166 - 52)] autorelease];
    [_devices setTarget:self action:@selector(deviceChosen:)];
    _dateFolders = makeCheckBox(@"A folder for each day", NSMakeRect(kMargin, 102, kInside, 22));
    _verify = makeCheckBox(@"Read back and compare what was written",
                           NSMakeRect(kMargin, 74, kInside, 22));
    for (NSView* choice : {static_cast<NSView*>(_devices), static_cast<NSView*>(_dateFolders),
                           static_cast<NSView*>(_verify)})
        [view addSubview:choice];
}

- (void)makeButtons {
    NSButton* const cancel = makeButton(@"Cancel", NSMakeRect(kWidth - kMargin - 192, 20, 88, 30),
                                        self, @selector(cancelPanel:));
    [cancel setKeyEquivalent:@"\033"];
    _import = makeDefaultButton(@"Import", NSMakeRect(kWidth - kMargin - 92, 20, 92, 30), self,
                                @selector(importChosen:));
    [[self contentView] addSubview:cancel];
    [[self contentView] addSubview:_import];
}

- (void)showWithFolder:(const std::string&)folder
           dateFolders:(BOOL)hasDateFolders
                verify:(BOOL)verifies {
    [_destination
        setStringValue:look::fitted(look::string("Into " + folder), look::font(11), kInside - 8)];
    [_dateFolders setState:hasDateFolders ? NSOnState : NSOffState];
    [_verify setState:verifies ? NSOnState : NSOffState];
    [self deviceChosen:nil];
    [self follow];
    [self makeKeyAndOrderFront:nil];
}

/// As long as it is open. `PTPImporter` tells by itself, but reads all that is on a camera first.
- (void)follow {
    [self refreshDevices];
    _lookAgain.reset(NativeTimer::createTimer(kLookEveryMs, [self] {
        if ([self isVisible])
            [self refreshDevices];
        else
            _lookAgain.reset();
    }));
}

- (void)refreshDevices {
    if (_isLooking)
        return;
    _isLooking = YES;
    _thread->run([] { return ImportSession::devices(); },
                 [self](const std::vector<ImportDevice>& devices) {
                     _isLooking = NO;
                     _isLoaded = YES;
                     [_devices showDevices:devices];
                     [self deviceChosen:nil];
                 });
}

- (BOOL)isLoaded {
    return _isLoaded;
}

- (BOOL)hasDateFolders {
    return [_dateFolders state] == NSOnState;
}

- (BOOL)verifies {
    return [_verify state] == NSOnState;
}

- (void)deviceChosen:(id)sender {
    (void)sender;
    [_import setEnabled:[_devices chosenDevice] != nullptr];
}

- (void)cancelPanel:(id)sender {
    (void)sender;
    [self orderOut:nil];
}

- (void)importChosen:(id)sender {
    (void)sender;
    const ImportDevice* const device = [_devices chosenDevice];
    if (device == nullptr)
        return;
    [self orderOut:nil];
    _chosen(ImportDevice(*device));
}

@end
