// SPDX-License-Identifier: Apache-2.0
// The table of contents by which a file of OMF 1.x looks like one of OMF 2.x: small values stand in
// the table itself, texts and audio stay where they lie in the file.
#pragma once

#include <trellant/io/bento_container.h>
#include <trellant/omf/names.h>
#include <trellant/omf/values.h>

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace trellant {

class PresentedTable {
  public:
    /// Numbers are written in `order`; new objects get numbers above `lastObject`.
    PresentedTable(OMFByteOrder order, std::uint32_t lastObject)
        : order_(order), lastObject_(lastObject) {}

    /// Throws OMFIOError unsupported when there are no numbers left.
    [[nodiscard]] OMFObject newObject();

    void classID(OMFObject object, std::string_view text);
    void text(OMFObject object, OMFProperty property, std::string_view text);
    void number16(OMFObject object, OMFProperty property, std::uint16_t value);
    void number32(OMFObject object, OMFProperty property, std::uint32_t value);
    void number64(OMFObject object, OMFProperty property, std::int64_t value);
    void rational(OMFObject object, OMFProperty property, OMFRationalValue value);
    void uid(OMFObject object, OMFProperty property, const OMFUID& value);
    void reference(OMFObject object, OMFProperty property, OMFObject target) {
        number32(object, property, number(target));
    }
    /// Without those that refer to nothing.
    void references(OMFObject object, OMFProperty property, std::span<const OMFObject> targets);
    /// The value whose pieces those are.
    void copy(OMFObject object, OMFProperty property, std::span<const BentoPackedItem> pieces);

    /// The file of `container` by this table.
    [[nodiscard]] BentoContainer over(BentoContainer container) const;

  private:
    /// At most 4 bytes.
    void piece(OMFObject object, OMFProperty property, ByteView bytes);

    OMFByteOrder order_;
    std::uint32_t lastObject_;
    std::vector<BentoPackedItem> items_;
};

}  // namespace trellant
