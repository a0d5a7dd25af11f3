// SPDX-License-Identifier: MIT
#pragma once

#include "examples/lighttable/UploadAccount.h"

#import "examples/lighttable/Panel.h"

#include <functional>
#include <memory>
#include <string>

/// The account to which pictures are uploaded. The password goes to the keychain, never to the
/// settings, and is never shown again.
@interface AccountPanel : Panel {
@private
    NSTextField* _server;
    NSTextField* _account;
    NSTextField* _password;
    NSTextField* _state;
    NSButton* _forget;
    std::unique_ptr<lighttable::UploadAccount> _keychain;
    std::function<void(const std::string&, const std::string&)> _saved;
    BOOL _isLoaded;
}

/// The function is called with the server and the account that have a password from now on.
- (id)initWithSaved:(std::function<void(const std::string&, const std::string&)>)saved;
- (void)showServer:(const std::string&)server account:(const std::string&)account;
/// Whether it has looked for a password.
- (BOOL)isLoaded;

@end
