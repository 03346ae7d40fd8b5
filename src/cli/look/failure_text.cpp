// SPDX-License-Identifier: Apache-2.0
#include "failure_text.h"

#include "dump/dump_file_kind.h"
#include "terminal/pasted_word.h"

#include <trellant/base/printable_path.h>
#include <trellant/base/text.h>
#include <trellant/client/errors.h>
#include <trellant/io/random_access_file.h>
#include <trellant/salvage/sound_search.h>

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string_view>
#include <system_error>
#include <variant>

namespace trellant::cli {

namespace {

constexpr std::string_view workerPrefix = "trellant-omf: ";
constexpr std::string_view systemPrefix = "unexpected failure: ";
/// How the reader begins what it says of a file that has no container in it, and of one that is
/// shorter than the end of a container.
constexpr std::string_view noContainer = "Malformed OMF/Bento file: Bento footer signature";
constexpr std::string_view tooSmall = "Malformed OMF/Bento file: file too small";
/// And of a container that makes no sense.
constexpr std::string_view malformed = "Malformed OMF/Bento file: ";
/// How it says that the container's object model is the older one.
constexpr std::string_view olderModel = "OMFI:OOBJ:ObjClass";

std::optional<std::string> looksLike(const std::string& path) {
    try {
        return fileKind(RandomAccessFile(path));
    } catch (const std::exception&) {
        return std::nullopt;
    }
}

/// What the file is instead, and what to do.
std::string noContainerText(const std::string& path) {
    const auto kind = looksLike(path);
    if (kind && kind->find(frontOfFile) != std::string::npos) {
        return "this is " + *kind;
    }
    return "this is no OMF file that can be read" +
           (kind ? ", it looks like " + *kind : std::string());
}

/// What to do where sounds lie inside a file that cannot be read; empty where none does.
std::string salvageAdvice(const std::string& path) {
    // The first sound lies near the front; a whole search would cost as much as a copy.
    constexpr std::uint64_t searchedBytes = 67'108'864;
    try {
        const RandomAccessFile file(path);
        salvage::SoundSearch search(file, nullptr, {}, searchedBytes);
        const auto sound = search.next();
        return sound && sound->ranges.front().offset != 0
                   ? ". There is audio in it: trellant extract " + pastedFileName(path) +
                         " --to FOLDER --salvage takes it out"
                   : std::string();
    } catch (const std::exception&) {
        return {};
    }
}

/// The worker's own last line, without its name.
std::string lastWords(const std::string& logLines) {
    const std::size_t at = logLines.rfind(workerPrefix);
    return at == std::string::npos ? logLines : logLines.substr(at + workerPrefix.size());
}

std::string ofWorker(const std::string& path, const std::string& logLines) {
    std::string words = lastWords(logLines);
    if (words.starts_with(systemPrefix)) {
        return words.substr(systemPrefix.size());
    }
    if (words.starts_with(noContainer) || words.starts_with(tooSmall)) {
        return noContainerText(path) + " (" + words + ")" + salvageAdvice(path);
    }
    if (words.find(olderModel) != std::string::npos) {
        return "this is an OMF 1.x file: export the session as OMF 2 to read it (" + words + ")";
    }
    if (words.starts_with(malformed)) {
        return "the file is damaged: copy or export it again (" + words + ")" + salvageAdvice(path);
    }
    return words;
}

/// Standard input, a pipe, a socket or a device: nothing that can be read twice.
bool isStream(const std::string& file) {
    std::error_code ignored;
    const std::filesystem::file_status status = std::filesystem::status(file, ignored);
    return (file == "-" && !std::filesystem::exists(status)) || std::filesystem::is_fifo(status) ||
           std::filesystem::is_socket(status) || std::filesystem::is_character_file(status);
}

struct Explain {
    const std::string& path;

    std::string operator()(const AAFWorkerClientError::LaunchFailed& fault) const {
        if (!isValidUTF8(path)) {
            return "the file's name is not UTF-8. Rename the file or its folder and try again";
        }
        return "the program trellant-omf could not be started: " + fault.reason;
    }
    std::string operator()(const AAFWorkerClientError::NonZeroExit& fault) const {
        if (fault.logLines.empty()) {
            return "reading ended unexpectedly (trellant-omf: " + std::to_string(fault.status) +
                   "). Please report this file as a fault";
        }
        return ofWorker(path, fault.logLines);
    }
    std::string operator()(const AAFWorkerClientError::InvalidResponse& fault) const {
        return "trellant-omf gave no usable answer: " + fault.reason;
    }
    std::string operator()(const AAFWorkerClientError::HelperMissing& fault) const {
        std::string text = "the program trellant-omf is missing";
        for (const std::filesystem::path& place : fault.searched) {
            text += &place == &fault.searched.front() ? ": it is neither " : " nor ";
            text += printablePath(place.native());
        }
        return text + ". It belongs beside this one; please install Trellant again";
    }
};

}  // namespace

std::string failureText(const std::string& file, const std::exception& error) {
    if (const auto* const failed = dynamic_cast<const AAFWorkerClientError*>(&error)) {
        return std::visit(Explain{file}, failed->fault());
    }
    if (dynamic_cast<const AAFCancellationError*>(&error) != nullptr) {
        return "cancelled";
    }
    return error.what();
}

bool isOlderModel(const std::exception& error) {
    const auto* const failed = dynamic_cast<const AAFWorkerClientError*>(&error);
    const auto* const exit = failed == nullptr
                                 ? nullptr
                                 : std::get_if<AAFWorkerClientError::NonZeroExit>(&failed->fault());
    return exit != nullptr && exit->logLines.find(olderModel) != std::string::npos;
}

std::optional<std::string> streamFailure(const std::string& file) {
    if (!isStream(file)) {
        return std::nullopt;
    }
    return "an OMF file is read back and forth, which a pipe or a device cannot do: save it, and "
           "name the file";
}

}  // namespace trellant::cli
