// SPDX-License-Identifier: Apache-2.0
#include "database.h"
#include "schema.h"

#include <trellant/base/file_descriptor.h>
#include <trellant/base/keyed_hash.h>
#include <trellant/base/system_error_text.h>
#include <trellant/catalogue/catalogue.h>
#include <trellant/client/errors.h>
#include <trellant/json/json_decode.h>
#include <trellant/scan/row.h>
#include <trellant/scan/shard_file.h>

#include <array>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <utility>

namespace trellant::catalogue {

namespace {

using scan::ScanRow;
using Bytes32 = std::optional<std::vector<unsigned char>>;

std::int64_t numberOf(const Database& database, std::string_view pragma) {
    Statement statement(database, pragma);
    return statement.step() ? ::sqlite3_column_int64(statement.get(), 0) : 0;
}

/// Makes the tables where there are none; refuses other databases and other versions. Within the
/// transaction of whoever calls.
void prepare(const Database& database) {
    const std::int64_t tables = numberOf(database, "SELECT count(*) FROM sqlite_schema");
    const std::int64_t version = numberOf(database, "PRAGMA user_version");
    if (tables == 0) {
        database.run(std::string(schemaText));
        database.run("PRAGMA user_version = " + std::to_string(schemaVersion));
        database.run("PRAGMA application_id = " + std::to_string(applicationNumber));
    } else if (numberOf(database, "PRAGMA application_id") != applicationNumber) {
        throw CatalogueError("it is a database of something else");
    } else if (version != schemaVersion) {
        throw CatalogueError("it is a catalogue of version " + std::to_string(version) +
                             ", and this program writes version " + std::to_string(schemaVersion) +
                             ": build it anew from the shards");
    }
}

/// The bytes of a digest in hexadecimal; absent for what is none.
Bytes32 digestBytes(const std::optional<std::string>& text) {
    constexpr std::size_t digits = 64;
    if (!text || text->size() != digits ||
        text->find_first_not_of("0123456789abcdef") != std::string::npos) {
        return std::nullopt;
    }
    const auto digit = [](char byte) { return byte <= '9' ? byte - '0' : byte - 'a' + 10; };
    std::vector<unsigned char> bytes;
    for (std::size_t at = 0; at < digits; at += 2) {
        bytes.push_back(
            static_cast<unsigned char>(digit((*text)[at]) * 16 + digit((*text)[at + 1])));
    }
    return bytes;
}

class RowTaker {
  public:
    explicit RowTaker(const Database& database)
        : firstName_(numberOf(database, "SELECT coalesce(max(id), 0) + 1 FROM named")),
          nextName_(firstName_),
          known_(database, "SELECT id, scanned FROM files WHERE path = ?1"),
          removals_{Statement(database, "DELETE FROM compositions WHERE file = ?1"),
                    Statement(database, "DELETE FROM sources WHERE file = ?1"),
                    Statement(database, "DELETE FROM losses WHERE file = ?1"),
                    Statement(database, "DELETE FROM findings WHERE file = ?1"),
                    Statement(database, "DELETE FROM named WHERE file = ?1"),
                    Statement(database, "DELETE FROM files WHERE id = ?1")},
          file_(database,
                "INSERT INTO files VALUES (NULL, ?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8, ?9, ?10, ?11, "
                "?12, ?13, ?14, ?15, ?16, ?17, ?18, ?19, ?20, ?21, ?22, ?23, ?24, ?25, ?26, ?27)"),
          composition_(database, "INSERT INTO compositions VALUES (NULL, ?1, ?2, ?3, ?4, ?5)"),
          source_(database,
                  "INSERT INTO sources VALUES (NULL, ?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8, ?9, ?10, "
                  "?11, ?12, ?13, ?14)"),
          loss_(database, "INSERT INTO losses VALUES (NULL, ?1, ?2, ?3, ?4, ?5)"),
          finding_(database, "INSERT INTO findings VALUES (NULL, ?1, ?2, ?3, ?4, ?5, ?6)"),
          forget_(database,
                  "INSERT INTO temp.removed SELECT id, name FROM named WHERE file = ?1 AND id < "
                  "?2"),
          name_(database, "INSERT INTO named VALUES (?1, ?2, ?3, ?4)"),
          database_(database) {}

    /// False when the catalogue has a row of that path that is as young.
    [[nodiscard]] bool take(const ScanRow& row) {
        known_.bindAll(row.path);
        std::optional<std::int64_t> replaced;
        if (known_.step()) {
            const auto* const scanned =
                reinterpret_cast<const char*>(::sqlite3_column_text(known_.get(), 1));
            const bool isYounger = scanned == nullptr || row.scanned > scanned;
            replaced = ::sqlite3_column_int64(known_.get(), 0);
            if (!isYounger) {
                known_.reset();
                return false;
            }
        }
        known_.reset();
        if (replaced) {
            forget_.run(*replaced, firstName_);
            for (Statement& removal : removals_) {
                removal.run(*replaced);
            }
        }
        add(row);
        return true;
    }

    /// Tells the search which names went and which came; once, after the last row.
    void end() const {
        database_.run(
            "INSERT INTO names(names, rowid, name) SELECT 'delete', id, name FROM temp.removed");
        database_.run("INSERT INTO names(rowid, name) SELECT id, name FROM named WHERE id >= " +
                      std::to_string(firstName_));
    }

  private:
    void add(const ScanRow& row) {
        const ScanRow::Application last =
            row.applications.empty() ? ScanRow::Application() : row.applications.back();
        const auto pronom = row.pronom.value_or(ScanRow::Pronom());
        const auto unlessEmpty = [](const std::string& text) {
            return text.empty() ? std::nullopt : std::optional(text);
        };
        file_.run(row.path, row.size, row.modified, row.program, rawValue(row.status), row.message,
                  unlessEmpty(pronom.id), unlessEmpty(pronom.basis), digestBytes(row.sha256),
                  row.containerVersion, row.omfVersion, row.byteOrder, last.company, last.product,
                  last.version, row.start, row.timecodeRate, row.editRate, row.lengthSeconds,
                  row.tracks, row.clips, row.unusedMedia, row.unusedBytes, row.changes, row.scanned,
                  row.seconds, row.peakMemory);
        id_ = ::sqlite3_last_insert_rowid(database_.get());
        addParts(row);
        addNames(row);
    }

    void addParts(const ScanRow& row) {
        for (const ScanRow::Composition& made : row.compositions) {
            composition_.run(id_, made.object, made.name, made.mobID, made.read);
        }
        for (const ScanRow::Source& source : row.sources) {
            source_.run(id_, source.name, source.mobID, source.state, source.clips,
                        source.sampleRate, source.codec, source.bitDepth, source.channels,
                        source.frames, digestBytes(source.sampleDigest), source.sampleBytes,
                        source.recordedPath, source.path);
        }
        for (const ScanRow::Loss& loss : row.losses) {
            loss_.run(id_, loss.kind, loss.effect, loss.count, loss.sentence);
        }
        if (row.check) {
            for (const ScanRow::Finding& finding : row.check->findings) {
                finding_.run(id_, row.check->profile, finding.rule, finding.severity, finding.count,
                             finding.sentence);
            }
        }
    }

    /// Each name once for each kind.
    void addNames(const ScanRow& row) {
        KeyedSet<std::string> given;
        const auto add = [this, &given](std::string_view kind, const std::string& name) {
            if (!name.empty() && given.insert(std::string(kind) + "\n" + name).second) {
                name_.run(nextName_++, id_, kind, name);
            }
        };
        add("file", row.path.substr(row.path.rfind('/') + 1));
        for (const ScanRow::Composition& made : row.compositions) {
            add("composition", made.name.value_or(""));
        }
        for (const ScanRow::Source& source : row.sources) {
            add("source", source.name);
        }
        for (const std::string& clip : row.clipNames) {
            add("clip", clip);
        }
    }

    /// Names from this one on are not known to the search yet. No number is used twice in a shard.
    std::int64_t firstName_;
    std::int64_t nextName_;
    Statement known_;
    std::array<Statement, 6> removals_;
    Statement file_;
    Statement composition_;
    Statement source_;
    Statement loss_;
    Statement finding_;
    Statement forget_;
    Statement name_;
    const Database& database_;
    std::int64_t id_ = 0;
};

ScanRow rowOf(std::string_view line, std::uint64_t number) {
    try {
        return scan::decodeRow(line);
    } catch (const JsonDecodingError& error) {
        throw CatalogueError("line " + std::to_string(number) +
                             " of the shard is no row: " + error.what());
    }
}

}  // namespace

BuildTotals addShard(const std::string& catalogue, const std::string& shard, const StopToken& stop,
                     Indexes indexes) {
    // Not waiting: what stands at a path may turn out to be a pipe.
    const FileDescriptor lines(::open(shard.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    struct stat status {};
    if (!lines.isOpen() || ::fstat(lines.number(), &status) != 0) {
        throw CatalogueError("the shard cannot be opened: " + systemErrorText(errno));
    }
    if (!S_ISREG(status.st_mode)) {
        throw CatalogueError("the shard is no regular file");
    }
    const Database database(catalogue, Database::Use::writing, stop);
    // What is not committed is gone with the connection.
    // Whoever else changes it has the tables' own rules; here, a row is never without its file.
    database.run("PRAGMA foreign_keys = OFF; PRAGMA cache_size = -65536; BEGIN IMMEDIATE");
    prepare(database);
    database.run("CREATE TEMP TABLE removed (id INTEGER PRIMARY KEY, name TEXT NOT NULL)");
    BuildTotals totals;
    {
        RowTaker taker(database);
        try {
            scan::eachRowLine(lines.number(), [&](std::string_view line, std::uint64_t /*end*/) {
                if (stop.stop_requested()) {
                    throw AAFCancellationError();
                }
                ++totals.rows;
                if (taker.take(rowOf(line, totals.rows))) {
                    ++totals.changed;
                }
            });
            taker.end();
        } catch (const scan::ShardError& error) {
            throw CatalogueError(std::string("the shard ") + error.what());
        }
    }
    if (totals.changed > 0) {
        database.run("DELETE FROM equal_audio");
    }
    if (indexes == Indexes::now) {
        database.run(std::string(indexText));
    }
    database.run("COMMIT");
    return totals;
}

void makeIndexes(const std::string& catalogue, const StopToken& stop) {
    const Database database(catalogue, Database::Use::writing, stop);
    database.run("PRAGMA cache_size = -65536; BEGIN IMMEDIATE");
    prepare(database);
    database.run(std::string(indexText));
    database.run("COMMIT");
}

}  // namespace trellant::catalogue
