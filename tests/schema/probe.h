// SPDX-License-Identifier: Apache-2.0
// What the tests of the schemas ask the code: the tables from which encoder and decoder work, one
// document with every field of each kind, and which documents the decoder takes.
#pragma once

#include <iosfwd>

namespace trellant::test {

/// One JSON object: "records" (name, then key, then "required SHAPE" or "optional SHAPE"), "enums"
/// (name, then the raw values). Shapes and names are those of the schemas' definitions; an
/// interpolation counts as a record of optional keys.
void printTables(std::ostream& out);

/// A line for each kind of document: the kind, a tab, the JSON text.
void printSamples(std::ostream& out);

/// For each line of `in` (as printSamples writes them) a line: "decoded", or why it was refused.
/// Shapes only: a timeline's own checks are left out.
void decodeLines(std::istream& in, std::ostream& out);

}  // namespace trellant::test
