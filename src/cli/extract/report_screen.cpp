// SPDX-License-Identifier: Apache-2.0
// The summary for a person: what is where, then what is missing, then what to do next.
#include "report.h"
#include "report_table.h"
#include "terminal/console.h"
#include "terminal/counted_text.h"
#include "terminal/pasted_word.h"
#include "terminal/shown_text.h"

#include <trellant/handoff/timeline_text.h>

#include <algorithm>
#include <map>

namespace trellant::cli {

namespace {

/// Candidates of one source that are listed; more would bury the rest.
constexpr std::size_t listedCandidates = 10;
/// Missing sources that are listed.
constexpr std::size_t listedMissing = 50;

class Screen {
  public:
    Screen(const ExtractionReport& report, std::size_t columns, bool colour,
           const std::optional<BagFacts>& bag)
        : report_(report),
          timeline_(report.handOff.timeline),
          columns_(columns),
          colour_(colour),
          bag_(bag) {}

    std::string text() {
        text_ = painted(shownText(report_.file), Paint::bold, colour_) + "\n";
        addHead();
        if (!std::all_of(report_.audio.begin(), report_.audio.end(),
                         [](const AudioEntry& entry) { return entry.isMissing(); })) {
            text_ += "\n" + fittingTable(report_, columns_, colour_);
        }
        addAllMissing();
        addAdvice();
        return std::move(text_);
    }

  private:
    void line(std::string_view label, const std::string& fact) {
        constexpr std::size_t labelWidth = 11;
        text_ += "  " + painted(label, Paint::dim, colour_);
        text_.append(labelWidth - label.size(), ' ');
        text_ += fact + "\n";
    }

    [[nodiscard]] std::string audioText() const {
        // Each file once: in what this run has done, or as one that was there.
        std::map<AudioState, std::size_t> counts;
        std::size_t wereThere = 0;
        for (const AudioEntry& entry : report_.audio) {
            ++(entry.wasThere() ? wereThere : counts[entry.state]);
        }
        std::string text;
        for (const auto& [state, count] : counts) {
            appendPart(text, std::to_string(count) + " " + std::string(stateText(state)));
        }
        if (wereThere != 0) {
            appendPart(text, std::to_string(wereThere) + " already there");
        }
        const auto unreadable =
            std::count_if(report_.audio.begin(), report_.audio.end(),
                          [](const AudioEntry& entry) { return entry.isUnreadable(); });
        if (unreadable != 0) {
            appendPart(text, std::to_string(unreadable) + " of them no readable audio");
        }
        return text.empty() ? "none" : text;
    }

    void addHead() {
        line("Audio", audioText());
        if (bag_) {
            line("Bag", shownText(report_.directory) + ", " +
                            counted(bag_->payloadFiles, "file", "files") + ", " +
                            bytesText(bag_->payloadBytes) +
                            (bag_->wasThere ? "; it was there already" : ""));
            line("Timeline", report_.timeline.name);
            line("Metadata", "metadata/premis.xml");
            return;
        }
        line("Folder", shownText(report_.directory));
        addStore();
        line("Timeline", report_.timeline.name);
        line("Checksums", report_.manifest.name +
                              ", to be checked in the folder by: sha256sum -c " +
                              report_.manifest.name);
    }

    void addStore() {
        std::size_t kept = 0;
        std::size_t known = 0;
        std::size_t linked = 0;
        for (const AudioEntry& entry : report_.audio) {
            kept += entry.stored ? 1U : 0U;
            known += entry.stored && entry.stored->wasThere ? 1U : 0U;
            linked += entry.stored && entry.stored->isLinked ? 1U : 0U;
        }
        if (kept != 0) {
            line("Store", counted(kept, "file", "files") + ", " + std::to_string(known) +
                              " of them already in it" +
                              (linked == kept ? "" : "; timeline.json names them there"));
        }
    }

    [[nodiscard]] std::string candidateText(const MediaCandidate& candidate) const {
        std::string text = shownText(candidate.path) + ": ";
        if (!candidate.facts) {
            return text + candidate.misfit.value_or("");
        }
        const AudioFormatInfo& format = candidate.facts->format;
        const std::string length = lengthOf(timeline_, candidate.facts);
        text += length.empty()
                    ? "length not known"
                    : length + " (" + std::to_string(*candidate.facts->frames) + " samples)";
        text += format.sampleRate ? ", " + plainRate(*format.sampleRate) + " Hz" : "";
        text += format.channels ? ", " + channelsText(*format.channels) : "";
        return text + (candidate.misfit ? ", does not fit: " + *candidate.misfit : ", fits");
    }

    void addMissing(const AudioEntry& entry) {
        const AAFSourceEssence& essence = timeline_.essences[entry.essences.front()];
        text_ +=
            "  " + sourceNames(timeline_, entry) + ", " + counted(entry.clips, "clip", "clips");
        if (essence.originalPath) {
            text_ += ", recorded as " + shownText(*essence.originalPath);
        }
        text_ += "\n";
        const std::size_t shown = std::min(entry.candidates.size(), listedCandidates);
        for (std::size_t index = 0; index < shown; ++index) {
            text_ += "    " + candidateText(entry.candidates[index]) + "\n";
        }
        if (shown < entry.filesOfName) {
            text_ += "    and " + std::to_string(entry.filesOfName - shown) + " more\n";
        }
    }

    void addAllMissing() {
        std::size_t count = 0;
        for (const AudioEntry& entry : report_.audio) {
            if (!entry.isMissing()) {
                continue;
            }
            if (count == 0) {
                text_ += "\n" + painted("Missing", Paint::yellow, colour_) + "\n";
            }
            if (count < listedMissing) {
                addMissing(entry);
            }
            ++count;
        }
        if (count > listedMissing) {
            text_ += "  and " + std::to_string(count - listedMissing) + " more: --json lists all\n";
        }
    }

    void addAdvice() {
        const std::string file = shownText(pastedFileName(report_.file));
        std::string advice;
        if (report_.count(AudioState::missing) != 0) {
            advice += "  If you know where the missing audio files lie: trellant extract " + file +
                      (bag_ ? " --bag " : " --to ") + shownText(pastedFileName(report_.directory)) +
                      " --media FOLDER\n";
        }
        if (report_.count(AudioState::undecided) != 0) {
            advice +=
                "  Several files bear one name, or the one that does is another recording: "
                "give a folder with the right one only by --media FOLDER\n";
        }
        if (const std::size_t losses = timeline_.unsupportedFeatures.size(); losses != 0) {
            advice += "  " + counted(losses, "thing was", "things were") +
                      " not carried over: trellant list losses " + file + "\n";
        }
        text_ += advice.empty() ? "" : "\n" + advice;
    }

    const ExtractionReport& report_;
    const AAFTimeline& timeline_;
    std::size_t columns_;
    bool colour_;
    const std::optional<BagFacts>& bag_;
    std::string text_;
};

}  // namespace

std::string summaryScreen(const ExtractionReport& report, std::size_t columns, bool colour,
                          const std::optional<BagFacts>& bag) {
    return Screen(report, columns, colour, bag).text();
}

}  // namespace trellant::cli
