// SPDX-License-Identifier: Apache-2.0
#include "otio_reader.h"
#include "session_samples.h"
#include "zip_reader.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <fcntl.h>
#include <trellant_testing/temporary_directory.h>
#include <unistd.h>

namespace trellant {

namespace {

using nlohmann::json;
using sessions::Session;
using testing::twoTracks;
using testing::zipBytes;
using testing::zipContent;
using testing::zipMembers;

Bytes bundleOf(const Session& session) {
    return testing::archiveOf(session, sessions::writeOtioBundle);
}

/// Anna's file goes into the session, Ben's stays where it lies.
Session withEmbeddedAnna(const testing::TemporaryDirectory& folder) {
    Session session = twoTracks();
    const std::string text = "RIFF, and what follows it";
    session.media[0].isEmbedded = true;
    session.media[0].wave = {
        .path = testing::writeFile(folder.file("x"), std::as_bytes(std::span(text))),
        .byteCount = text.size()};
    session.media[1].reference = session.media[1].path = "/audio/Ben.wav";
    return session;
}

TEST(OtioBundle, HoldsTheSessionItsVersionAndEmbeddedMedia) {
    const testing::TemporaryDirectory folder;
    const Bytes bundle = bundleOf(withEmbeddedAnna(folder));
    std::vector<std::string> names;
    for (const testing::ZipMember& member : zipMembers(zipBytes(bundle))) {
        names.push_back(member.name);
        EXPECT_EQ(member.isDeflated, member.name != "media/Anna.wav");
    }
    EXPECT_EQ(names, (std::vector<std::string>{"content.otio", "version.txt", "media/Anna.wav"}));
    EXPECT_EQ(zipContent(bundle, "version.txt"), "1.0.0");
    EXPECT_EQ(zipContent(bundle, "media/Anna.wav"), "RIFF, and what follows it");
}

TEST(OtioBundle, NamesEmbeddedMediaByTheirPlaceInTheBundle) {
    const testing::TemporaryDirectory folder;
    Session session = withEmbeddedAnna(folder);
    session.plan.media[0].fileName = "Anna 1.wav";
    const json timeline = json::parse(zipContent(bundleOf(session), "content.otio"));
    const json& children = timeline.at("tracks").at("children")[0].at("children");
    const auto urlOf = [](const json& clip) {
        return clip.at("media_references").at("DEFAULT_MEDIA").at("target_url");
    };
    EXPECT_EQ(urlOf(children[0]), "media/Anna%201.wav");
    EXPECT_EQ(urlOf(children[2]), "file:///audio/Ben.wav");
}

TEST(OtioBundle, HoldsThePlan) {
    for (std::uint32_t seed = 0; seed < 20; ++seed) {
        const Session session = testing::randomSession(seed);
        EXPECT_EQ(testing::planOfOtio(zipContent(bundleOf(session), "content.otio")),
                  testing::withoutPositions(session.plan));
    }
}

TEST(OtioBundle, IsTheSameForTheSameSessionAndDate) {
    const testing::TemporaryDirectory folder;
    Session session = withEmbeddedAnna(folder);
    session.date = 1'000'000'000;
    const Bytes first = bundleOf(session);
    EXPECT_EQ(bundleOf(session), first);
    session.date += 2;
    EXPECT_NE(bundleOf(session), first);
}

TEST(OtioBundle, GoesToADescriptorWithoutMovingIt) {
    const testing::TemporaryDirectory folder;
    const std::string path = folder.file("a.otioz");
    const int descriptor = ::open(path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
    ASSERT_GE(descriptor, 0);
    sessions::writeOtioBundle(twoTracks(), sessions::descriptorPlacedSink(descriptor));
    EXPECT_EQ(::lseek(descriptor, 0, SEEK_CUR), 0);
    ::close(descriptor);
    EXPECT_EQ(testing::readFile(path), bundleOf(twoTracks()));
}

}  // namespace

}  // namespace trellant
