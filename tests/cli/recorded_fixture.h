// SPDX-License-Identifier: Apache-2.0
// Documents of sources that were recorded from a tape and are played through master mobs, by clips
// without a name.
#pragma once

#include "extract_fixture.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace trellant::testing {

class RecordedTest : public ExtractTest {
  protected:
    /// A tape whose labels begin at 10:00:00:00 of 25 frames.
    void addTape();
    /// A source with the mob identifier 1, 0, `number`, 4,344,000 samples (90.5 s) into the tape,
    /// and a track with a clip of 480 samples without a name that plays a master mob which is
    /// called `title`.
    void addRecorded(std::uint32_t number, const std::string& name, MediaKind kind,
                     const Bytes& media, const std::optional<std::string>& title);
    /// The document, as "mix.omf" in the test's folder.
    std::string writeRecorded();

  private:
    std::vector<ObjectID> tracks_;
};

}  // namespace trellant::testing
