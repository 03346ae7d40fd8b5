// SPDX-License-Identifier: Apache-2.0
// A hand-off as one document for a browser: the timeline to look at, with the tables behind it. The
// document needs no network, no other file and no script to be read.
#pragma once

#include <trellant/handoff/hand_off.h>
#include <trellant/json/json_writer.h>
#include <trellant/page/page_sound.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace trellant {
namespace [[gnu::visibility("default")]] page {

struct PageRequest {
    /// Must outlive the call; its timeline passes validation.
    const HandOff& handOff;
    /// What a person calls the file; any bytes.
    std::string file{};
    /// Of the file.
    std::uint64_t bytes = 0;
    /// Of the file, in hexadecimal; empty where it is not known.
    std::string sha256{};
    /// The folders that missing audio was looked for in, as a person named them.
    std::vector<std::string> searchedFolders{};
    /// Of the same hand-off; null: nothing was listened to. Must outlive the call.
    const PageSound* sound = nullptr;
    /// For each essence how the page's links name its whole audio file, a relative reference as a
    /// URL has it; empty where there is none. All are absent when the list is empty.
    std::vector<std::string> fullFiles{};
};

/// Writes the document, in UTF-8 and in the language of the process (localization.h). The same
/// request gives the same bytes. Texts of the hand-off are shown as texts and never become markup;
/// a name of more than 200 bytes is cut. Throws what `sink` throws.
void writePage(const PageRequest& request, JsonSink& sink);

/// A page among others, as texts for people in the language of the process.
struct IndexEntry {
    /// What a person calls the file; any bytes.
    std::string file{};
    /// The page's name, in the folder of the index; empty where the file could not be read.
    std::string page{};
    /// Why it could not be read.
    std::string failure{};
    std::string composition{};
    std::string start{};
    std::string length{};
    std::size_t tracks = 0;
    std::size_t clips = 0;
    std::string audioFiles{};
    std::string losses{};
};

/// What the index says of a page that bears the name `page`.
[[nodiscard]] IndexEntry indexEntry(const PageRequest& request, std::string page);

/// Writes the document that leads to the pages: a row for each file, as `trellant info` says it.
/// Throws what `sink` throws.
void writeIndex(const std::vector<IndexEntry>& entries, JsonSink& sink);

}  // namespace page
}  // namespace trellant
