// SPDX-License-Identifier: Apache-2.0
// The byte order of numbers in a file. The container's footer fixes that of the table of contents,
// the object model's header that of property values.
#pragma once

namespace [[gnu::visibility("default")]] trellant {

/// Of the numbers in a file.
enum class OMFByteOrder { little, big };

}  // namespace trellant
