// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace tav::test {

/// Sits where the desktop shows the Secret Service's prompts, and answers them as the test says.
/// Of keyrings that are started while it lives, in a session that lives longer. One at a time.
class SecretPrompter {
public:
    SecretPrompter();
    ~SecretPrompter();
    SecretPrompter(const SecretPrompter&) = delete;
    SecretPrompter& operator=(const SecretPrompter&) = delete;

    /// What the next prompt gets.
    void answer(const std::string& password);
    void dismiss();
    /// The next prompt stays until the bus ends.
    void hesitate();
    bool isShown() const;
    /// Whether every answer has been asked for.
    bool isDone() const;
};

}  // namespace tav::test
