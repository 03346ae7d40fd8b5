// SPDX-License-Identifier: Apache-2.0
// The bar of a long step, and its end by a stop.
#include "look/console_progress.h"
#include "said.h"

#include <trellant/client/errors.h>
#include <trellant/handoff/work_progress.h>

#include <gmock/gmock.h>

namespace trellant::testing {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;

TEST(ConsoleProgress, BarMovesWithTheBytes) {
    const Said shown = said({.errors = Listener::terminal}, [](cli::Console& console) {
        cli::ConsoleProgress progress(console, {});
        progress.begin("Taking the audio out", 200);
        progress.at(50);
        progress.advance(100);
    });
    EXPECT_THAT(shown.errors, HasSubstr("Taking the audio out"));
    EXPECT_THAT(shown.errors, HasSubstr(" 25%"));
    EXPECT_THAT(shown.errors, HasSubstr(" 75%"));
    EXPECT_THAT(shown.errors, Not(HasSubstr(" 50%")));
}

TEST(ConsoleProgress, MoreBytesThanExpectedAreAllOfThem) {
    const Said shown = said({.errors = Listener::terminal}, [](cli::Console& console) {
        cli::ConsoleProgress progress(console, {});
        progress.begin("Looking", 0);
        progress.at(1'000);
    });
    EXPECT_THAT(shown.errors, HasSubstr("100%"));
}

TEST(ConsoleProgress, PipeHearsNothing) {
    const Said shown = said({}, [](cli::Console& console) {
        cli::ConsoleProgress progress(console, {});
        progress.begin("Looking", 10);
        progress.at(5);
    });
    EXPECT_EQ(shown.errors, "");
}

TEST(ConsoleProgress, StopEndsTheStep) {
    cli::Console console(cli::Verbosity::quiet);
    StopSource stop;
    cli::ConsoleProgress progress(console, stop.get_token());
    progress.begin("Looking", 10);
    EXPECT_NO_THROW(progress.check());
    stop.request_stop();
    EXPECT_THROW(progress.check(), AAFCancellationError);
    EXPECT_THROW(progress.at(5), AAFCancellationError);
    EXPECT_EQ(progress.bytes(), 0U);
}

}  // namespace
}  // namespace trellant::testing
