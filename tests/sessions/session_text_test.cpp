// SPDX-License-Identifier: Apache-2.0
#include "session_text.h"

#include "session_samples.h"

#include <trellant/base/system_call_error.h>
#include <trellant/exchange/format_limits.h>

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <limits>
#include <unistd.h>

namespace trellant {

namespace {

using sessions::mediaSeconds;
using sessions::mostTextBytes;
using sessions::numberText;
using sessions::secondsAt;
using sessions::startText;

TEST(SessionText, WritesNumbersInTheFewestDigitsThatReadBackTheSame) {
    EXPECT_EQ(numberText(0), "0");
    EXPECT_EQ(numberText(0.1), "0.1");
    EXPECT_EQ(numberText(-2.75), "-2.75");
    EXPECT_EQ(numberText(1.0 / 3), "0.3333333333333333");
    EXPECT_EQ(numberText(1e16), "10000000000000000");
    EXPECT_EQ(numberText(1e-9), "0.000000001");
    EXPECT_EQ(numberText(1e17), "1e+17");
    EXPECT_EQ(numberText(1e-10), "1e-10");
    for (const double value : {1.0 / 48'000, 86'399.999979166666, 1e-300, 1e300}) {
        EXPECT_EQ(std::strtod(numberText(value).c_str(), nullptr), value);
    }
}

TEST(SessionText, WritesNoNumberThatIsNotFinite) {
    const double infinite = std::numeric_limits<double>::infinity();
    EXPECT_EQ(std::strtod(numberText(infinite).c_str(), nullptr),
              std::numeric_limits<double>::max());
    EXPECT_EQ(std::strtod(numberText(-infinite).c_str(), nullptr),
              std::numeric_limits<double>::lowest());
    EXPECT_EQ(numberText(std::numeric_limits<double>::quiet_NaN()), "0");
}

TEST(SessionText, CountsSecondsWithoutOverflow) {
    constexpr std::int64_t most = std::numeric_limits<std::int64_t>::max();
    EXPECT_EQ(secondsAt(AAFRational(1, 4), 96'000, 48'000), 0.5);
    EXPECT_EQ(secondsAt(AAFRational(most), exchange::mostSamples, 1),
              static_cast<double>(most) * 9'007'199'254'740'992.0);
    EXPECT_EQ(secondsAt(AAFRational(1, most), 1, 384'000),
              1 / (static_cast<double>(most) * 384'000));
    EXPECT_EQ(mediaSeconds(11'025, AAFRational(11'025)), 1);
    EXPECT_EQ(mediaSeconds(48'000, AAFRational(48'000 * 1000, 1001)), 1.001);
    EXPECT_EQ(mediaSeconds(most, AAFRational(1, most)),
              static_cast<double>(most) * static_cast<double>(most));
    EXPECT_EQ(mediaSeconds(5, AAFRational()), 0);
}

TEST(SessionText, SaysTheStart) {
    EXPECT_EQ(startText(AAFTimecodeAddress(1, 0, 0, 0, AAFTimecodeRate::fps23976())),
              "01:00:00:00, 23.98 fps");
    EXPECT_EQ(startText(AAFTimecodeAddress(1, 0, 0, 2, AAFTimecodeRate::fps2997DF())),
              "01:00:00;02, 29.97 fps drop-frame");
}

TEST(SessionText, KnowsAnUpperBoundOfEveryTextForm) {
    sessions::Session session = testing::twoTracks();
    const std::string name(1000, '\x01');
    session.plan.name = name;
    for (exchange::PlannedTrack& track : session.plan.tracks) {
        track.name = track.lanes[0].name = name;
        track.gainAutomation = AAFAutomationEnvelope{
            .interpolation = AAFAutomationInterpolation::unsupported(name),
            .points = std::vector<AAFAutomationPoint>(
                100, {AAFRational(std::numeric_limits<std::int64_t>::max() - 1,
                                  std::numeric_limits<std::int64_t>::max()),
                      -1.2345678901234567e-300})};
        track.panAutomation = track.gainAutomation;
        for (exchange::PlannedClip& clip : track.lanes[0].clips) {
            clip.name = name;
            clip.gainAutomation = track.gainAutomation;
            clip.fadeIn = {.length = 1,
                           .curve = track.gainAutomation->interpolation,
                           .shape = track.gainAutomation->points};
            clip.fadeOut = clip.fadeIn;
        }
    }
    for (std::size_t i = 0; i < session.media.size(); ++i) {
        session.plan.media[i].name = session.plan.media[i].fileName = name;
        session.plan.media[i].recordedPath = name;
        session.media[i].reference = session.media[i].path = "/" + name;
    }
    for (sessions::SessionMarker& marker : session.markers) {
        marker.text = name;
    }
    for (const auto& write : {sessions::writeOtioSession, sessions::writeReaperSession}) {
        EXPECT_LT(testing::textOf(session, write).size(), mostTextBytes(session));
    }
}

TEST(DescriptorPlacedSink, SaysWhyItCannotWrite) {
    const auto sink = sessions::descriptorPlacedSink(-1);
    const Bytes bytes(3);
    try {
        sink(0, bytes);
        FAIL() << "wrote to no descriptor";
    } catch (const SystemCallError& error) {
        EXPECT_EQ(error.errorNumber(), EBADF);
    }
    try {
        sink(std::numeric_limits<std::uint64_t>::max(), bytes);
        FAIL() << "wrote beyond every file";
    } catch (const SystemCallError& error) {
        EXPECT_EQ(error.errorNumber(), EFBIG);
    }
}

}  // namespace

}  // namespace trellant
