// SPDX-License-Identifier: MIT
#include "examples/lighttable/UploadAccount.h"

#include <ula/SecureData.h>
#include <utility>

namespace lighttable {

using namespace tav::ula;

namespace {

/// Other applications' names are not met with it.
constexpr const char* kQualifier = "org.example.lighttable";

}  // namespace

void UploadAccount::look(const std::string& server, const std::string& account, Answered answered) {
    _thread.run(
        [server, account] {
            std::vector<KeychainItemName> names;
            Answer answer;
            // The list, as nobody is asked to unlock anything for it.
            answer.isDone = listKeychain(FastString(kQualifier), names);
            for (const KeychainItemName& name : names)
                answer.isKept |=
                    name.name == FastString(server) && name.account == FastString(account);
            return answer;
        },
        std::move(answered));
}

void UploadAccount::keep(const std::string& server, const std::string& account,
                         const std::string& password, Answered answered) {
    _thread.run(
        [server, account, password] {
            const bool isDone = addToKeychain(FastString(server), FastString(account),
                                              FastString(password), FastString(kQualifier));
            return Answer{isDone, isDone};
        },
        std::move(answered));
}

void UploadAccount::forget(const std::string& server, const std::string& account,
                           Answered answered) {
    _thread.run(
        [server, account] {
            const bool isDone =
                deleteKeychain(FastString(server), FastString(account), FastString(kQualifier));
            return Answer{isDone, !isDone};
        },
        std::move(answered));
}

}  // namespace lighttable
