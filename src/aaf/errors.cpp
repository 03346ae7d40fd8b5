// SPDX-License-Identifier: Apache-2.0
#include <trellant/aaf/errors.h>

#include <utility>

namespace trellant::aaf {

namespace {

std::string describe(const AafError::ValueTooLong& fault) {
    return "AAF: the value of " + fault.property + " has " + std::to_string(fault.byteCount) +
           " bytes, more than 65535";
}

std::string describe(const AafError::ZeroInText& fault) {
    return "AAF: the text of " + fault.property + " contains a zero character";
}

std::string describe(const AafError::Duplicate& fault) {
    return "AAF: two objects of " + fault.property + " have the same identifier";
}

std::string describe(const AafError::LengthOutOfRange&) {
    return "AAF: the length of a sequence is out of range";
}

std::string describe(const AafError::MisplacedTransition&) {
    return "AAF: a transition does not stand between two segments";
}

std::string describe(const AafError::InvalidRational& fault) {
    return "AAF: " + fault.property + " is no valid fraction";
}

}  // namespace

AafError::AafError(Fault fault)
    : fault_(std::move(fault)),
      description_(std::visit([](const auto& one) { return describe(one); }, fault_)) {}

}  // namespace trellant::aaf
