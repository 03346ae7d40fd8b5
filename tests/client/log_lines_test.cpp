// SPDX-License-Identifier: Apache-2.0
// What becomes of the bytes on a worker's standard error. The worker writes each chunk only when
// the one before was taken, so that the client sees exactly these chunks.
#include "client_fixture.h"

namespace trellant::testing {

namespace {

class ClientLogLines : public ClientTest {
  protected:
    /// A failing worker that writes these chunks leaves these lines behind.
    void expectLines(const std::vector<std::string>& chunks, const std::string& lines) const {
        expectFault(act({.errors = chunks, .status = 1}), NonZeroExit{1, lines});
    }
};

TEST_F(ClientLogLines, LineWithoutLineFeedIsALine) {
    expectLines({"one\ntwo"}, "one\ntwo");
}

TEST_F(ClientLogLines, EmptyLinesAreLeftOut) {
    expectLines({"\n\none\n\n\ntwo\n\n"}, "one\ntwo");
}

TEST_F(ClientLogLines, BlankLinesAreKept) {
    expectLines({" \none\r\n"}, " \none\r");
}

TEST_F(ClientLogLines, LineInTwoChunksIsTwoLines) {
    expectLines({"fir", "st\nsecond\n"}, "fir\nst\nsecond");
}

TEST_F(ClientLogLines, ProgressLinesAreNotKept) {
    expectLines({"one\nTRELLANT-AAF-PROGRESS {\"phase\":\"done\",\"fraction\":1}\ntwo\n"},
                "one\ntwo");
}

TEST_F(ClientLogLines, ProgressLineInTwoChunksIsLostAndItsRestKept) {
    std::vector<Progress> seen;
    expectFault(
        act({.errors = {"TRELLANT-AAF-PROGRESS {\"phase\":\"half\"", ",\"fraction\":0.5}\n"},
             .status = 1},
            [&](const Progress& progress) { seen.push_back(progress); }),
        NonZeroExit{1, ",\"fraction\":0.5}"});
    EXPECT_TRUE(seen.empty());
}

TEST_F(ClientLogLines, ProgressLinesThatDoNotDecodeAreDropped) {
    expectLines({"TRELLANT-AAF-PROGRESS {\"phase\":\nTRELLANT-AAF-PROGRESS \n"
                 "TRELLANT-AAF-PROGRESS {\"phase\":\"done\"}\n"
                 "TRELLANT-AAF-PROGRESS {\"phase\":1,\"fraction\":1}\nend\n"},
                "end");
}

TEST_F(ClientLogLines, MarkerCountsOnlyWholeAndAtTheBeginning) {
    expectLines({"TRELLANT-AAF-PROGRESS\n TRELLANT-AAF-PROGRESS {}\nTRELLANT-AAF-PROGRESS{}\n"
                 "trellant-aaf-progress {}\n"},
                "TRELLANT-AAF-PROGRESS\n TRELLANT-AAF-PROGRESS {}\nTRELLANT-AAF-PROGRESS{}\n"
                "trellant-aaf-progress {}");
}

TEST_F(ClientLogLines, ChunkThatIsNotTextIsDroppedWhole) {
    expectLines({"first\n", "good\nbad \xFF\ngood\n", "last\n"}, "first\nlast");
}

TEST_F(ClientLogLines, ProgressInAChunkThatIsNotTextIsDroppedToo) {
    std::vector<Progress> seen;
    expectFault(
        act({.errors = {"TRELLANT-AAF-PROGRESS {\"phase\":\"a\",\"fraction\":0}\n\xC0\xAF\n",
                        "TRELLANT-AAF-PROGRESS {\"phase\":\"b\",\"fraction\":0}\n"},
             .status = 1},
            [&](const Progress& progress) { seen.push_back(progress); }),
        NonZeroExit{1, ""});
    EXPECT_EQ(seen, (std::vector<Progress>{{"b", 0, std::nullopt}}));
}

TEST_F(ClientLogLines, CharacterCutByTwoChunksDropsBoth) {
    expectLines({"one\n", "M\xC3", "\xA4use\n", "two\n"}, "one\ntwo");
}

TEST_F(ClientLogLines, TextOfEveryScriptIsKept) {
    expectLines({"Mäuse 出力 \xF0\x9F\x8E\xAC\n"}, "Mäuse 出力 \xF0\x9F\x8E\xAC");
}

TEST_F(ClientLogLines, ControlCharactersAreKept) {
    expectLines({std::string("a\0b\x1b[1m\n", 8)}, std::string("a\0b\x1b[1m", 7));
}

TEST_F(ClientLogLines, LastWordsAreNotLost) {
    // Many lines that lie in the pipe when the worker ends, the last of them unfinished.
    std::string lines;
    for (int line = 1; line <= 70; ++line) {
        lines += "line " + std::to_string(line) + "\n";
    }
    for (int round = 0; round < 20; ++round) {
        expectLines({lines + "last"},
                    "line 64\nline 65\nline 66\nline 67\nline 68\nline 69\nline 70\nlast");
    }
}

}  // namespace

}  // namespace trellant::testing
