// SPDX-License-Identifier: Apache-2.0
// Data, messages, colour and bar, on terminals, pipes and streams that are gone.
#include "terminal/console.h"

#include "said.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <sys/time.h>
#include <unistd.h>

namespace trellant::testing {

namespace {

using cli::Console;
using cli::Paint;
using cli::Verbosity;

std::string wholeText() {
    std::string text;
    for (int i = 0; i < 100'000; ++i) {
        text += std::to_string(i) + "\n";
    }
    return text;
}

Said speakAll(const Setting& setting) {
    return said(setting, [](Console& console) {
        console.error("e");
        console.note("n");
        console.detail("d");
        console.out("data\n");
    });
}

/// "COLUMNS TERMINAL COLOUR" as the console sees its output.
std::string seen(const Setting& setting) {
    return said(setting,
                [](Console& console) {
                    console.error(std::to_string(console.outColumns()) +
                                  (console.outIsTerminal() ? " terminal" : " no terminal") +
                                  (console.outHasColour() ? " colour" : " no colour"));
                })
        .errors;
}

}  // namespace

TEST(Console, SendsDataAndMessagesDifferentWays) {
    const Said all = speakAll({.verbosity = Verbosity::verbose});
    EXPECT_EQ(all.out, "data\n");
    EXPECT_EQ(all.errors, "trellant: e\ntrellant: n\ntrellant: d\n");
    EXPECT_EQ(all.status, 0);
}

TEST(Console, KeepsDetailsForTheVerbose) {
    EXPECT_EQ(speakAll({}).errors, "trellant: e\ntrellant: n\n");
}

TEST(Console, SaysOnlyErrorsWhenQuiet) {
    const Said quiet = speakAll({.verbosity = Verbosity::quiet});
    EXPECT_EQ(quiet.errors, "trellant: e\n");
    EXPECT_EQ(quiet.out, "data\n");
}

TEST(Console, TellsItsVerbosity) {
    EXPECT_EQ(Console(Verbosity::quiet).verbosity(), Verbosity::quiet);
    EXPECT_EQ(Console().verbosity(), Verbosity::normal);
}

TEST(Console, ShowsControlCharactersOfMessagesHarmlessly) {
    const Said result = said({}, [](Console& console) {
        console.error(
            "a\x1b[2J\nb\xFF\xC2\x9B"
            "c");
    });
    EXPECT_EQ(result.errors, "trellant: a\uFFFD[2J\uFFFDb\uFFFD\uFFFDc\n");
}

TEST(Console, SeesATerminalOfItsWidth) {
    EXPECT_EQ(seen({.out = Listener::terminal, .columns = 60}), "trellant: 60 terminal colour\n");
    EXPECT_EQ(seen({.out = Listener::terminal, .columns = 200}), "trellant: 200 terminal colour\n");
}

TEST(Console, TakesEightyColumnsWhenTheTerminalDoesNotTell) {
    EXPECT_EQ(seen({.out = Listener::terminal, .columns = 0}), "trellant: 80 terminal colour\n");
}

TEST(Console, HeedsTheColumnsThatThePersonSet) {
    EXPECT_EQ(seen({.out = Listener::terminal, .environment = {{"COLUMNS", "120"}}}),
              "trellant: 120 terminal colour\n");
    for (const char* useless : {"", "0", "-5", "70000", "12x", " 12"}) {
        EXPECT_EQ(seen({.out = Listener::terminal, .environment = {{"COLUMNS", useless}}}),
                  "trellant: 80 terminal colour\n")
            << useless;
    }
}

TEST(Console, NeitherCutsNorColoursForAPipe) {
    EXPECT_EQ(seen({.environment = {{"COLUMNS", "120"}}}), "trellant: 0 no terminal no colour\n");
}

TEST(Console, LeavesColourAwayWhenToldTo) {
    EXPECT_EQ(seen({.out = Listener::terminal, .environment = {{"NO_COLOR", "1"}}}),
              "trellant: 80 terminal no colour\n");
    EXPECT_EQ(seen({.out = Listener::terminal, .environment = {{"NO_COLOR", ""}}}),
              "trellant: 80 terminal colour\n");
}

TEST(Console, LeavesColourAwayOnATerminalWithoutEscapes) {
    EXPECT_EQ(seen({.out = Listener::terminal, .environment = {{"TERM", "dumb"}}}),
              "trellant: 80 terminal no colour\n");
    EXPECT_EQ(seen({.out = Listener::terminal, .environment = {{"TERM", std::nullopt}}}),
              "trellant: 80 terminal no colour\n");
}

TEST(Console, WritesEverythingThroughShortWrites) {
    const std::string text = wholeText();
    const Said result =
        said({.out = Listener::impatientPipe}, [&](Console& console) { console.out(text); });
    EXPECT_EQ(result.status, 0);
    EXPECT_TRUE(result.out == text);
}

TEST(Console, WritesEverythingThroughInterruptions) {
    const std::string text = wholeText();
    const Said result = said({}, [&](Console& console) {
        struct sigaction action {};
        action.sa_handler = [](int) {};
        ::sigaction(SIGALRM, &action, nullptr);
        const itimerval often{{0, 200}, {0, 200}};
        ::setitimer(ITIMER_REAL, &often, nullptr);
        console.out(text);
        const itimerval never{};
        ::setitimer(ITIMER_REAL, &never, nullptr);
    });
    EXPECT_EQ(result.status, 0);
    EXPECT_TRUE(result.out == text);
}

TEST(Console, TellsAReaderThatHasGoneWithoutASignal) {
    const Said result =
        said({.out = Listener::gone}, [](Console& console) { console.out("data\n"); });
    EXPECT_EQ(result.status, 91);
    EXPECT_EQ(result.errors, "");
}

TEST(Console, CallsAnyOtherFailureAnError) {
    const Said result =
        said({.out = Listener::closed}, [](Console& console) { console.out("data\n"); });
    EXPECT_EQ(result.status, 92);
    EXPECT_EQ(result.errors, "cannot write \"standard output\": Bad file descriptor");
}

TEST(Console, KeepsTheNumbersOfClosedStreamsFromOtherFiles) {
    const Said result = saidWithStatus({.errors = Listener::closed},
                                       [](Console&) { return ::open("/dev/null", O_RDONLY); });
    EXPECT_GT(result.status, STDERR_FILENO);
    EXPECT_LT(result.status, 91);
}

TEST(Console, GoesOnWhenNobodyHearsMessages) {
    const Said result = said({.errors = Listener::gone}, [](Console& console) {
        console.error("e");
        console.out("data\n");
    });
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, "data\n");
}

TEST(ConsoleBar, IsDrawnAnewAndTakenAway) {
    const Said result = said({.errors = Listener::terminal, .columns = 24}, [](Console& console) {
        console.bar(0.0, "a");
        console.bar(0.5, "a");
        console.endBar();
    });
    EXPECT_EQ(result.errors,
              "\r\x1b[Ka  [>            ]   0%"
              "\r\x1b[Ka  [======>      ]  50%"
              "\r\x1b[K");
}

TEST(ConsoleBar, IsNotDrawnTwiceAlike) {
    const Said result = said({.errors = Listener::terminal, .columns = 24}, [](Console& console) {
        console.bar(0.5, "a");
        console.bar(0.5, "a");
    });
    EXPECT_EQ(result.errors, "\r\x1b[Ka  [======>      ]  50%");
}

TEST(ConsoleBar, GivesWayToMessages) {
    const Said result = said({.errors = Listener::terminal, .columns = 24}, [](Console& console) {
        console.bar(0.5, "a");
        console.note("n");
        console.bar(0.5, "a");
    });
    EXPECT_EQ(result.errors,
              "\r\x1b[Ka  [======>      ]  50%"
              "\r\x1b[Ktrellant: n\n"
              "\r\x1b[Ka  [======>      ]  50%");
}

TEST(ConsoleBar, GivesWayToData) {
    const Said result = said({.errors = Listener::terminal, .columns = 24}, [](Console& console) {
        console.bar(0.5, "a");
        console.out("data\n");
    });
    EXPECT_EQ(result.errors, "\r\x1b[Ka  [======>      ]  50%\r\x1b[K");
    EXPECT_EQ(result.out, "data\n");
}

TEST(ConsoleBar, IsForTerminalsThatObeyOnly) {
    const auto draw = [](Console& console) {
        console.bar(0.5, "a");
        console.endBar();
    };
    EXPECT_EQ(said({}, draw).errors, "");
    EXPECT_EQ(said({.errors = Listener::terminal, .environment = {{"TERM", "dumb"}}}, draw).errors,
              "");
    EXPECT_EQ(said({.errors = Listener::terminal, .verbosity = Verbosity::quiet}, draw).errors, "");
}

TEST(Painted, PutsEscapesAroundTheTextWhenWanted) {
    EXPECT_EQ(cli::painted("a", Paint::bold, true), "\x1b[1ma\x1b[0m");
    EXPECT_EQ(cli::painted("a", Paint::dim, true), "\x1b[2ma\x1b[0m");
    EXPECT_EQ(cli::painted("a", Paint::red, true), "\x1b[31ma\x1b[0m");
    EXPECT_EQ(cli::painted("a", Paint::green, true), "\x1b[32ma\x1b[0m");
    EXPECT_EQ(cli::painted("a", Paint::yellow, true), "\x1b[33ma\x1b[0m");
    EXPECT_EQ(cli::painted("a", Paint::bold, false), "a");
    EXPECT_EQ(cli::painted("", Paint::bold, true), "");
}

}  // namespace trellant::testing
