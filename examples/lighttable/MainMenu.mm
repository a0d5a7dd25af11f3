// SPDX-License-Identifier: MIT
#import "examples/lighttable/MainMenu.h"

#import "examples/lighttable/ApplicationDelegate.h"

namespace lighttable {

namespace {

NSMenu* addMenu(NSMenu* bar, NSString* title) {
    NSMenu* const menu = [[[NSMenu alloc] initWithTitle:title] autorelease];
    [bar setSubmenu:menu forItem:[bar addItemWithTitle:title action:nullptr keyEquivalent:@""]];
    return menu;
}

}  // namespace

NSMenu* makeMainMenu() {
    NSMenu* const bar = [[[NSMenu alloc] initWithTitle:@"Light Table"] autorelease];
    NSMenu* const file = addMenu(bar, @"File");
    [file addItemWithTitle:@"Import…" action:@selector(importPictures:) keyEquivalent:@"i"];
    [file addItemWithTitle:@"Upload Account…" action:@selector(showAccount:) keyEquivalent:@""];
    [file addItemWithTitle:@"Quit" action:@selector(terminate:) keyEquivalent:@"q"];
    NSMenu* const edit = addMenu(bar, @"Edit");
    [edit addItemWithTitle:@"Cut" action:@selector(cut:) keyEquivalent:@"x"];
    [edit addItemWithTitle:@"Copy" action:@selector(copy:) keyEquivalent:@"c"];
    [edit addItemWithTitle:@"Paste" action:@selector(paste:) keyEquivalent:@"v"];
    NSMenu* const view = addMenu(bar, @"View");
    [view addItemWithTitle:@"Larger Thumbnails"
                    action:@selector(enlargeThumbnails:)
             keyEquivalent:@"+"];
    [view addItemWithTitle:@"Smaller Thumbnails"
                    action:@selector(reduceThumbnails:)
             keyEquivalent:@"-"];
    return bar;
}

}  // namespace lighttable
