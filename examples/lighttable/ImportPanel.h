// SPDX-License-Identifier: MIT
#pragma once

#include "examples/lighttable/WorkThread.h"

#import "examples/lighttable/DeviceList.h"
#import "examples/lighttable/Panel.h"

#include <functional>
#include <memory>
#include <string>
#include <ula/ImportSession.h>
#include <ula/NativeTimer.h>

/// Asks which camera or card to import from, and how. Follows what is connected while it is open.
@interface ImportPanel : Panel {
@private
    DeviceList* _devices;
    NSTextField* _destination;
    NSButton* _dateFolders;
    NSButton* _verify;
    NSButton* _import;
    std::function<void(const tav::ula::ImportDevice&)> _chosen;
    std::unique_ptr<lighttable::WorkThread> _thread;
    std::unique_ptr<tav::ula::NativeTimer> _lookAgain;
    BOOL _isLooking;
    BOOL _isLoaded;
}

/// The function is called when the user wants to import.
- (id)initWithChosen:(std::function<void(const tav::ula::ImportDevice&)>)chosen;
- (void)showWithFolder:(const std::string&)folder
           dateFolders:(BOOL)hasDateFolders
                verify:(BOOL)verifies;
/// Imports from the chosen device, if it can be.
- (void)importChosen:(id)sender;
/// Whether it has looked.
- (BOOL)isLoaded;
- (BOOL)hasDateFolders;
- (BOOL)verifies;

@end
