// SPDX-License-Identifier: Apache-2.0
// Which worker reads which file.
#include <trellant/client/worker_client.h>

#include <gtest/gtest.h>

#include <string>

namespace trellant {

namespace {

std::string chosenFor(const std::string& path) {
    return AAFWorkerClient::fuer(path).helperName;
}

TEST(WorkerChoice, OmfInAnyCaseIsForTheOmfWorker) {
    EXPECT_EQ(chosenFor("mix.OMF"), "trellant-omf");
    EXPECT_EQ(chosenFor("mix.omf"), "trellant-omf");
    EXPECT_EQ(chosenFor("/reels/mix.oMf"), "trellant-omf");
}

TEST(WorkerChoice, OmfiInAnyCaseIsForTheOmfWorker) {
    EXPECT_EQ(chosenFor("mix.omfi"), "trellant-omf");
    EXPECT_EQ(chosenFor("mix.OMFI"), "trellant-omf");
}

TEST(WorkerChoice, AafIsForTheAafWorker) {
    EXPECT_EQ(chosenFor("mix.aaf"), "trellant-aaf");
    EXPECT_EQ(chosenFor("mix.AAF"), "trellant-aaf");
}

TEST(WorkerChoice, NameWithoutExtensionIsForTheAafWorker) {
    EXPECT_EQ(chosenFor("mix"), "trellant-aaf");
    EXPECT_EQ(chosenFor("omf"), "trellant-aaf");
    EXPECT_EQ(chosenFor(""), "trellant-aaf");
}

TEST(WorkerChoice, NameThatBeginsWithItsOnlyDotHasNoExtension) {
    EXPECT_EQ(chosenFor("/reels/.omf"), "trellant-aaf");
}

TEST(WorkerChoice, OnlyTheLastExtensionCounts) {
    EXPECT_EQ(chosenFor("mix.omf.bak"), "trellant-aaf");
    EXPECT_EQ(chosenFor("mix.aaf.omf"), "trellant-omf");
    EXPECT_EQ(chosenFor("mix.omf."), "trellant-aaf");
}

TEST(WorkerChoice, LongerAndShorterExtensionsAreOthers) {
    EXPECT_EQ(chosenFor("mix.om"), "trellant-aaf");
    EXPECT_EQ(chosenFor("mix.omf2"), "trellant-aaf");
    EXPECT_EQ(chosenFor("mix.omfii"), "trellant-aaf");
}

TEST(WorkerChoice, DotsOfFoldersDoNotCount) {
    EXPECT_EQ(chosenFor("/reels.omf/mix"), "trellant-aaf");
    EXPECT_EQ(chosenFor("/reels.aaf/mix.omf"), "trellant-omf");
}

TEST(WorkerChoice, ClientWithoutAChoiceIsForTheAafWorker) {
    EXPECT_EQ(AAFWorkerClient{}.helperName, "trellant-aaf");
}

TEST(WorkerChoice, IsTheSameInEnglish) {
    for (const std::string path : {"mix.omf", "mix.OMFI", "mix.aaf", "mix", ""}) {
        EXPECT_EQ(AAFWorkerClient::forFile(path).helperName, chosenFor(path)) << path;
    }
}

TEST(WorkerChoice, ChosenClientIsOtherwiseAsAnyClient) {
    const AAFWorkerClient chosen = AAFWorkerClient::fuer("mix.omf");
    EXPECT_TRUE(static_cast<bool>(chosen.helperURLProvider));
    EXPECT_EQ(chosen.resultLimit, 2'147'483'648U);
}

}  // namespace

}  // namespace trellant
