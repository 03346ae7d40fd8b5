// SPDX-License-Identifier: Apache-2.0
// One text decoded in both ways, which must make the same of it.
#pragma once

#include <trellant/json/json_decode.h>

#include <gtest/gtest.h>

#include <decoding_ways.h>
#include <exception>
#include <string>
#include <string_view>

namespace trellant::test {

/// What a way of decoding makes of a text. `thrown` is what the check of a record throws.
template <class T>
struct Outcome {
    T value{};
    bool isTaken = false;
    std::string thrown{};
    std::string error{};
};

template <class T>
[[nodiscard]] Outcome<T> scanned(std::string_view text, RecordChecks checks) {
    Outcome<T> outcome;
    try {
        outcome.isTaken =
            jsonDecoding::scanInto(text, jsonDecoding::slotOf(outcome.value), checks, {});
    } catch (const std::exception& thrown) {
        outcome.thrown = thrown.what();
    }
    return outcome;
}

template <class T>
[[nodiscard]] Outcome<T> parsed(std::string_view text, RecordChecks checks) {
    Outcome<T> outcome;
    try {
        jsonDecoding::parseInto(text, jsonDecoding::slotOf(outcome.value), checks, {});
        outcome.isTaken = true;
    } catch (const JsonDecodingError& error) {
        outcome.error = error.what();
    } catch (const std::exception& thrown) {
        outcome.thrown = thrown.what();
    }
    return outcome;
}

template <class T>
[[nodiscard]] Outcome<T> decoded(std::string_view text, RecordChecks checks) {
    Outcome<T> outcome;
    try {
        outcome.value = decodeJson<T>(text, checks);
        outcome.isTaken = true;
    } catch (const JsonDecodingError& error) {
        outcome.error = error.what();
    } catch (const std::exception& thrown) {
        outcome.thrown = thrown.what();
    }
    return outcome;
}

/// Whether `text` was taken, in both ways.
template <class T>
bool takenBothWays(std::string_view text, RecordChecks checks = RecordChecks::validate) {
    const Outcome<T> explaining = parsed<T>(text, checks);
    const Outcome<T> quick = scanned<T>(text, checks);
    const Outcome<T> both = decoded<T>(text, checks);
    EXPECT_EQ(quick.isTaken, explaining.isTaken) << text;
    EXPECT_EQ(quick.thrown, explaining.thrown) << text;
    EXPECT_EQ(both.isTaken, explaining.isTaken) << text;
    EXPECT_EQ(both.thrown, explaining.thrown) << text;
    EXPECT_EQ(both.error, explaining.error) << text;
    if (quick.isTaken && explaining.isTaken) {
        EXPECT_TRUE(quick.value == explaining.value) << text;
        EXPECT_TRUE(both.value == explaining.value) << text;
    }
    return explaining.isTaken;
}

}  // namespace trellant::test
