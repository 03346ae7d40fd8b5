// SPDX-License-Identifier: Apache-2.0
#include "database.h"
#include "schema.h"

#include <trellant/base/text.h>
#include <trellant/catalogue/catalogue.h>

#include <algorithm>
#include <array>

namespace trellant::catalogue {

namespace {

/// What is equal is found by indexes that hold all that is counted; only then are tables looked at.
constexpr std::array readyQuestions{
    Question{"unreadable", "files that could not be read, and why", "",
             "SELECT path, status, message FROM files WHERE status <> 'ok' ORDER BY id"},
    Question{"missing-media", "audio files that were not found", "",
             "SELECT f.path AS file, s.name, s.state, s.recorded_path FROM sources s "
             "JOIN files f ON f.id = s.file WHERE s.state NOT IN ('embedded', 'located')"},
    Question{
        "duplicate-files", "files of equal content", "",
        "SELECT lower(hex(g.sha256)) AS sha256, g.files, g.size, (SELECT min(path) FROM files f "
        "WHERE f.sha256 = g.sha256) AS one_of_them FROM (SELECT sha256, count(*) AS files, "
        "max(size) AS size FROM files WHERE sha256 IS NOT NULL GROUP BY sha256 "
        "HAVING count(*) > 1) g"},
    Question{"duplicate-audio", "equal audio in several places", "",
             "SELECT lower(hex(g.digest)) AS samples, g.sources, (SELECT count(DISTINCT file) "
             "FROM sources s WHERE s.sample_digest = g.digest) AS files, g.sample_bytes, "
             "(SELECT min(name) FROM sources s WHERE s.sample_digest = g.digest) AS one_of_them "
             "FROM (SELECT sample_digest AS digest, count(*) AS sources, "
             "max(sample_bytes) AS sample_bytes FROM sources WHERE sample_digest IS NOT NULL "
             "GROUP BY sample_digest HAVING count(*) > 1) g"},
    Question{"programs", "files by the program that saved them last", "",
             "SELECT application, count(*) AS files FROM files GROUP BY application "
             "ORDER BY files DESC"},
    Question{"rates", "audio files by sample rate and bits", "",
             "SELECT sample_rate, bit_depth, count(*) AS sources FROM sources "
             "GROUP BY sample_rate, bit_depth ORDER BY sources DESC"},
    Question{"plays", "compositions that play an audio file or clip of this name", "NAME",
             "SELECT f.path AS file, c.name AS composition, d.kind, d.name FROM names n "
             "JOIN named d ON d.id = n.rowid JOIN files f ON f.id = d.file "
             "LEFT JOIN compositions c ON c.file = f.id AND c.is_read "
             "WHERE names MATCH '\"' || replace(?1, '\"', '\"\"') || '\"' "
             "AND d.kind IN ('source', 'clip')"},
    Question{"saved", "bytes saved by keeping equal audio once", "",
             "SELECT sources, different, bytes, saved FROM equal_audio UNION ALL "
             "SELECT sum(n), count(*), sum(n * b), sum((n - 1) * b) FROM (SELECT count(*) AS n, "
             "max(sample_bytes) AS b FROM sources WHERE sample_digest IS NOT NULL AND NOT EXISTS "
             "(SELECT 1 FROM equal_audio) GROUP BY sample_digest) "
             "HAVING NOT EXISTS (SELECT 1 FROM equal_audio)"},
};

/// Reading only: no other file, no settings, no code from elsewhere.
int allowed(void* /*nothing*/, int action, const char* first, const char* second,
            const char* /*database*/, const char* /*trigger*/) {
    switch (action) {
        case SQLITE_SELECT:
        case SQLITE_READ:
        case SQLITE_RECURSIVE:
            return SQLITE_OK;
        case SQLITE_FUNCTION:
            return second != nullptr && std::string_view(second) == "load_extension" ? SQLITE_DENY
                                                                                     : SQLITE_OK;
        case SQLITE_PRAGMA:
            // What full-text search asks for itself.
            return first != nullptr && std::string_view(first) == "data_version" ? SQLITE_OK
                                                                                 : SQLITE_DENY;
        default:
            return SQLITE_DENY;
    }
}

Value valueOf(sqlite3_stmt* statement, int column) {
    switch (::sqlite3_column_type(statement, column)) {
        case SQLITE_INTEGER:
            return {.kind = Value::Kind::integer,
                    .integer = ::sqlite3_column_int64(statement, column)};
        case SQLITE_FLOAT:
            return {.kind = Value::Kind::number,
                    .number = ::sqlite3_column_double(statement, column)};
        case SQLITE_TEXT:
            return {.kind = Value::Kind::text,
                    .text = madeValidUTF8(std::string_view(
                        reinterpret_cast<const char*>(::sqlite3_column_text(statement, column)),
                        static_cast<std::size_t>(::sqlite3_column_bytes(statement, column))))};
        case SQLITE_BLOB: {
            constexpr std::string_view digits = "0123456789abcdef";
            const auto* const bytes =
                static_cast<const unsigned char*>(::sqlite3_column_blob(statement, column));
            Value value{.kind = Value::Kind::text};
            for (int at = 0; at < ::sqlite3_column_bytes(statement, column); ++at) {
                value.text += digits[bytes[at] >> 4U];
                value.text += digits[bytes[at] & 0xFU];
            }
            return value;
        }
        default:
            return {};
    }
}

}  // namespace

std::span<const Question> questions() {
    return readyQuestions;
}

const Question* questionNamed(std::string_view name) {
    const auto* const found =
        std::find_if(readyQuestions.begin(), readyQuestions.end(),
                     [name](const Question& question) { return question.name == name; });
    return found == readyQuestions.end() ? nullptr : found;
}

bool ask(const std::string& catalogue, const Asking& asking,
         const std::function<void(const std::vector<std::string>&)>& columns,
         const std::function<void(const std::vector<Value>&)>& row, const StopToken& stop) {
    const Database database(catalogue, Database::Use::reading, stop);
    Statement kind(database, "PRAGMA application_id");
    if (!kind.step() || ::sqlite3_column_int64(kind.get(), 0) != applicationNumber) {
        throw CatalogueError("it is no catalogue");
    }
    database.run("PRAGMA query_only = ON; PRAGMA trusted_schema = OFF");
    // The search prepares itself at its first use, by more than reading.
    Statement(database, "SELECT rowid FROM names LIMIT 0").reset();
    ::sqlite3_set_authorizer(database.get(), allowed, nullptr);
    Statement statement(database, asking.sql);
    if (asking.term) {
        statement.bind(1, *asking.term);
    }
    const int count = ::sqlite3_column_count(statement.get());
    std::vector<std::string> names;
    for (int column = 0; column < count; ++column) {
        const char* const name = ::sqlite3_column_name(statement.get(), column);
        names.emplace_back(name == nullptr ? "" : name);
    }
    columns(names);
    std::vector<Value> values(names.size());
    for (std::uint64_t rows = 0; statement.step(); ++rows) {
        if (asking.limit > 0 && rows == asking.limit) {
            return true;
        }
        for (int column = 0; column < count; ++column) {
            values[static_cast<std::size_t>(column)] = valueOf(statement.get(), column);
        }
        row(values);
    }
    return false;
}

}  // namespace trellant::catalogue
