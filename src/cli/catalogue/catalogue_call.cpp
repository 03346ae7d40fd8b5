// SPDX-License-Identifier: Apache-2.0
#include "answer_form.h"
#include "catalogue.h"
#include "terminal/counted_text.h"
#include "terminal/deliver.h"
#include "terminal/interrupts.h"
#include "terminal/shown_text.h"
#include "terminal/table.h"

#include <trellant/base/nearest_word.h>
#include <trellant/base/printable_path.h>
#include <trellant/base/printable_text.h>
#include <trellant/client/errors.h>

#include <algorithm>
#include <array>
#include <memory>
#include <string_view>
#include <utility>

namespace trellant::cli {

namespace {

using Form = CatalogueCall::Form;

/// All questions, a line each.
std::string questionScreen(const Console& console) {
    Table table{.columns = {{.title = "Question"}, {.title = "Tells", .mayShrink = true}},
                .rows = {}};
    for (const catalogue::Question& question : catalogue::questions()) {
        const std::string term = question.term.empty() ? "" : " " + std::string(question.term);
        table.rows.push_back({std::string(question.name) + term, std::string(question.meaning)});
    }
    return shownLines(aligned(std::move(table), console.outColumns(), console.outHasColour()));
}

std::string questionNames() {
    std::string text;
    for (const catalogue::Question& question : catalogue::questions()) {
        text += (text.empty() ? "" : ", ") + std::string(question.name);
    }
    return text;
}

/// What is to be asked, or why nothing can be.
struct Wish {
    catalogue::Asking asking{};
    std::string failure{};
};

Wish wishOf(const CatalogueCall& call) {
    Wish wish{.asking = {.limit = call.limit}};
    if (call.sql) {
        wish.asking.sql = *call.sql;
        wish.failure = call.rest.empty() ? "" : "--sql asks by itself: leave the question out";
        return wish;
    }
    const std::string name = call.rest.empty() ? "" : call.rest.front();
    const catalogue::Question* const question = catalogue::questionNamed(name);
    if (question == nullptr) {
        std::vector<std::string> names;
        for (const catalogue::Question& known : catalogue::questions()) {
            names.emplace_back(known.name);
        }
        const auto nearest = name.empty() ? std::nullopt : nearestWord(name, names);
        wish.failure = nearest ? "there is no question \"" + printableText(name) +
                                     "\"; did you mean \"" + *nearest + "\"?"
                               : "there is no question \"" + printableText(name) +
                                     "\"; there are " + questionNames();
        return wish;
    }
    const std::size_t wanted = question->term.empty() ? 1 : 2;
    if (call.rest.size() != wanted) {
        wish.failure = wanted == 1
                           ? std::string(question->name) + " is asked with nothing else"
                           : std::string(question->name) + " needs " + std::string(question->term);
        return wish;
    }
    wish.asking.sql = question->sql;
    if (wanted == 2) {
        wish.asking.term = call.rest.back();
    }
    return wish;
}

ExitStatus build(const CatalogueCall& call, Console& console, const StopToken& stop) {
    if (call.rest.empty()) {
        console.error("build needs the shards that scans have written");
        return ExitStatus::wrongUse;
    }
    ExitStatus status = ExitStatus::done;
    bool isThere = false;
    for (const std::string& shard : call.rest) {
        try {
            const catalogue::BuildTotals totals =
                catalogue::addShard(call.catalogue, shard, stop, catalogue::Indexes::later);
            isThere = true;
            console.note(printablePath(shard) + ": " + countedText(totals.rows) +
                         (totals.rows == 1 ? " row, " : " rows, ") + countedText(totals.changed) +
                         " of them new");
        } catch (const catalogue::CatalogueError& error) {
            console.error(printablePath(shard) + ": " + error.what());
            status = ExitStatus::fileFailed;
        }
    }
    if (isThere) {
        catalogue::makeIndexes(call.catalogue, stop);
    }
    return status;
}

std::unique_ptr<AnswerForm> formOf(const CatalogueCall& call, Delivery& delivery,
                                   const Console& console) {
    switch (call.form) {
        case Form::csv:
            return csvForm(delivery);
        case Form::json:
            return jsonForm(delivery);
        case Form::people:
            break;
    }
    const bool toConsole = call.destination.path == "-";
    return tableForm(delivery, toConsole ? console.outColumns() : Console::unlimitedColumns,
                     toConsole && console.outHasColour());
}

ExitStatus query(const CatalogueCall& call, Console& console, const StopToken& stop) {
    if (!call.sql && call.rest.empty()) {
        console.out(questionScreen(console));
        return ExitStatus::done;
    }
    const Wish wish = wishOf(call);
    if (!wish.failure.empty()) {
        console.error(wish.failure);
        return ExitStatus::wrongUse;
    }
    if (!mayDeliver(call.destination, {call.catalogue}, console)) {
        return ExitStatus::wrongUse;
    }
    Delivery delivery(call.destination, console);
    const auto form = formOf(call, delivery, console);
    const bool isCut = catalogue::ask(
        call.catalogue, wish.asking,
        [&form](const std::vector<std::string>& columns) { form->begin(columns); },
        [&form](const std::vector<catalogue::Value>& row) { form->row(row); }, stop);
    form->end();
    if (isCut) {
        console.note("only the first " + countedText(call.limit) +
                     " rows; --limit shows more, 0 all");
    }
    return delivery.finish() ? ExitStatus::done : ExitStatus::fileFailed;
}

struct Figure {
    std::string_view title;
    std::string_view sql;
};

/// Each gives a name and a number a row; bytes where the title says so.
constexpr std::array figures{
    Figure{"Files", "SELECT status, count(*) FROM files GROUP BY status ORDER BY 2 DESC"},
    Figure{"Bytes",
           "SELECT 'of files', sum(size) FROM files UNION ALL SELECT 'of audio in them', "
           "sum(sample_bytes) FROM sources UNION ALL SELECT 'saved by keeping equal audio "
           "once', saved FROM equal_audio"},
    Figure{"Audio files", "SELECT state, count(*) FROM sources GROUP BY state ORDER BY 2 DESC"},
    Figure{"Rates",
           "SELECT printf('%.10g Hz', sample_rate), count(*) FROM sources GROUP BY sample_rate "
           "ORDER BY 2 DESC LIMIT 5"},
    Figure{"Programs",
           "SELECT coalesce(application, 'not named'), count(*) FROM files "
           "GROUP BY application ORDER BY 2 DESC LIMIT 5"},
    Figure{"Losses", "SELECT kind, sum(count) FROM losses GROUP BY kind ORDER BY 2 DESC LIMIT 5"},
};

ExitStatus stats(const CatalogueCall& call, Console& console, const StopToken& stop) {
    if (!call.rest.empty() || call.sql) {
        console.error("stats is asked with nothing else");
        return ExitStatus::wrongUse;
    }
    Table table{.columns = {{.title = ""},
                            {.title = "", .mayShrink = true},
                            {.title = "", .align = Align::right}},
                .rows = {}};
    for (const Figure& figure : figures) {
        bool isFirst = true;
        catalogue::ask(
            call.catalogue, {.sql = std::string(figure.sql)},
            [](const std::vector<std::string>& /*columns*/) {},
            [&](const std::vector<catalogue::Value>& row) {
                const auto number =
                    static_cast<std::uint64_t>(std::max<std::int64_t>(row.at(1).integer, 0));
                table.rows.push_back(
                    {isFirst ? std::string(figure.title) : "", row.at(0).text,
                     figure.title == "Bytes" ? bytesText(number) : countedText(number)});
                isFirst = false;
            },
            stop);
    }
    console.out(
        shownLines(aligned(std::move(table), console.outColumns(), console.outHasColour())));
    return ExitStatus::done;
}

}  // namespace

ExitStatus runCatalogue(const CatalogueCall& call, Console& console, const StopToken& stop) {
    const Cancellable heeded;
    try {
        switch (call.what) {
            case CatalogueCall::What::build:
                return build(call, console, stop);
            case CatalogueCall::What::query:
                return query(call, console, stop);
            case CatalogueCall::What::stats:
                return stats(call, console, stop);
        }
    } catch (const catalogue::CatalogueError& error) {
        console.error(printablePath(call.catalogue) + ": " + error.what());
    } catch (const AAFCancellationError&) {
        console.error("cancelled");
    }
    return ExitStatus::fileFailed;
}

}  // namespace trellant::cli
