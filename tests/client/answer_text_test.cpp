// SPDX-License-Identifier: Apache-2.0
#include "answer_text.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <new>
#include <span>
#include <string>
#include <string_view>
#include <utility>

namespace trellant::testing {

namespace {

void add(AnswerText& text, char byte, std::size_t count) {
    const std::span<char> room = text.room(count);
    ASSERT_EQ(room.size(), count);
    std::fill(room.begin(), room.end(), byte);
    text.add(count);
}

TEST(AnswerText, KeepsItsBytesWhileItGrows) {
    // To 20 MB, by pieces that never fit what was there: beyond where large pages begin.
    AnswerText text;
    std::string expected;
    for (std::size_t piece = 1; expected.size() < 20'000'000; piece *= 3) {
        const char byte = static_cast<char>('a' + piece % 26);
        add(text, byte, piece);
        expected.append(piece, byte);
    }
    EXPECT_EQ(text.size(), expected.size());
    EXPECT_EQ(text.view(), expected);
}

TEST(AnswerText, OnlyWhatIsAddedIsText) {
    AnswerText text;
    EXPECT_EQ(text.view(), "");
    std::ranges::copy(std::string_view("abc"), text.room(3).begin());
    text.add(2);
    EXPECT_EQ(text.view(), "ab");
    add(text, 'x', 1);
    EXPECT_EQ(text.view(), "abx");
}

TEST(AnswerText, StaysAsItWasWhenThereIsNotSoMuchMemory) {
    AnswerText text;
    add(text, 'x', 3);
    constexpr std::size_t most = std::numeric_limits<std::size_t>::max();
    for (const std::size_t count : {most, most / 2}) {
        EXPECT_THROW(static_cast<void>(text.room(count)), std::bad_alloc);
        EXPECT_EQ(text.view(), "xxx");
    }
}

TEST(AnswerText, IsEmptyOnceItWasMovedFrom) {
    AnswerText text;
    add(text, 'x', 3);
    const AnswerText moved(std::move(text));
    EXPECT_EQ(moved.view(), "xxx");
    // NOLINTNEXTLINE(bugprone-use-after-move): what is left is said.
    EXPECT_EQ(text.size(), 0U);
}

}  // namespace

}  // namespace trellant::testing
