// SPDX-License-Identifier: Apache-2.0
// How much memory a request allows.
#include "worker_fixture.h"

namespace trellant::testing {

namespace {

class MemoryLimit : public WorkerTest {
  protected:
    [[nodiscard]] static WorkerRun runWithin(const std::string& limit, const std::string& file) {
        auto request = requestFor("inspect", file, "work");
        request.more = ",\"memoryLimit\":" + limit;
        return run(request);
    }

    std::string source_ = oneClipFile();
};

TEST_F(MemoryLimit, ThatIsEnoughChangesNothing) {
    for (const char* const limit : {"null", "67108864", "9223372036854775807"}) {
        EXPECT_EQ(runWithin(limit, source_).output, oneClipResult(jsonFileURL(source_))) << limit;
    }
}

TEST_F(MemoryLimit, ThatIsTooLittleIsNamed) {
    // A list of references of 16 MiB, of which a copy does not fit.
    OmfBuilder omf;
    const ObjectID sequence = omf.sequence({});
    omf.at(sequence).bytes("OMFI:SEQU:Components", Bytes(16'777'216, std::byte{1}));
    omf.composition({.slots = {omf.slot({.editRate = Ratio{100}, .segment = sequence})}});
    const std::string large = writeFile(path("large.omf"), omf.build());
    for (const char* const limit : {"8388608", "-1"}) {
        const WorkerRun failed = runWithin(limit, large);
        EXPECT_TRUE(failed.errors.ends_with(
            "trellant-omf: Unsupported OMF/Bento feature: composition needs more than " +
            std::string(limit) + " bytes of memory\n"))
            << failed.errors;
        EXPECT_EQ(failed.output, "");
        EXPECT_EQ(failed.status, 2);
    }
}

TEST_F(MemoryLimit, ThatIsNoNumberIsNoRequest) {
    expectRejected(runWithin("\"all\"", source_),
                   "invalid request JSON: memoryLimit: expected an integer, found a string");
}

}  // namespace

}  // namespace trellant::testing
