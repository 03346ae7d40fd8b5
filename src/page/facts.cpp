// SPDX-License-Identifier: Apache-2.0
#include "facts.h"

#include "say.h"
#include "value_text.h"

#include <trellant/handoff/frame_clock.h>
#include <trellant/handoff/timeline_text.h>
#include <trellant/version.h>

#include <array>

namespace trellant::page {

namespace {

constexpr std::array<SourceState, 5> states{SourceState::embedded, SourceState::located,
                                            SourceState::missing, SourceState::severalCandidates,
                                            SourceState::misfit};

void appendPart(std::string& text, const std::string& part) {
    text += (text.empty() ? "" : ", ") + part;
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
        const std::string depth =
            bits == 0 ? std::string(say("notKnown")) : say("bits", std::to_string(bits));
        appendPart(text, depth + " (" + std::to_string(count) + ")");
    }
    return text;
}

/// What of the sound is in the page.
std::string soundText(const PageSound* sound) {
    if (sound == nullptr || (sound->pieces.empty() && sound->leftOut + sound->failed == 0)) {
        return std::string(say("soundNone"));
    }
    if (sound->leftOut + sound->failed == 0) {
        return std::string(say("soundWhole"));
    }
    std::string text;
    if (sound->leftOut != 0) {
        appendPart(text, say("soundLeftOut", std::to_string(sound->leftOut)));
    }
    if (sound->failed != 0) {
        appendPart(text, say("soundFailed", std::to_string(sound->failed)));
    }
    return text;
}

class Facts {
  public:
    explicit Facts(Markup& markup) : markup_(markup) { markup_.raw("<dl class=\"facts\">\n"); }
    ~Facts() { markup_.raw("</dl>\n"); }
    Facts(const Facts&) = delete;
    Facts& operator=(const Facts&) = delete;
    Facts(Facts&&) = delete;
    Facts& operator=(Facts&&) = delete;

    void add(std::string_view label, const std::string& value) {
        markup_.raw("<div><dt>").text(say(label)).raw("</dt><dd>").text(value).raw("</dd></div>\n");
    }

    /// A value that needs more room than others.
    void addWide(std::string_view label, const std::string& value) {
        markup_.raw("<div class=\"wide\"><dt>").text(say(label)).raw("</dt><dd>").text(value);
        markup_.raw("</dd></div>\n");
    }

  private:
    Markup& markup_;
};

std::string countedText(std::size_t count, std::string_view one, std::string_view several) {
    return count == 1 ? std::string(say(one)) : say(several, std::to_string(count));
}

/// "Failed by the profile post: 4 errors, 16 warnings".
std::string checkText(const check::Verdict& verdict) {
    const std::size_t errors = verdict.count(check::Severity::error);
    const std::size_t warnings = verdict.count(check::Severity::warning);
    const std::size_t remarks = verdict.count(check::Severity::info);
    std::string counts;
    if (errors != 0) {
        appendPart(counts, countedText(errors, "oneError", "errorCount"));
    }
    if (warnings != 0) {
        appendPart(counts, countedText(warnings, "oneWarning", "warningCount"));
    }
    if (remarks != 0) {
        appendPart(counts, countedText(remarks, "oneRemark", "remarkCount"));
    }
    return say(errors == 0 ? "checkPassed" : "checkFailed", shownText(verdict.profile)) +
           (counts.empty() ? "" : ": " + counts);
}

/// A mark with a colour for what weighs most; the words say it too.
const char* markOf(const check::Verdict& verdict) {
    if (verdict.count(check::Severity::error) != 0) {
        return "bad\"><span aria-hidden=\"true\">!</span> ";
    }
    return verdict.count(check::Severity::warning) != 0
               ? "warning\"><span aria-hidden=\"true\">!</span> "
               : "good\"><span aria-hidden=\"true\">&#10003;</span> ";
}

}  // namespace

std::string compositionText(const HandOff& handOff) {
    const auto& name = handOff.timeline.compositionName;
    return name && !name->empty() ? shownText(*name) : std::string(say("noName"));
}

std::string lossText(const Summary& summary) {
    if (summary.losses == 0) {
        return std::string(say("lostNothing"));
    }
    std::string text;
    if (summary.dropped != 0) {
        appendPart(text, say("lostDropped", std::to_string(summary.dropped)));
    }
    if (summary.soundsDifferent != 0) {
        appendPart(text, say("lostDifferent", std::to_string(summary.soundsDifferent)));
    }
    appendPart(text, summary.lossPlaces == 1
                         ? std::string(say("lostPlace"))
                         : say("lostPlaces", std::to_string(summary.lossPlaces)));
    return text;
}

std::string statesText(const Summary& summary) {
    std::string text;
    for (const SourceState state : states) {
        if (const std::size_t count = summary.inState(state); count != 0) {
            appendPart(text, std::to_string(count) + " " + std::string(stateName(state)));
        }
    }
    return text;
}

std::string lengthOf(const AAFTimeline& timeline) {
    return timeline.compositionLength ? lengthText(timeline, *timeline.compositionLength)
                                      : std::string(say("notKnown"));
}

void writeFacts(Markup& markup, const PageRequest& request, const Summary& summary) {
    const AAFTimeline& timeline = request.handOff.timeline;
    const bool isAssumed = !timeline.hasNativeTimecode.value_or(false);
    Facts facts(markup);
    facts.add("startsAt", timeline.clock.timelineZero.description());
    facts.add("frameRate", frameRateText(frameClock(timeline.clock).timecodeRate) +
                               (isAssumed ? " (" + std::string(say("assumed")) + ")" : ""));
    facts.add("length", lengthOf(timeline));
    facts.add("firstSound", summary.firstAudible ? timecodeText(timeline, *summary.firstAudible)
                                                 : std::string(say("allMuted")));
    facts.add("tracks", std::to_string(summary.tracks));
    facts.add("clips", std::to_string(summary.clips));
    facts.add("audioFiles", std::to_string(summary.sources) +
                                (summary.sources == 0 ? "" : ": " + statesText(summary)));
    if (summary.sources != 0) {
        facts.add("sampleRates", ratesText(summary));
        facts.add("bitDepths", depthsText(summary));
    }
    if (const std::size_t count = request.handOff.changes.size(); count != 0) {
        facts.add("repaired", say("repairedCount", std::to_string(count)));
    }
    if (request.handOff.olderVersion) {
        facts.addWide("note", std::string(olderModelNote));
    }
    if (const auto note = rateDisagreement(timeline.clock)) {
        facts.addWide("note", *note);
    }
    facts.add("sound", soundText(request.sound));
    facts.add("madeWith", "trellant " + std::string(versionText));
    if (!request.sha256.empty()) {
        facts.addWide("checksum", request.sha256);
    }
}

void writeVerdict(Markup& markup, const Summary& summary, const check::Verdict* verdict) {
    const bool isClean = summary.losses == 0;
    markup.raw("<ul class=\"verdict\">\n<li class=\"");
    markup.raw(isClean ? "good\"><span aria-hidden=\"true\">&#10003;</span> "
                       : "bad\"><span aria-hidden=\"true\">!</span> ");
    if (!isClean) {
        markup.text(say("lost")).raw(": ");
    }
    markup.text(lossText(summary)).raw("</li>\n");
    if (const std::size_t count = summary.inState(SourceState::missing); count != 0) {
        markup.raw("<li class=\"bad\"><span aria-hidden=\"true\">!</span> ");
        markup.text(say("audioFiles")).raw(": ").text(std::to_string(count) + " ");
        markup.text(stateName(SourceState::missing)).raw("</li>\n");
    }
    if (verdict != nullptr) {
        markup.raw("<li class=\"").raw(markOf(*verdict));
        markup.raw("<a href=\"#findings\">").text(checkText(*verdict)).raw("</a></li>\n");
    }
    markup.raw("</ul>\n");
}

}  // namespace trellant::page
