// SPDX-License-Identifier: Apache-2.0
// Segments, components and markers as stored objects.
#pragma once

#include "object_writer.h"

#include <trellant/aaf/components.h>

#include <vector>

namespace trellant::aaf {

/// Stores what one slot consists of. Throws AafError for lengths that do not fit, transitions in
/// wrong places and two parameters of one kind.
class SegmentWriter {
  public:
    /// All components become of this kind, but timecode.
    SegmentWriter(compound::CompoundFile& file, DataKind dataKind)
        : file_(file), dataKind_(dataKind) {}

    void writeSegment(ObjectWriter& slot, const Segment& segment);
    void writeMarkers(ObjectWriter& slot, const std::vector<DescriptiveMarker>& markers);

  private:
    void write(Storage storage, const Sequence& sequence);
    void write(Storage storage, const SourceClip& clip);
    void write(Storage storage, const Timecode& timecode);
    void write(Storage storage, const Filler& filler);
    void write(Storage storage, const Transition& transition);
    void write(Storage storage, const DescriptiveMarker& marker);
    void writeParameters(ObjectWriter& group, const std::vector<Parameter>& parameters);
    void writeValue(Storage storage, const Parameter& parameter);

    /// What every component has.
    static void writeComponent(ObjectWriter& object, DataKind dataKind, std::int64_t length);
    void writeOperation(ObjectWriter& object, const OperationGroup& group, std::int64_t length);
    /// Stores the groups from the outermost on, which `storage` is for, and gives the storage for
    /// what they stand around.
    [[nodiscard]] Storage writeAround(Storage storage, const std::vector<OperationGroup>& groups,
                                      std::int64_t length, Class inner);

    compound::CompoundFile& file_;
    DataKind dataKind_;
};

}  // namespace trellant::aaf
