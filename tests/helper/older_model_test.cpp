// SPDX-License-Identifier: Apache-2.0
// Files of OMF 1.x: refused as ever, unless the request asks for them.
#include "worker_fixture.h"

#include <trellant_testing/aiff_builder.h>
#include <trellant_testing/omf1_builder.h>

namespace trellant::testing {

namespace {

class HelperOlderModel : public WorkerTest {
  protected:
    HelperOlderModel() {
        Omf1Builder omf;
        const MobID voice{1, 2, 3};
        omf.audioFile({.id = voice,
                       .name = "Voice",
                       .media = aiffImage({.formType = "AIFC", .samples = Bytes(960)}),
                       .length = 480});
        const ObjectBuilder clip = omf.clip({.length = 480, .source = voice});
        omf.mob({.name = "Song", .tracks = {omf.track(1, clip)}});
        writeFile(source_, omf.build());
    }

    [[nodiscard]] WorkerRun runAsking(const std::string& more,
                                      std::string_view operation = "inspect") const {
        auto request = requestFor(operation, source_, path("work"));
        request.more = more;
        return run(request);
    }

    std::string source_ = path("older.omf");
};

TEST_F(HelperOlderModel, IsRefusedWhereItIsNotAskedFor) {
    const std::string progress = progressLineText("opening", "0.05");
    for (const std::string more : {"", ",\"extensions\":null", ",\"extensions\":[]",
                                   ",\"extensions\":[\"contents\",\"OMF1\"]"}) {
        expectFailed(runAsking(more), progress,
                     "Unsupported OMF/Bento feature: not an OMF 2.x object model "
                     "(OMFI:OOBJ:ObjClass registry entry missing)");
    }
}

TEST_F(HelperOlderModel, IsReadWhereItIsAskedFor) {
    const auto answer = runAsking(",\"extensions\":[\"omf1\"]");
    EXPECT_EQ(answer.status, 0);
    EXPECT_EQ(answer.errors, oneSlotProgress());
    EXPECT_NE(answer.output.find("\"diagnostics\":[\"OMF 1.0\\/Bento 1.0, big-endian\","),
              std::string::npos)
        << answer.output;
    EXPECT_NE(answer.output.find("\"extensions\":{\"omf1\":{\"version\":\"1.0\"}}"),
              std::string::npos)
        << answer.output;
    EXPECT_NE(answer.output.find("\"compositionName\":\"Song\""), std::string::npos);
}

TEST_F(HelperOlderModel, ItsAudioIsTakenOut) {
    const auto answer = runAsking(",\"extensions\":[\"omf1\"]", "extractAndInspect");
    EXPECT_EQ(answer.status, 0);
    EXPECT_EQ(readFile(path("work/Voice.aifc")),
              aiffImage({.formType = "AIFC", .samples = Bytes(960)}));
}

TEST_F(HelperOlderModel, OMF2IsReadAsEverWithIt) {
    source_ = oneClipFile();
    const std::string with = runAsking(",\"extensions\":[\"omf1\"]").output;
    EXPECT_EQ(with, runAsking(",\"extensions\":[]").output);
    EXPECT_NE(with.find("\"extensions\":{}"), std::string::npos);
}

}  // namespace

}  // namespace trellant::testing
