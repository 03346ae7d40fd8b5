// SPDX-License-Identifier: Apache-2.0
// SQLite's connections and statements, closed by themselves, their errors thrown.
#pragma once

#include <trellant/base/cancellation.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <sqlite3.h>
#include <string>
#include <string_view>
#include <vector>

namespace trellant::catalogue {

class Database {
  public:
    enum class Use { reading, writing };

    /// Throws CatalogueError. A `stop` interrupts whatever runs.
    Database(const std::string& path, Use use, const StopToken& stop);

    [[nodiscard]] sqlite3* get() const noexcept { return handle_.get(); }
    /// Statements without results. Throws CatalogueError, and AAFCancellationError after a stop.
    void run(const std::string& sql) const;
    /// Throws what happened.
    [[noreturn]] void fail() const;

  private:
    struct Close {
        void operator()(sqlite3* handle) const noexcept { ::sqlite3_close_v2(handle); }
    };

    const StopToken& stop_;
    std::unique_ptr<sqlite3, Close> handle_;
};

class Statement {
  public:
    /// The first statement of `sql`. Throws CatalogueError, also where there is none or more than
    /// one.
    Statement(const Database& database, std::string_view sql);

    /// True with a row, false at the end. Throws as Database::run does.
    [[nodiscard]] bool step();
    /// Runs it to its end with these values, the first one being ?1, and makes it ready again.
    template <class... Values>
    void run(const Values&... values) {
        bindAll(values...);
        while (step()) {
        }
        reset();
    }
    template <class... Values>
    void bindAll(const Values&... values) {
        int position = 0;
        (bind(++position, values), ...);
    }
    void reset() noexcept;

    void bind(int position, std::int64_t value);
    void bind(int position, double value);
    void bind(int position, bool value) { bind(position, std::int64_t{value ? 1 : 0}); }
    void bind(int position, std::string_view value);
    void bind(int position, const std::string& value) { bind(position, std::string_view(value)); }
    void bind(int position, const std::vector<unsigned char>& bytes);
    template <class T>
    void bind(int position, const std::optional<T>& value) {
        if (value) {
            bind(position, *value);
        } else {
            bindNothing(position);
        }
    }
    [[nodiscard]] sqlite3_stmt* get() const noexcept { return handle_.get(); }

  private:
    struct Finalize {
        void operator()(sqlite3_stmt* handle) const noexcept { ::sqlite3_finalize(handle); }
    };

    void bindNothing(int position);
    void check(int result) const;

    const Database& database_;
    std::unique_ptr<sqlite3_stmt, Finalize> handle_;
};

}  // namespace trellant::catalogue
