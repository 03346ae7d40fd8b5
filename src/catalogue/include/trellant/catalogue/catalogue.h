// SPDX-License-Identifier: Apache-2.0
// A catalogue: the rows of scans in one SQLite file, to be asked. Its tables are described in
// docs/archives.md. It can be made anew from the shards at any time.
#pragma once

#include <trellant/base/cancellation.h>

#include <cstdint>
#include <exception>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace [[gnu::visibility("default")]] trellant {
namespace catalogue {

/// The form of the tables, `user_version` of the file.
inline constexpr int schemaVersion = 2;

/// What SQLite, a catalogue or a shard refuses; what() is one line for people.
class CatalogueError final : public std::exception {
  public:
    explicit CatalogueError(std::string text) : text_(std::move(text)) {}
    [[nodiscard]] const char* what() const noexcept override { return text_.c_str(); }

  private:
    std::string text_;
};

struct BuildTotals {
    /// Lines of the shard, and those of them that changed the catalogue.
    std::uint64_t rows = 0;
    std::uint64_t changed = 0;
};

/// When what is looked up by its value gets its indexes, where a catalogue has none yet.
enum class Indexes {
    now,
    /// By makeIndexes: quicker when several shards become a catalogue.
    later
};

/// Takes the rows of a shard into the catalogue, which is made where there is none, in one
/// transaction: all of them are there afterwards, or none. Of rows of one path the one that was
/// scanned last counts, in whatever order they come, so that the same shard again changes nothing.
/// A torn last line of the shard is passed over. Throws CatalogueError, and AAFCancellationError
/// after a stop; the catalogue is then as it was.
[[nodiscard]] BuildTotals addShard(const std::string& catalogue, const std::string& shard,
                                   const StopToken& stop, Indexes indexes = Indexes::now);

/// Makes the indexes that are missing; without them questions take longer and their answers are the
/// same. Throws as addShard does.
void makeIndexes(const std::string& catalogue, const StopToken& stop);

/// A question that is ready to be asked.
struct Question {
    /// "missing-media".
    std::string_view name;
    /// What it tells, in a few words.
    std::string_view meaning;
    /// What it is asked with; empty: nothing.
    std::string_view term;
    std::string_view sql;
};

[[nodiscard]] std::span<const Question> questions();
/// Null where there is none of that name.
[[nodiscard]] const Question* questionNamed(std::string_view name);

/// A value of an answer: nothing, a whole number, another number or a text (bytes as hexadecimal).
struct Value {
    enum class Kind { nothing, integer, number, text };
    Kind kind = Kind::nothing;
    std::int64_t integer = 0;
    double number = 0;
    std::string text{};
};

struct Asking {
    std::string sql{};
    /// What ?1 stands for; absent: nothing.
    std::optional<std::string> term{};
    /// Rows at most; 0: all.
    std::uint64_t limit = 0;
};

/// Asks a catalogue and writes nothing to it, whatever the text says: what would write, attach
/// another file or set anything is refused. `columns` is called once with their names, then `row`
/// with each row; what they throw ends the asking. Throws CatalogueError, and AAFCancellationError
/// after a stop. True when there were more rows than the limit.
bool ask(const std::string& catalogue, const Asking& asking,
         const std::function<void(const std::vector<std::string>&)>& columns,
         const std::function<void(const std::vector<Value>&)>& row, const StopToken& stop);

}  // namespace catalogue
}  // namespace trellant
