// SPDX-License-Identifier: Apache-2.0
// What a failing read says, compared whole.
#pragma once

#include <trellant/io/errors.h>

#include <gtest/gtest.h>

#include <exception>
#include <string>

namespace trellant::testing {

/// The description of the OMFIOError that `action` throws; a test failure when it does not.
template <typename Action>
std::string faultOf(Action action) {
    try {
        static_cast<void>(action());
    } catch (const OMFIOError& error) {
        EXPECT_EQ(error.errorDescription(), error.what());
        return error.errorDescription();
    }
    ADD_FAILURE() << "nothing was thrown";
    return {};
}

/// The same for FileSystemError.
template <typename Action>
std::string refusalOf(Action action) {
    try {
        static_cast<void>(action());
    } catch (const FileSystemError& error) {
        return error.what();
    }
    ADD_FAILURE() << "nothing was thrown";
    return {};
}

}  // namespace trellant::testing
