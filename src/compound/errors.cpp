// SPDX-License-Identifier: Apache-2.0
#include <trellant/base/text.h>
#include <trellant/compound/errors.h>

#include <utility>

namespace trellant::compound {

namespace {

using NameProblem = CompoundError::NameProblem;
using Bound = CompoundError::Bound;

/// In quotation marks, for a person.
std::string quoted(const std::u16string& name) {
    Bytes bytes;
    bytes.reserve(2 * name.size());
    for (const char16_t unit : name) {
        bytes.push_back(static_cast<std::byte>(unit & 0xFFU));
        bytes.push_back(static_cast<std::byte>(unit >> 8U));
    }
    return '"' + fromUTF16(bytes, OMFByteOrder::little).value_or("(not Unicode)") + '"';
}

const char* textOf(NameProblem problem) {
    switch (problem) {
        case NameProblem::empty:
            return "is empty";
        case NameProblem::moreThan31Units:
            return "is longer than 31 units of UTF-16";
        case NameProblem::forbiddenCharacter:
            return "contains one of / \\ : ! or a zero";
        case NameProblem::unpairedSurrogate:
            return "contains half of a surrogate pair";
    }
    return "";
}

const char* textOf(Bound bound) {
    switch (bound) {
        case Bound::entries:
            return "storages and streams";
        case Bound::sectors:
            return "sectors";
        case Bound::miniSectors:
            return "mini sectors";
    }
    return "";
}

std::string describe(const CompoundError::InvalidName& fault) {
    return "compound file: the name " + quoted(fault.name) + ' ' + textOf(fault.problem);
}

std::string describe(const CompoundError::DuplicateName& fault) {
    return "compound file: two entries of a storage are called " + quoted(fault.name);
}

std::string describe(const CompoundError::TooLarge& fault) {
    return std::string("compound file: more ") + textOf(fault.bound) +
           " than the format can number";
}

std::string describe(const CompoundError::WrongStreamLength& fault) {
    return "compound file: the stream " + quoted(fault.name) + " was to have " +
           std::to_string(fault.expected) + " bytes, its source gave " + std::to_string(fault.got);
}

}  // namespace

CompoundError::CompoundError(Fault fault)
    : fault_(std::move(fault)),
      description_(std::visit([](const auto& one) { return describe(one); }, fault_)) {}

}  // namespace trellant::compound
