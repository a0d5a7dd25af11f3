// SPDX-License-Identifier: MIT
#pragma once

#import "examples/lighttable/ChoiceView.h"
#include "examples/lighttable/PictureFile.h"
#include "examples/lighttable/ThumbnailGrid.h"
#include "examples/lighttable/ThumbnailLoader.h"

#import <AppKit/AppKit.h>
#include <functional>
#include <string>

/// The thumbnails of a folder with their names. Draws, and asks for, only what is visible.
@interface ThumbnailView : ChoiceView {
@private
    lighttable::ThumbnailLoader* _loader;
    lighttable::FolderContent _content;
    lighttable::ThumbnailGrid _grid;
    int _side;
    std::string _selectedPath;
    std::function<void()> _selectionChanged;
    NSMutableDictionary* _cutNames;
}

/// Borrowed for the view's life.
- (id)initWithFrame:(NSRect)frame loader:(lighttable::ThumbnailLoader*)loader side:(int)side;
- (void)showContent:(const lighttable::FolderContent&)content;
- (void)setSide:(int)side;
- (void)setSelectionChanged:(std::function<void()>)function;
- (void)thumbnailLoaded:(const std::string&)path;
/// Null: none is chosen.
- (const lighttable::PictureFile*)selectedPicture;
/// Has what is visible loaded.
- (void)wantVisible;
/// Where a thumbnail lies in this view.
- (NSRect)frameOfPicture:(std::size_t)index;

@end
