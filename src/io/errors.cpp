// The texts of the errors, each made in one place.
#include <trellant/io/errors.h>
#include <trellant/io/text.h>

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
std::string shownPath(const std::string& path) {
    std::string shown = madeValidUTF8(path);
    for (std::size_t zero = shown.find('\0'); zero != std::string::npos;
         zero = shown.find('\0', zero)) {
        shown.replace(zero, 1, "\xEF\xBF\xBD");
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
