// SPDX-License-Identifier: Apache-2.0
// Lists and texts that lie over one another ask for work without end; there is a bound.
#include "mapped_older.h"

#include <gtest/gtest.h>

namespace trellant::testing {
namespace {

TEST(OlderBounds, ListsThatLieOverOneAnotherAreRefused) {
    OneClip session;
    // 60000 references are 480 kB; a hundred sequences have them all.
    const Bytes list = session.omf.refsValue(std::vector<ObjectID>(60'000, session.clip));
    const ObjectID first = session.omf.sequence({}).id();
    session.omf.container().set(first, "OMFI:SEQU:Sequence", list);
    const ObjectID property = session.omf.container().propertyID("OMFI:SEQU:Sequence");
    const ContainerImage before = session.omf.container().image();
    std::uint64_t offset = 0;
    while (!std::equal(list.begin(), list.end(),
                       before.data.begin() + static_cast<std::ptrdiff_t>(offset))) {
        ++offset;
    }
    for (int i = 0; i < 100; ++i) {
        const ObjectID sequence = session.omf.object("SEQU");
        session.omf.container().addItem(
            {sequence, property, 0, 0, {BentoRange{offset, list.size()}, false}});
    }
    EXPECT_EQ(errorOf(session.omf.build()),
              "Unsupported OMF/Bento feature: lists and texts of OMF 1.x lie over one another");
}

TEST(OlderBounds, NumbersOfObjectsCanRunOut) {
    OneClip session;
    session.omf.container().set(0xFFFFFFFF, "OMFI:ObjID", bytesOf("FILL"));
    EXPECT_EQ(errorOf(session.omf.build()),
              "Unsupported OMF/Bento feature: no object numbers left for what OMF 1.x has no "
              "objects of");
}

TEST(OlderBounds, SequencesThatHoldThemselvesEnd) {
    OneClip session;
    session.omf.refs(session.sequence, "OMFI:SEQU:Sequence", {session.clip, session.sequence});
    const std::string error = errorOf(session.omf.build());
    const bool isNested = error.empty() || error.find("expands") != std::string::npos;
    EXPECT_TRUE(isNested) << error;
}

}  // namespace
}  // namespace trellant::testing
