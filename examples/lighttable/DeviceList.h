// SPDX-License-Identifier: MIT
#pragma once

#import <AppKit/AppKit.h>
#include <ula/ImportSession.h>
#include <vector>

/// The cameras and cards that are connected, one of which is chosen; a sentence where there are
/// none.
@interface DeviceList : NSView {
@private
    std::vector<tav::ula::ImportDevice> _devices;
    std::size_t _chosen;
    BOOL _isKnown;
    id _target;
    SEL _action;
}

/// The one that was chosen stays so.
- (void)showDevices:(const std::vector<tav::ula::ImportDevice>&)devices;
/// Null when none can be imported from.
- (const tav::ula::ImportDevice*)chosenDevice;
/// Sent when another one is chosen.
- (void)setTarget:(id)target action:(SEL)action;

@end
