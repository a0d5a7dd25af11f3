// SPDX-License-Identifier: MIT
#import "examples/lighttable/AccountPanel.h"

#import "examples/lighttable/FieldBox.h"
#import "examples/lighttable/FlatButtonCell.h"
#import "examples/lighttable/Look.h"

#include <ula/ObjCHelper.h>

using namespace lighttable;

namespace {

constexpr CGFloat kWidth = 440;
constexpr CGFloat kHeight = 338;
constexpr CGFloat kMargin = kPanelMargin;
constexpr CGFloat kInside = kWidth - 2 * kMargin;
constexpr CGFloat kFieldHeight = 28;

std::string textOf(NSTextField* field) {
    return [[field stringValue] toStdString];
}

}  // namespace

@implementation AccountPanel

- (id)initWithSaved:(std::function<void(const std::string&, const std::string&)>)saved {
    self = [super initWithSize:NSMakeSize(kWidth, kHeight)
                         title:@"Upload Account"
                       heading:@"Account for uploads"];
    if (self == nil)
        return nil;
    _saved = std::move(saved);
    _keychain = std::make_unique<UploadAccount>();
    [self makeFields];
    [self makeButtons];
    return self;
}

- (void)makeFields {
    NSView* const view = [self contentView];
    const auto frame = [](CGFloat y) { return NSMakeRect(kMargin, y, kInside, kFieldHeight); };
    _server = addField(view, @"Server", frame(234), [NSTextField class]);
    _account = addField(view, @"Account", frame(178), [NSTextField class]);
    _password = addField(view, @"Password", frame(122), [NSSecureTextField class]);
    [_server setNextKeyView:_account];
    [_account setNextKeyView:_password];
    [_password setNextKeyView:_server];
    [self setInitialFirstResponder:_server];
    _state =
        look::makeLabel(NSMakeRect(kMargin, 76, kInside, 32), look::font(11), look::quietText());
    [[_state cell] setWraps:YES];
    [view addSubview:_state];
}

- (void)makeButtons {
    NSView* const view = [self contentView];
    _forget =
        makeButton(@"Forget password", NSMakeRect(kMargin, 20, 136, 30), self, @selector(forget:));
    NSButton* const close = makeButton(@"Close", NSMakeRect(kWidth - kMargin - 180, 20, 84, 30),
                                       self, @selector(closePanel:));
    [close setKeyEquivalent:@"\033"];
    NSButton* const save = makeDefaultButton(@"Save", NSMakeRect(kWidth - kMargin - 88, 20, 88, 30),
                                             self, @selector(save:));
    for (NSButton* button : {_forget, close, save})
        [view addSubview:button];
}

- (void)showState:(NSString*)text {
    [_state setStringValue:text];
}

- (void)showServer:(const std::string&)server account:(const std::string&)account {
    [_server setStringValue:look::string(server)];
    [_account setStringValue:look::string(account)];
    [_password setStringValue:@""];
    [_forget setEnabled:NO];
    [self showState:@""];
    _keychain->look(server, account, [self](const UploadAccount::Answer& answer) {
        _isLoaded = YES;
        [_forget setEnabled:answer.isKept];
        [self showState:answer.isKept ? @"The password is in your keychain."
                                      : @"The password will be kept in your keychain."];
        if (!answer.isDone)
            [self showState:@"Your keychain does not answer."];
    });
    [self makeKeyAndOrderFront:nil];
    [self makeFirstResponder:server.empty() || account.empty() ? _server : _password];
}

- (BOOL)isLoaded {
    return _isLoaded;
}

- (void)save:(id)sender {
    (void)sender;
    const std::string server = textOf(_server), account = textOf(_account);
    const std::string password = textOf(_password);
    if (server.empty() || account.empty() || password.empty())
        return [self showState:@"Server, account and password are all needed."];
    [self showState:@"Asking your keychain…"];
    _keychain->keep(server, account, password,
                    [self, server, account](const UploadAccount::Answer& answer) {
                        if (!answer.isDone)
                            return [self showState:@"Your keychain did not take the password. "
                                                   @"Unlock it and try again."];
                        [_password setStringValue:@""];
                        [_forget setEnabled:YES];
                        [self showState:@"Saved: the password is in your keychain."];
                        _saved(server, account);
                    });
}

- (void)forget:(id)sender {
    (void)sender;
    _keychain->forget(textOf(_server), textOf(_account),
                      [self](const UploadAccount::Answer& answer) {
                          [_forget setEnabled:answer.isKept];
                          [self showState:answer.isDone ? @"The password is forgotten."
                                                        : @"The password could not be taken out."];
                      });
}

- (void)closePanel:(id)sender {
    (void)sender;
    [_password setStringValue:@""];
    [self orderOut:nil];
}

@end
