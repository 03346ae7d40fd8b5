// SPDX-License-Identifier: Apache-2.0
#include "database.h"

#include <trellant/base/printable_text.h>
#include <trellant/catalogue/catalogue.h>
#include <trellant/client/errors.h>

#include <limits>
#include <sys/stat.h>

namespace trellant::catalogue {

namespace {

/// Steps of SQLite's machine between two looks at the stop.
constexpr int stepsBetweenLooks = 10'000;
constexpr int waitMilliseconds = 10'000;
constexpr std::size_t longestMessage = 1'000;

int isStopped(void* stop) {
    return static_cast<const StopToken*>(stop)->stop_requested() ? 1 : 0;
}

}  // namespace

Database::Database(const std::string& path, Use use, const StopToken& stop) : stop_(stop) {
    struct stat status {};
    if (::stat(path.c_str(), &status) == 0 && !S_ISREG(status.st_mode)) {
        // SQLite would wait for whoever writes into a pipe.
        throw CatalogueError("it is no regular file");
    }
    sqlite3* opened = nullptr;
    const int flags =
        use == Use::reading ? SQLITE_OPEN_READONLY : SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE;
    // A connection is used by one thread.
    const int result =
        ::sqlite3_open_v2(path.c_str(), &opened, flags | SQLITE_OPEN_NOMUTEX, nullptr);
    handle_.reset(opened);
    if (result != SQLITE_OK) {
        fail();
    }
    ::sqlite3_busy_timeout(opened, waitMilliseconds);
    ::sqlite3_progress_handler(opened, stepsBetweenLooks, isStopped,
                               const_cast<StopToken*>(&stop_));
}

void Database::run(const std::string& sql) const {
    if (::sqlite3_exec(handle_.get(), sql.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK) {
        fail();
    }
}

void Database::fail() const {
    if (stop_.stop_requested()) {
        throw AAFCancellationError();
    }
    throw CatalogueError(handle_ ? printableText(::sqlite3_errmsg(handle_.get()), longestMessage)
                                 : std::string("there is no memory left"));
}

Statement::Statement(const Database& database, std::string_view sql) : database_(database) {
    constexpr std::size_t longestStatement = 1'000'000;
    if (sql.size() > longestStatement) {
        throw CatalogueError("the statement is too long");
    }
    sqlite3_stmt* made = nullptr;
    const char* rest = nullptr;
    const int result = ::sqlite3_prepare_v2(database.get(), sql.data(),
                                            static_cast<int>(sql.size()), &made, &rest);
    handle_.reset(made);
    check(result);
    const std::string_view more = sql.substr(static_cast<std::size_t>(rest - sql.data()));
    if (!handle_ || more.find_first_not_of(" \t\r\n;") != std::string_view::npos) {
        throw CatalogueError("one statement is wanted, no more and no less");
    }
}

bool Statement::step() {
    const int result = ::sqlite3_step(handle_.get());
    if (result != SQLITE_ROW && result != SQLITE_DONE) {
        database_.fail();
    }
    return result == SQLITE_ROW;
}

void Statement::reset() noexcept {
    ::sqlite3_reset(handle_.get());
}

void Statement::bind(int position, std::int64_t value) {
    check(::sqlite3_bind_int64(handle_.get(), position, value));
}

void Statement::bind(int position, double value) {
    check(::sqlite3_bind_double(handle_.get(), position, value));
}

void Statement::bind(int position, std::string_view value) {
    check(::sqlite3_bind_text64(handle_.get(), position, value.data(), value.size(),
                                SQLITE_TRANSIENT, SQLITE_UTF8));
}

void Statement::bind(int position, const std::vector<unsigned char>& bytes) {
    check(::sqlite3_bind_blob64(handle_.get(), position, bytes.data(), bytes.size(),
                                SQLITE_TRANSIENT));
}

void Statement::bindNothing(int position) {
    check(::sqlite3_bind_null(handle_.get(), position));
}

void Statement::check(int result) const {
    if (result != SQLITE_OK) {
        database_.fail();
    }
}

}  // namespace trellant::catalogue
