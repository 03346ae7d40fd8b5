// SPDX-License-Identifier: Apache-2.0
// The bytes of many small streams, which stay where they are while more are added.
#pragma once

#include <trellant/base/bytes.h>

#include <cstddef>
#include <vector>

namespace trellant::compound {

class HeldBytes {
  public:
    /// Where the bytes are from now on, for `at`.
    std::size_t add(ByteView bytes);
    /// So many bytes as were added there. Valid as long as this is.
    [[nodiscard]] ByteView at(std::size_t place, std::size_t count) const;

  private:
    /// Each of at most a piece's size, or of one stream that is larger.
    std::vector<Bytes> pieces_;
};

}  // namespace trellant::compound
