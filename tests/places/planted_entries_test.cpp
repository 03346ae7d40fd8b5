// SPDX-License-Identifier: Apache-2.0
// What somebody has put into the work directory before.
#include "places_fixture.h"

#include <gmock/gmock.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <trellant_testing/byte_writer.h>
#include <trellant_testing/requests.h>
#include <unistd.h>

namespace trellant::testing {

namespace {

using ::testing::ElementsAre;
using ::testing::Pair;

namespace fs = std::filesystem;

void makeSocket(const std::string& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    ASSERT_LT(path.size(), sizeof(address.sun_path));
    std::memcpy(address.sun_path, path.c_str(), path.size() + 1);
    const int socket = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    // The system's own way to take addresses.
    ASSERT_EQ(::bind(socket, reinterpret_cast<const sockaddr*>(&address), sizeof(address)), 0);
    ::close(socket);
}

class PlantedEntries : public PlacesTest {
  protected:
    PlantedEntries() {
        addEmbedded("Tone.wav");
        writeFile(path("outside"), bytesOf("mine"));
    }
    void expectOutsideIsUntouched() const { EXPECT_EQ(readFile(path("outside")), bytesOf("mine")); }
    /// The numbered names beside "Tone.wav" are all taken.
    void takeAllNumbers() const {
        for (int number = 2; number <= 999; ++number) {
            std::ofstream(work("Tone_" + std::to_string(number) + ".wav"));
        }
    }
    void expectRefused(int reason) {
        const auto run = extractRun();
        EXPECT_TRUE(
            run.errors.ends_with(logLineText("unexpected failure: cannot create \"" +
                                             work("Tone.wav") + "\": " + std::strerror(reason))))
            << run.errors;
        EXPECT_EQ(run.output, "");
        EXPECT_EQ(run.status, 2);
    }
};

TEST_F(PlantedEntries, OfEveryKindAreTakenNamesAndStayWhatTheyAre) {
    fs::create_symlink(path("outside"), work("Tone.wav"));
    fs::create_symlink(path("missing"), work("Tone_2.wav"));
    fs::create_symlink("/dev/null", work("Tone_3.wav"));
    fs::create_symlink(search(), work("Tone_4.wav"));
    fs::create_symlink("Tone_5.wav", work("Tone_5.wav"));
    ASSERT_EQ(::mkfifo(work("Tone_6.wav").c_str(), 0600), 0);
    makeSocket(work("Tone_7.wav"));
    fs::create_directory(work("Tone_8.wav"));
    fs::create_hard_link(path("outside"), work("Tone_9.wav"));
    EXPECT_EQ(extract().timeline.essences.at(0).fileURL, AAFURL{"file://" + work("Tone_10.wav")});
    EXPECT_THAT(filesInWork(),
                ElementsAre(Pair("Tone_10.wav", audioOf(1)), Pair("Tone_9.wav", bytesOf("mine"))));
    EXPECT_EQ(fs::read_symlink(work("Tone.wav")), path("outside"));
    EXPECT_FALSE(fs::exists(path("missing")));
    EXPECT_TRUE(fs::is_empty(search()));
    EXPECT_TRUE(fs::is_fifo(work("Tone_6.wav")));
    expectOutsideIsUntouched();
}

TEST_F(PlantedEntries, LinkAtTheLastResortIsReplacedNotFollowed) {
    fs::create_symlink(path("outside"), work("Tone.wav"));
    takeAllNumbers();
    EXPECT_EQ(extract().timeline.essences.at(0).fileURL, AAFURL{"file://" + work("Tone.wav")});
    EXPECT_FALSE(fs::is_symlink(work("Tone.wav")));
    EXPECT_EQ(readFile(work("Tone.wav")), audioOf(1));
    expectOutsideIsUntouched();
}

TEST_F(PlantedEntries, HardLinkAtTheLastResortIsReplacedNotWrittenThrough) {
    fs::create_hard_link(path("outside"), work("Tone.wav"));
    takeAllNumbers();
    extract();
    EXPECT_EQ(readFile(work("Tone.wav")), audioOf(1));
    expectOutsideIsUntouched();
}

TEST_F(PlantedEntries, PipeAtTheLastResortIsRefusedWithoutWaiting) {
    ASSERT_EQ(::mkfifo(work("Tone.wav").c_str(), 0600), 0);
    takeAllNumbers();
    expectRefused(EEXIST);
}

TEST_F(PlantedEntries, FolderAtTheLastResortIsRefused) {
    fs::create_directory(work("Tone.wav"));
    takeAllNumbers();
    expectRefused(EISDIR);
}

TEST_F(PlantedEntries, WorkDirectoryThatIsALinkIsWhereItLeads) {
    fs::remove(work());
    fs::create_directory(path("elsewhere"));
    fs::create_symlink(path("elsewhere"), work());
    EXPECT_EQ(extract().timeline.essences.at(0).fileURL, AAFURL{"file://" + work("Tone.wav")});
    EXPECT_EQ(readFile(path("elsewhere/Tone.wav")), audioOf(1));
}

TEST_F(PlantedEntries, WorkDirectoryThatIsALinkToNothingIsRefused) {
    fs::remove(work());
    fs::create_symlink(path("nowhere"), work());
    const auto run = extractRun();
    EXPECT_EQ(run.errors, progressLineText("opening", "0.05") +
                              logLineText("unexpected failure: cannot create directory \"" +
                                          work() + "\": File exists"));
    EXPECT_EQ(run.status, 2);
    EXPECT_FALSE(fs::exists(path("nowhere")));
}

}  // namespace

}  // namespace trellant::testing
