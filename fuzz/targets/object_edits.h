// SPDX-License-Identifier: Apache-2.0
// Mutations of a container that leave it one: they change what its objects say, where changes of
// single bytes mostly end at the table of contents.
#pragma once

#include <trellant/io/byte_readers.h>

#include <functional>
#include <optional>

namespace trellant::fuzzing {

/// Changes `bytes`, which it may make longer, in some way of its own.
using ByteMutation = std::function<void(Bytes& bytes)>;

/// `container` with a few changes chosen by `seed`; a value is at times left to `mutateBytes`.
/// Absent when the bytes are no container that can be taken apart.
[[nodiscard]] std::optional<Bytes> editedContainer(ByteView container, unsigned seed,
                                                   const ByteMutation& mutateBytes);

/// `container` with some objects of `other` in it or in place of its own. Absent as above.
[[nodiscard]] std::optional<Bytes> crossedContainers(ByteView container, ByteView other,
                                                     unsigned seed);

}  // namespace trellant::fuzzing
