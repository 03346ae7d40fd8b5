// SPDX-License-Identifier: Apache-2.0
// `trellant page`: hand-offs as documents for a browser.
#include "page/page.h"

#include "check/named_profile.h"
#include "extract/target_folder.h"
#include "page/page_language.h"
#include "page/page_writer.h"
#include "terminal/deliver.h"

#include <trellant/base/printable_path.h>
#include <trellant/base/text.h>
#include <trellant/extraction/extraction.h>

#include <exception>
#include <filesystem>
#include <optional>
#include <set>
#include <system_error>

namespace trellant::cli {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view indexName = "index.html";

/// Names of the pages, in the order of the files: files of one name get numbers, and none is the
/// index.
std::vector<std::string> pageNames(const std::vector<std::string>& files) {
    // Leaves room in 255 bytes for a number and ".html".
    constexpr std::size_t longestStem = 230;
    std::set<std::string> taken{"index"};
    std::vector<std::string> names;
    for (const std::string& file : files) {
        const std::string wanted = fs::path(file).stem().native().substr(0, longestStem);
        std::string name = wanted.empty() ? "page" : wanted;
        // Names that differ in case only are one on some file systems.
        for (int number = 2; !taken.insert(lowerCased(name)).second; ++number) {
            name = wanted + "_" + std::to_string(number);
        }
        names.push_back(name + ".html");
    }
    return names;
}

/// Why a folder that is named cannot be meant; absent when all can.
std::optional<std::string> wrongFolder(const PageCall& call) {
    std::error_code ignored;
    for (const std::string& folder : call.mediaFolders) {
        if (!fs::is_directory(folder, ignored)) {
            return "there is no folder " + printablePath(folder) + " to look for audio files in";
        }
    }
    if (call.extractedFolder && !fs::is_directory(*call.extractedFolder, ignored)) {
        return "there is no folder " + printablePath(*call.extractedFolder) + " to link to";
    }
    return std::nullopt;
}

ExitStatus writeOne(const PageCall& call, const check::Profile& profile, Console& console,
                    const StopToken& stop) {
    const Destination destination{.path = call.output, .force = call.force};
    if (!mayDeliver(destination, call.files, console)) {
        return ExitStatus::wrongUse;
    }
    return writePageOf(call.files.front(), call.output, call, profile, console, stop).status;
}

bool mayWriteAll(const PageCall& call, const std::string& folder,
                 const std::vector<std::string>& names, Console& console) {
    for (const std::string& name : names) {
        if (!mayDeliver({.path = (fs::path(folder) / name).native(), .force = call.force},
                        call.files, console)) {
            return false;
        }
    }
    return true;
}

ExitStatus writeSeveral(const PageCall& call, const check::Profile& profile, Console& console,
                        const StopToken& stop) {
    std::error_code ignored;
    if (call.output == "-" ||
        (fs::exists(call.output, ignored) && !fs::is_directory(call.output, ignored))) {
        console.error("several pages need a folder: name one with -o");
        return ExitStatus::wrongUse;
    }
    const TargetFolder folder(call.output);
    std::vector<std::string> names = pageNames(call.files);
    names.emplace_back(indexName);
    if (!mayWriteAll(call, call.output, names, console)) {
        return ExitStatus::wrongUse;
    }
    ExitStatus status = ExitStatus::done;
    std::vector<page::IndexEntry> entries;
    for (std::size_t i = 0; i < call.files.size(); ++i) {
        const std::string path = (fs::path(call.output) / names[i]).native();
        PageOutcome outcome = writePageOf(call.files[i], path, call, profile, console, stop);
        status = worse(status, outcome.status);
        entries.push_back(std::move(outcome.entry));
        if (stop.stop_requested()) {
            return ExitStatus::fileFailed;
        }
    }
    Delivery delivery({.path = (fs::path(call.output) / indexName).native(), .force = call.force},
                      console);
    page::writeIndex(entries, delivery);
    return delivery.finish() ? status : ExitStatus::fileFailed;
}

}  // namespace

ExitStatus runPage(const PageCall& call, Console& console, const StopToken& stop) {
    if (call.output.empty()) {
        console.error("-o needs the name of the page, or of a folder for several pages");
        return ExitStatus::wrongUse;
    }
    if (!call.noAudio && !installedWaveConverter()) {
        console.error(
            "the program trellant-wav, which reads audio files, is missing. It belongs to this "
            "one; please install Trellant again");
        return ExitStatus::fileFailed;
    }
    if (const auto message = wrongFolder(call)) {
        console.error(*message);
        return ExitStatus::wrongUse;
    }
    speak(call.language);
    try {
        const check::Profile profile = namedProfile(call.profile);
        return call.files.size() == 1 ? writeOne(call, profile, console, stop)
                                      : writeSeveral(call, profile, console, stop);
    } catch (const check::ProfileError& error) {
        console.error(error.what());
        return ExitStatus::wrongUse;
    } catch (const OutputClosed&) {
        throw;
    } catch (const std::exception& error) {
        console.endBar();
        console.error(std::string("cannot write to ") + printablePath(call.output) + ": " +
                      error.what());
        return ExitStatus::fileFailed;
    }
}

}  // namespace trellant::cli
