// SPDX-License-Identifier: Apache-2.0
#include "info.h"

#include "terminal/console.h"
#include "terminal/pasted_word.h"
#include "terminal/shown_text.h"

#include <trellant/base/printable_text.h>
#include <trellant/base/text.h>
#include <trellant/handoff/summary.h>
#include <trellant/handoff/timeline_text.h>
#include <trellant/json/json_writer.h>

#include <array>
#include <string_view>

namespace trellant::cli {

namespace {

constexpr std::size_t longestShownName = 200;

std::string shownName(const std::string& name) {
    return cutToCells(shownText(name), longestShownName);
}

std::string counted(std::size_t count, std::string_view one, std::string_view many) {
    return std::to_string(count) + " " + std::string(count == 1 ? one : many);
}

void appendPart(std::string& text, const std::string& part) {
    if (!text.empty()) {
        text += ", ";
    }
    text += part;
}

/// "2 embedded, 1 missing".
std::string statesText(const Summary& summary) {
    std::string text;
    for (const SourceState state :
         {SourceState::embedded, SourceState::located, SourceState::missing,
          SourceState::severalCandidates, SourceState::misfit}) {
        if (const std::size_t count = summary.inState(state); count != 0) {
            appendPart(text, std::to_string(count) + " " + std::string(stateText(state)));
        }
    }
    return text;
}

std::string ratesText(const Summary& summary) {
    std::string text;
    for (const auto& [rate, count] : summary.sampleRates) {
        appendPart(text, plainRate(rate) + " Hz (" + std::to_string(count) + ")");
    }
    return text;
}

std::string depthsText(const Summary& summary) {
    std::string text;
    for (const auto& [bits, count] : summary.bitDepths) {
        appendPart(text, (bits == 0 ? "not known" : std::to_string(bits) + " bits") + " (" +
                             std::to_string(count) + ")");
    }
    return text;
}

std::string lossesText(const Summary& summary) {
    if (summary.losses == 0) {
        return "nothing";
    }
    std::string text;
    if (summary.dropped != 0) {
        appendPart(text, std::to_string(summary.dropped) + " dropped");
    }
    if (summary.soundsDifferent != 0) {
        appendPart(text, std::to_string(summary.soundsDifferent) + " kept but sounding different");
    }
    return text + ", in " + counted(summary.lossPlaces, "place", "places");
}

class Screen {
  public:
    Screen(const HandOff& handOff, bool colour)
        : handOff_(handOff), timeline_(handOff.timeline), summary_(handOff), colour_(colour) {}

    std::string text(const std::string& file) {
        text_ = painted(shownText(file), Paint::bold, colour_) + "\n";
        addComposition();
        addClock();
        addContents();
        addAdvice(file);
        return std::move(text_);
    }

  private:
    void line(std::string_view label, std::string_view fact) {
        constexpr std::size_t labelWidth = 14;
        text_ += "  ";
        text_ += painted(label, Paint::dim, colour_);
        text_.append(labelWidth - label.size(), ' ');
        text_ += fact;
        text_ += '\n';
    }

    void addComposition() {
        line("Composition",
             timeline_.compositionName ? shownName(*timeline_.compositionName) : "(no name)");
        if (handOff_.compositions.size() < 2) {
            return;
        }
        for (const AAFWorkerExtensions::Composition& composition : handOff_.compositions) {
            if (!composition.isRead) {
                line("", "not read: " +
                             (composition.name ? shownName(*composition.name) : "(no name)") +
                             ", object " + std::to_string(composition.object));
            }
        }
    }

    void addClock() {
        line("Starts at", timeline_.clock.timelineZero.description() + "  " +
                              rateText(timeline_.clock.timecodeRate) +
                              (timeline_.hasNativeTimecode.value_or(false)
                                   ? ""
                                   : "  (assumed: the file has no timecode)"));
        if (timeline_.compositionLength) {
            line("Length", lengthText(timeline_, *timeline_.compositionLength) + "  (" +
                               decimalText(*timeline_.compositionLength) + " s)");
        } else {
            line("Length", "not known");
        }
        line("First sound", summary_.firstAudible ? timecodeText(timeline_, *summary_.firstAudible)
                                                  : "none: every clip is muted");
    }

    void addContents() {
        line("Tracks", std::to_string(summary_.tracks));
        line("Clips", std::to_string(summary_.clips));
        line("Audio files", std::to_string(summary_.sources) + ": " + statesText(summary_));
        line("Sample rates", ratesText(summary_));
        line("Bit depths", depthsText(summary_));
        line("Lost", lossesText(summary_));
        if (const std::size_t odd = handOff_.changes.size(); odd != 0) {
            line("Repaired",
                 counted(odd, "thing was", "things were") + " odd and set right (told above)");
        }
    }

    void addAdvice(const std::string& file) {
        if (const auto note = rateDisagreement(timeline_.clock)) {
            text_ += "  " + painted("Note", Paint::yellow, colour_) + ": " + *note + "\n";
        }
        if (summary_.losses != 0) {
            text_ += "  What was lost, and where: trellant list losses " +
                     shownText(pastedFileName(file)) + "\n";
        }
        if (summary_.inState(SourceState::missing) != 0) {
            text_ +=
                "  Audio files are missing: name the folder that holds them with --media FOLDER\n";
        }
        if (summary_.inState(SourceState::severalCandidates) != 0) {
            text_ += "  Several files bear one name: trellant extract lists them\n";
        }
        if (summary_.inState(SourceState::misfit) != 0) {
            text_ += "  Audio files do not fit what the clips need: trellant extract says why\n";
        }
    }

    const HandOff& handOff_;
    const AAFTimeline& timeline_;
    Summary summary_;
    bool colour_;
    std::string text_;
};

class Line {
  public:
    explicit Line(const HandOff& handOff)
        : handOff_(handOff), timeline_(handOff.timeline), summary_(handOff) {}

    std::string text(const std::string& file) {
        writer_.beginObject();
        text("file", isValidUTF8(file) ? file : printableText(file, file.size()));
        if (timeline_.compositionName) {
            text("composition", *timeline_.compositionName);
        }
        writeCompositions();
        writeTimes();
        writeCounts();
        writeChanges();
        writer_.endObject();
        writer_.flush();
        return std::move(sink_.text) + "\n";
    }

  private:
    void text(std::string_view key, std::string_view value) {
        writer_.plainKey(key);
        writer_.string(value);
    }
    void maybeText(std::string_view key, const std::optional<std::string>& value) {
        if (value) {
            text(key, *value);
        }
    }
    void count(std::string_view key, std::size_t value) {
        writer_.plainKey(key);
        writer_.integer(static_cast<std::int64_t>(value));
    }

    void writeCompositions() {
        writer_.plainKey("compositions");
        writer_.beginArray();
        for (const AAFWorkerExtensions::Composition& composition : handOff_.compositions) {
            writer_.beginObject();
            writer_.plainKey("object");
            writer_.integer(composition.object);
            if (composition.name) {
                text("name", *composition.name);
            }
            writer_.plainKey("read");
            writer_.boolean(composition.isRead);
            writer_.endObject();
        }
        writer_.endArray();
    }

    void writeTimes() {
        text("start", timeline_.clock.timelineZero.description());
        text("rate", rateText(timeline_.clock.timecodeRate));
        writer_.plainKey("timecodeInFile");
        writer_.boolean(timeline_.hasNativeTimecode.value_or(false));
        if (timeline_.compositionLength) {
            text("length", lengthText(timeline_, *timeline_.compositionLength));
            text("lengthSecondsExact", fractionText(*timeline_.compositionLength));
            writer_.plainKey("lengthSeconds");
            writer_.number(timeline_.compositionLength->doubleValue());
        }
        if (summary_.firstAudible) {
            text("firstAudible", timecodeText(timeline_, *summary_.firstAudible));
            text("firstAudibleSecondsExact", fractionText(*summary_.firstAudible));
        }
        writeRates();
    }

    void writeRates() {
        text("editRate", fractionText(timeline_.clock.editRate));
        text("timecodeRate", fractionText(timeline_.clock.timecodeRate.exactRate));
        if (const auto drift = rateDrift(timeline_.clock)) {
            writer_.plainKey("driftSecondsPerHour");
            writer_.number(drift->secondsPerHour);
            text("rateDisagreement", rateDisagreement(timeline_.clock).value_or(""));
        }
    }

    void writeCounts() {
        count("tracks", summary_.tracks);
        count("clips", summary_.clips);
        count("audioFiles", summary_.sources);
        count("embedded", summary_.inState(SourceState::embedded));
        count("located", summary_.inState(SourceState::located));
        count("missing", summary_.inState(SourceState::missing));
        count("severalCandidates", summary_.inState(SourceState::severalCandidates));
        count("misfit", summary_.inState(SourceState::misfit));
        writer_.plainKey("sampleRates");
        writer_.beginObject();
        for (const auto& [rate, sources] : summary_.sampleRates) {
            writer_.key(fractionText(rate));
            writer_.integer(static_cast<std::int64_t>(sources));
        }
        writer_.endObject();
        writer_.plainKey("bitDepths");
        writer_.beginObject();
        for (const auto& [bits, sources] : summary_.bitDepths) {
            writer_.key(bits == 0 ? "unknown" : std::to_string(bits));
            writer_.integer(static_cast<std::int64_t>(sources));
        }
        writer_.endObject();
        count("losses", summary_.losses);
        count("lossesDropped", summary_.dropped);
        count("lossesSoundDifferent", summary_.soundsDifferent);
        count("lossPlaces", summary_.lossPlaces);
    }

    void writeChanges() {
        writer_.plainKey("changes");
        writer_.beginArray();
        for (const DescribedChange& change : handOff_.changes) {
            writer_.beginObject();
            text("code", change.code);
            text("object", change.object);
            text("what", change.what);
            maybeText("track", change.track);
            maybeText("clip", change.clip);
            maybeText("audioFile", change.audioFile);
            if (change.start) {
                text("timecode", timecodeText(timeline_, *change.start));
            }
            writer_.endObject();
        }
        writer_.endArray();
    }

    const HandOff& handOff_;
    const AAFTimeline& timeline_;
    Summary summary_;
    StringSink sink_;
    JsonWriter writer_{sink_};
};

}  // namespace

std::string infoScreen(const std::string& file, const HandOff& handOff, bool colour) {
    return Screen(handOff, colour).text(file);
}

std::string infoLine(const std::string& file, const HandOff& handOff) {
    return Line(handOff).text(file);
}

}  // namespace trellant::cli
