// SPDX-License-Identifier: Apache-2.0
#include "policy.h"

#include <gtest/gtest.h>

namespace trellant::page {

namespace {

TEST(Policy, HashIsThatOfTheText) {
    // The digest that the standard gives for "abc" is ba7816bf...f20015ad; in base64:
    EXPECT_EQ(policyHash("abc"), "sha256-ungWv48Bz+pBQUDeXa4iI7ADYaOWF3qctBD/YfIAFa0=");
}

TEST(Policy, LetsOneScriptAndOneStyleRun) {
    EXPECT_EQ(contentPolicy("abc", ""),
              "default-src 'none'; "
              "script-src 'sha256-ungWv48Bz+pBQUDeXa4iI7ADYaOWF3qctBD/YfIAFa0='; "
              // The digest of nothing, e3b0c442...7852b855.
              "style-src 'sha256-47DEQpj8HBSa+/TImW+5JCeuQeRkm5NMpJWZG3hSuFU='; "
              "img-src data:; media-src 'self' file: data: blob:; base-uri 'none'; "
              "form-action 'none'");
}

TEST(Policy, RunsNoScriptWhereThereIsNone) {
    EXPECT_NE(contentPolicy("", "abc").find("script-src 'none';"), std::string::npos);
}

}  // namespace

}  // namespace trellant::page
