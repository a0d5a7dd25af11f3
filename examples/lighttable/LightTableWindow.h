// SPDX-License-Identifier: MIT
#pragma once

#include "examples/lighttable/ThumbnailLoader.h"

#import "examples/lighttable/BarView.h"
#import "examples/lighttable/FolderView.h"
#import "examples/lighttable/ProgressBar.h"
#import "examples/lighttable/ThumbnailView.h"

#import <AppKit/AppKit.h>

/// What the window's controls ask for.
@protocol LightTableActions

- (void)importPictures:(id)sender;
- (void)cancelImport:(id)sender;
- (void)showAccount:(id)sender;
- (void)changeThumbnailSize:(id)sender;

@end

/// The main window: folders at the left, thumbnails at the right, a title above them, and below a
/// line that tells what is there, with how far an import is as long as there is one.
@interface LightTableWindow : NSWindow {
@private
    FolderView* _folders;
    ThumbnailView* _thumbnails;
    NSScrollView* _folderScroll;
    NSScrollView* _thumbnailScroll;
    BarView* _sidebarEdge;
    BarView* _header;
    BarView* _footer;
    BarView* _importBar;
    NSTextField* _title;
    NSTextField* _path;
    NSTextField* _status;
    NSSlider* _slider;
    NSTextField* _importText;
    ProgressBar* _importProgress;
    BOOL _isImporting;
}

/// The loader and the target of the controls are borrowed for the window's life.
- (id)initWithFrame:(NSRect)frame
      thumbnailSide:(int)side
             loader:(lighttable::ThumbnailLoader*)loader
            actions:(id<LightTableActions>)actions;

- (FolderView*)folders;
- (ThumbnailView*)thumbnails;
- (NSSlider*)sizeSlider;
- (void)showTitle:(const std::string&)title path:(const std::string&)path;
- (void)showStatus:(const std::string&)text;
/// Of an import that goes on.
- (void)showImport:(const std::string&)text fraction:(double)fraction;
- (void)endImport;

@end
