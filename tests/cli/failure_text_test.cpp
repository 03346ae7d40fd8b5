// SPDX-License-Identifier: Apache-2.0
#include "look/failure_text.h"

#include <trellant/client/errors.h>

#include <gtest/gtest.h>

#include <fstream>
#include <stdexcept>
#include <string>
#include <trellant_testing/temporary_directory.h>

namespace trellant::testing {
namespace {

using cli::failureText;

std::string ofWorker(const std::string& file, const std::string& words) {
    return failureText(file, AAFWorkerClientError::nonZeroExit(2, "trellant-omf: " + words));
}

TEST(FailureText, TheSystemsRefusalIsToldWithoutItsLabel) {
    EXPECT_EQ(ofWorker("a.omf", "unexpected failure: cannot open \"a.omf\": Permission denied"),
              "cannot open \"a.omf\": Permission denied");
}

TEST(FailureText, AFileThatIsNoContainerIsToldByItsLooks) {
    const TemporaryDirectory folder;
    const std::string file = folder.file("notes.omf");
    std::ofstream(file) << "Take 3 was the good one.\n";
    EXPECT_EQ(ofWorker(file, "Malformed OMF/Bento file: Bento footer signature not found"),
              "this is no OMF file that can be read, it looks like a text (Malformed OMF/Bento "
              "file: Bento footer signature not found)");
}

TEST(FailureText, AFileThatLostItsEndIsToldWithWhatToDo) {
    // What workstations write at the front of their files.
    const TemporaryDirectory folder;
    const std::string file = folder.file("mix.omf");
    std::ofstream(file, std::ios::binary) << "b\xb5\x14\xcc" << '\0' << "omfi:data:NoDatakind";
    EXPECT_EQ(ofWorker(file, "Malformed OMF/Bento file: Bento footer signature not found"),
              "this is the front of an OMF file whose end is missing: 25 bytes are there. Copy or "
              "export it again (Malformed OMF/Bento file: Bento footer signature not found)");
}

TEST(FailureText, AudioInsideAFileWithoutItsEndIsAHint) {
    const TemporaryDirectory folder;
    const std::string file = folder.file("mix.omf");
    std::ofstream(file, std::ios::binary) << "\x62\xb5\x14\xb8\x01"
                                          << "FORM\x01\x01\x01\x01"
                                          << "AIFC";
    EXPECT_EQ(ofWorker(file, "Malformed OMF/Bento file: file too small for Bento footer"),
              "this is what may be the front of an OMF file whose end is missing: 17 bytes are "
              "there. Copy or export it again (Malformed OMF/Bento file: file too small for Bento "
              "footer)");
}

TEST(FailureText, AnEmptyFileIsToldAsOne) {
    const TemporaryDirectory folder;
    const std::string file = folder.file("mix.omf");
    std::ofstream(file, std::ios::binary) << "";
    EXPECT_EQ(ofWorker(file, "Malformed OMF/Bento file: file too small for Bento footer"),
              "this is no OMF file that can be read, it looks like an empty file (Malformed "
              "OMF/Bento file: file too small for Bento footer)");
}

TEST(FailureText, ADamagedTableIsToldWithWhatToDo) {
    EXPECT_EQ(ofWorker("a.omf", "Malformed OMF/Bento file: V1 immediate value longer than 4 bytes"),
              "the file is damaged: copy or export it again (Malformed OMF/Bento file: V1 "
              "immediate value longer than 4 bytes)");
}

TEST(FailureText, AnOlderFileIsToldHowToBecomeReadable) {
    const std::string words =
        "Unsupported OMF/Bento feature: not an OMF 2.x object model (OMFI:OOBJ:ObjClass registry "
        "entry missing)";
    EXPECT_EQ(ofWorker("a.omf", words),
              "this is an OMF 1.x file: export the session as OMF 2 to read it (" + words + ")");
}

TEST(FailureText, TheLastWordsOfSeveralLinesCount) {
    EXPECT_EQ(failureText("a.omf", AAFWorkerClientError::nonZeroExit(
                                       2,
                                       "something else\ntrellant-omf: Short read (expected 4 "
                                       "bytes, got 2).")),
              "Short read (expected 4 bytes, got 2).");
}

TEST(FailureText, AWorkerThatDiedWithoutAWordIsTold) {
    EXPECT_EQ(failureText("a.omf", AAFWorkerClientError::nonZeroExit(11, "")),
              "reading ended unexpectedly (trellant-omf: 11). Please report this file as a fault");
}

TEST(FailureText, AMissingWorkerIsToldWithWhatToDo) {
    EXPECT_EQ(failureText("a.omf", AAFWorkerClientError::helperMissing()),
              "the program trellant-omf is missing. It belongs beside this one; please install "
              "Trellant again");
}

TEST(FailureText, AMissingWorkerIsToldWithThePlacesSearched) {
    EXPECT_EQ(failureText("a.omf", AAFWorkerClientError::helperMissing(
                                       "trellant-omf", {"/opt/AAFTools/trellant-omf",
                                                        "/opt/new\nline", "/opt/trellant-omf"})),
              "the program trellant-omf is missing: it is neither /opt/AAFTools/trellant-omf nor "
              "/opt/new\\u000aline nor /opt/trellant-omf. It belongs beside this one; please "
              "install Trellant again");
}

TEST(FailureText, ANameThatCannotBeSentIsToldWithWhatToDo) {
    EXPECT_EQ(failureText("a\xFF.omf", AAFWorkerClientError::launchFailed("x")),
              "the file's name is not UTF-8. Rename the file or its folder and try again");
}

TEST(FailureText, ACancellationAndAnyOtherErrorAreTold) {
    EXPECT_EQ(failureText("a.omf", AAFCancellationError()), "cancelled");
    EXPECT_EQ(failureText("a.omf", std::runtime_error("no more memory")), "no more memory");
}

}  // namespace
}  // namespace trellant::testing
