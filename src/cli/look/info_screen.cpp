// SPDX-License-Identifier: Apache-2.0
#include "info_output.h"
#include "terminal/console.h"
#include "terminal/counted_text.h"
#include "terminal/pasted_word.h"
#include "terminal/shown_text.h"

#include <trellant/handoff/frame_clock.h>
#include <trellant/handoff/summary.h>
#include <trellant/handoff/timeline_text.h>

#include <array>
#include <string_view>

namespace trellant::cli {

namespace {

constexpr std::size_t longestShownName = 200;

std::string shownName(const std::string& name) {
    return cutToCells(shownText(name), longestShownName);
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
                              rateText(frameClock(timeline_.clock).timecodeRate) +
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
        if (const std::size_t count = handOff_.changes.size(); count != 0) {
            line("Repaired", counted(count, "thing was", "things were") + " set right (see above)");
        }
    }

    void addAdvice(const std::string& file) {
        if (handOff_.olderVersion) {
            text_ += "  " + painted("Note", Paint::yellow, colour_) + ": " +
                     std::string(olderModelNote) + "\n";
        }
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

}  // namespace

std::string infoScreen(const std::string& file, const HandOff& handOff, bool colour) {
    return Screen(handOff, colour).text(file);
}

}  // namespace trellant::cli
