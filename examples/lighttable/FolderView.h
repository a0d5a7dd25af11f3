// SPDX-License-Identifier: MIT
#pragma once

#import "examples/lighttable/ChoiceView.h"
#include "examples/lighttable/FolderTree.h"

#import <AppKit/AppKit.h>
#include <functional>
#include <string>

/// The browser of places, drives and folders: a line each, a triangle for what can be opened.
@interface FolderView : ChoiceView {
@private
    lighttable::FolderTree* _tree;
    std::string _selectedPath;
    std::uint64_t _selectedId;
    BOOL _isToBeSeen;
    std::function<void(const std::string&)> _selected;
}

/// Borrowed; null before it goes.
- (void)setTree:(lighttable::FolderTree*)tree;
/// Called with the folder that the user has chosen.
- (void)setSelected:(std::function<void(const std::string&)>)function;
/// Marks the first visible line of this folder; calls nothing.
- (void)showFolder:(const std::string&)path;
- (void)treeChanged;

@end
