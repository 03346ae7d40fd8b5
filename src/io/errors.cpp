// SPDX-License-Identifier: Apache-2.0
// The texts of the errors, each made in one place.
#include <trellant/base/text.h>
#include <trellant/io/errors.h>

#include <system_error>
#include <utility>

namespace trellant {

namespace {

struct Describe {
    std::string operator()(const OMFIOError::OutOfBounds& fault) const {
        return "Read out of bounds (offset=" + std::to_string(fault.offset) +
               ", length=" + std::to_string(fault.length) +
               ", fileSize=" + std::to_string(fault.fileSize) + ").";
    }
    std::string operator()(const OMFIOError::ShortRead& fault) const {
        return "Short read (expected " + std::to_string(fault.expected) + " bytes, got " +
               std::to_string(fault.got) + ").";
    }
    std::string operator()(const OMFIOError::Malformed& fault) const {
        return "Malformed OMF/Bento file: " + fault.text;
    }
    std::string operator()(const OMFIOError::Unsupported& fault) const {
        return "Unsupported OMF/Bento feature: " + fault.text;
    }
};

/// `path` for a person: valid text, and without the zero byte that would end what() early.
/// One line of valid UTF-8: a message must not end at a NUL, nor a line feed in a path begin a line
/// that a host takes for something else.
std::string shownPath(const std::string& path) {
    constexpr const char* replacement = "\xEF\xBF\xBD";
    std::string shown;
    for (const char byte : madeValidUTF8(path)) {
        const auto code = static_cast<unsigned char>(byte);
        if (code < 0x20 || code == 0x7F) {
            shown += replacement;
        } else {
            shown += byte;
        }
    }
    return shown;
}

}  // namespace

OMFIOError::OMFIOError(Fault fault)
    : fault_(std::move(fault)), description_(std::visit(Describe{}, fault_)) {}

OMFIOError OMFIOError::malformed(std::string text) {
    return OMFIOError(Malformed{std::move(text)});
}

OMFIOError OMFIOError::unsupported(std::string text) {
    return OMFIOError(Unsupported{std::move(text)});
}

FileSystemError::FileSystemError(const std::string& action, const std::string& path,
                                 int errorNumber)
    : errorNumber_(errorNumber),
      description_("cannot " + action + " \"" + shownPath(path) +
                   "\": " + std::generic_category().message(errorNumber)) {}

}  // namespace trellant
