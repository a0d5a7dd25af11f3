// SPDX-License-Identifier: MIT
#include "tests/frameworks/Security/SecretPrompter.h"

#define GCR_API_SUBJECT_TO_CHANGE
#include <cstdlib>
#include <gcr/gcr-base.h>

namespace tav::test {

namespace {

constexpr const char* kVariable = "GNOME_KEYRING_TEST_PROMPTER";

}  // namespace

SecretPrompter::SecretPrompter() {
    setenv(kVariable, gcr_mock_prompter_start(), 1);
}

SecretPrompter::~SecretPrompter() {
    unsetenv(kVariable);
    gcr_mock_prompter_stop();
}

void SecretPrompter::answer(const std::string& password) {
    gcr_mock_prompter_expect_password_ok(password.c_str(), nullptr);
}

void SecretPrompter::dismiss() {
    gcr_mock_prompter_expect_password_cancel();
}

void SecretPrompter::hesitate() {
    constexpr guint kLongerThanAnyTestMs = 3'600'000;
    gcr_mock_prompter_set_delay_msec(kLongerThanAnyTestMs);
    gcr_mock_prompter_expect_password_ok("", nullptr);
}

bool SecretPrompter::isShown() const {
    return gcr_mock_prompter_is_prompting() != FALSE;
}

bool SecretPrompter::isDone() const {
    return gcr_mock_prompter_is_expecting() == FALSE;
}

}  // namespace tav::test
