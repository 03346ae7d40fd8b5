// SPDX-License-Identifier: Apache-2.0
// Shards of a few rows, and what a catalogue answers as lines of text.
#pragma once

#include <trellant/catalogue/catalogue.h>
#include <trellant/scan/row.h>

#include <gmock/gmock.h>

#include <string>
#include <trellant_testing/byte_writer.h>
#include <trellant_testing/temporary_directory.h>
#include <vector>

namespace trellant::testing {

/// A digest whose digits are all this one.
inline std::string digestOf(char digit) {
    return std::string(64, digit);
}

/// A file that plays one embedded source of 100 bytes.
inline scan::ScanRow rowOf(const std::string& path, char samples = 'a') {
    scan::ScanRow row;
    row.path = path;
    row.size = 1'000;
    row.modified = "2026-01-01T00:00:00.000000000Z";
    row.program = "1.0.0";
    row.sha256 = digestOf(samples);
    row.scanned = "2026-01-02T00:00:00.000000000Z";
    row.compositions = {{.object = 1, .name = "Reel 1", .read = true}};
    row.sources = {{.id = "e",
                    .name = "Kick Drum",
                    .state = "embedded",
                    .clips = 1,
                    .sampleRate = 48'000,
                    .sampleRateExact = "48000",
                    .bitDepth = 24,
                    .channels = 1,
                    .sampleDigest = digestOf(samples),
                    .sampleBytes = 100}};
    return row;
}

class CatalogueTest : public ::testing::Test {
  protected:
    std::string shard(const std::vector<scan::ScanRow>& rows) const {
        std::string text;
        for (const scan::ScanRow& row : rows) {
            text += rowLine(row);
        }
        return writeFile(folder_.file("shard.ndjson"), bytesOf(text));
    }
    catalogue::BuildTotals add(const std::vector<scan::ScanRow>& rows) const {
        return catalogue::addShard(catalogue_, shard(rows), {});
    }
    /// Each row as "a|b|c".
    [[nodiscard]] std::vector<std::string> asked(const catalogue::Asking& asking) const {
        std::vector<std::string> lines;
        catalogue::ask(
            catalogue_, asking, [](const std::vector<std::string>&) {},
            [&lines](const std::vector<catalogue::Value>& values) {
                std::string line;
                for (const catalogue::Value& value : values) {
                    line += &value == values.data() ? "" : "|";
                    line += value.kind == catalogue::Value::Kind::integer
                                ? std::to_string(value.integer)
                            : value.kind == catalogue::Value::Kind::number
                                ? std::to_string(value.number)
                                : value.text;
                }
                lines.push_back(line);
            },
            {});
        return lines;
    }
    [[nodiscard]] std::vector<std::string> asked(const std::string& sql) const {
        return asked(catalogue::Asking{.sql = sql});
    }
    [[nodiscard]] std::vector<std::string> question(const std::string& name,
                                                    std::optional<std::string> term = {}) const {
        return asked(
            {.sql = std::string(catalogue::questionNamed(name)->sql), .term = std::move(term)});
    }

    TemporaryDirectory folder_;
    std::string catalogue_ = folder_.file("archive.sqlite");
};

}  // namespace trellant::testing
