// SPDX-License-Identifier: Apache-2.0
#include "loss_words.h"

#include <trellant/handoff/timeline_text.h>

#include <array>
#include <charconv>
#include <string_view>

namespace trellant::exchange {

namespace {

using Severity = AAFUnsupportedFeature::Severity;

struct Words {
    Feature feature;
    Severity severity;
    /// With its verb, for what is gone: "The clip's gain is".
    std::string_view subject;
    /// What one hears or sees instead where it is lost; may be empty.
    std::string_view consequence;
};

constexpr auto heard = Severity::renderAffecting;
constexpr auto unheard = Severity::informational;

constexpr std::array<Words, featureCount> wordsByFeature{{
    {Feature::clipPlaces, heard, "The clip's place is", {}},
    {Feature::sourceStart, heard, "What the clip plays of its source is", {}},
    {Feature::sourceStartAtOtherRates, heard, "The clip's first sample in its source is", {}},
    {Feature::channelOfSeveral, heard, "The choice of one channel is", "all channels are played"},
    {Feature::severalChannels, heard, "The clip's further channels are",
     "only the first one is played"},
    {Feature::overlaps, heard, "The clip's overlap with another one is", {}},
    {Feature::crossfades, heard, "The crossfade is", "the clips' fades remain"},
    {Feature::fadeLengths, heard, "The clip's fade is", "it begins or ends at once"},
    {Feature::overlappingFades, heard, "The part of the fade-out that lies in the fade-in is",
     "the fade-out begins where the fade-in ends"},
    {Feature::fadeCurves, heard, "The curve of the clip's fade is", "the tool takes its own"},
    {Feature::fadeShapes, heard, "The drawn shape of the clip's fade is", "its curve remains"},
    {Feature::clipGain, heard, "The clip's gain is", "it plays at the level of its source"},
    {Feature::clipGainAutomation, heard, "The clip's gain automation is",
     "its level does not change"},
    {Feature::automationCurves, heard, "The curve between automation points is",
     "they are joined by straight lines"},
    {Feature::clipMute, heard, "The clip's mute is", "it can be heard"},
    {Feature::trackGain, heard, "The track's gain is", "it plays at full level"},
    {Feature::trackGainAutomation, heard, "The track's gain automation is",
     "its level does not change"},
    {Feature::trackPan, heard, "The track's pan is", "it plays in the middle"},
    {Feature::trackPanAutomation, heard, "The track's pan automation is",
     "its place does not change"},
    {Feature::trackMute, heard, "The track's mute is", "it can be heard"},
    {Feature::trackSolo, heard, "The track's solo is", "all tracks can be heard"},
    {Feature::sessionName, unheard, "The composition's name is", {}},
    {Feature::trackNames, unheard, "The track's name is", {}},
    {Feature::clipNames, unheard, "The clip's name is", {}},
    {Feature::sourceNames, unheard, "The source's name is", {}},
    {Feature::reels, unheard, "The reel that a source comes from is", {}},
    {Feature::startTimecode, unheard, "The start timecode is", {}},
    {Feature::offlineMedia, heard, "The clip's audio is", {}},
    {Feature::lossMarkers, unheard, "The markers of losses are", {}},
}};

constexpr bool wordsAreInOrder() {
    for (std::size_t i = 0; i < wordsByFeature.size(); ++i) {
        if (static_cast<std::size_t>(wordsByFeature[i].feature) != i) {
            return false;
        }
    }
    return true;
}
static_assert(wordsAreInOrder());

const Words& wordsOf(Feature feature) noexcept {
    return wordsByFeature.at(static_cast<std::size_t>(feature));
}

std::string together(std::initializer_list<std::string_view> parts) {
    std::string text;
    for (const std::string_view part : parts) {
        text += part;
    }
    return text;
}

bool isOne(const Rounding& rounding) noexcept {
    return rounding.count == 1;
}

}  // namespace

Severity severityOf(Feature feature) noexcept {
    return wordsOf(feature).severity;
}

Severity severityOf(PlanLoss::Kind kind) noexcept {
    switch (kind) {
        case PlanLoss::Kind::shorterThanASample:
        case PlanLoss::Kind::beforeTheStart:
        case PlanLoss::Kind::headBeforeTheStart:
            return Severity::informational;
        case PlanLoss::Kind::beyondTheRange:
        case PlanLoss::Kind::fadeLongerThanClip:
            return Severity::renderAffecting;
    }
    return Severity::renderAffecting;
}

LossEffect effectOf(const ExportLoss& loss) noexcept {
    if (loss.severity != Severity::informational) {
        return LossEffect::soundsDifferent;
    }
    return loss.isLeftOut ? LossEffect::dropped : LossEffect::changed;
}

std::string_view effectWord(LossEffect effect) noexcept {
    switch (effect) {
        case LossEffect::dropped:
            return "dropped";
        case LossEffect::soundsDifferent:
            return "soundsDifferent";
        case LossEffect::changed:
            return "changed";
    }
    return {};
}

bool isLeftOut(PlanLoss::Kind kind) noexcept {
    return kind != PlanLoss::Kind::headBeforeTheStart && kind != PlanLoss::Kind::fadeLongerThanClip;
}

std::string sentenceOf(Feature feature, Carriage carriage) {
    const Words& words = wordsOf(feature);
    if (carriage == Carriage::metadata) {
        return together({words.subject, " kept as a note only: other tools do not act on it."});
    }
    if (words.consequence.empty()) {
        return together({words.subject, " left out."});
    }
    return together({words.subject, " left out: ", words.consequence, "."});
}

std::string ofOneFade(std::string sentence, std::string_view which) {
    constexpr std::string_view any = "clip's fade";
    if (const auto place = sentence.find(any); place != std::string::npos) {
        const std::size_t wordStart = place + any.size() - std::string_view("fade").size();
        sentence.replace(wordStart, std::string_view("fade").size(), which);
    }
    return sentence;
}

std::string sentenceOf(PlanLoss::Kind kind) {
    switch (kind) {
        case PlanLoss::Kind::shorterThanASample:
            return "The clip lasts for less than half a sample and is left out.";
        case PlanLoss::Kind::beforeTheStart:
            return "The clip lies before the start of the timeline and is left out.";
        case PlanLoss::Kind::headBeforeTheStart:
            return "The clip begins before the start of the timeline: what lies there is cut off.";
        case PlanLoss::Kind::beyondTheRange:
            return "The clip lies beyond what a session can count and is left out.";
        case PlanLoss::Kind::fadeLongerThanClip:
            return "The fade is longer than its clip and is cut to the clip's length.";
    }
    return {};
}

std::string changeSentence(Feature feature) {
    return together(
        {wordsOf(feature).subject, " changed to the nearest that the format can hold."});
}

std::string roundingSentence(const Rounding& rounding) {
    return isOne(rounding) ? "One edge lies between two samples and is moved to the nearest one."
                           : std::to_string(rounding.count) +
                                 " edges lie between two samples and are moved to the nearest one.";
}

std::string sourceRoundingSentence(const Rounding& rounding) {
    return isOne(rounding)
               ? "One clip of audio at another rate begins up to half a sample beside its place in "
                 "the source."
               : std::to_string(rounding.count) +
                     " clips of audio at other rates begin up to half a sample beside their places "
                     "in the source.";
}

std::string technicalText(Feature feature, const std::string& value, ExportFormat format) {
    const bool isNoted = capability(format, feature).carriage == Carriage::metadata;
    return together({featureText(feature), value.empty() ? "" : " (", value,
                     value.empty() ? "" : ")", isNoted ? ": only metadata in " : ": not in ",
                     formatWord(format)});
}

std::string technicalText(PlanLoss::Kind kind) {
    switch (kind) {
        case PlanLoss::Kind::shorterThanASample:
            return "clip rounds to no sample";
        case PlanLoss::Kind::beforeTheStart:
            return "clip ends at or before time 0";
        case PlanLoss::Kind::headBeforeTheStart:
            return "clip starts before time 0";
        case PlanLoss::Kind::beyondTheRange:
            return "place or source place beyond 2^53 samples";
        case PlanLoss::Kind::fadeLongerThanClip:
            return "fade longer than its clip";
    }
    return {};
}

std::string technicalChange(Feature feature, const std::string& from, const std::string& to,
                            ExportFormat format) {
    return together(
        {featureText(feature), ": ", from, " is written to ", formatWord(format), " as ", to});
}

std::string roundingText(Feature feature, const Rounding& rounding, std::int64_t rate) {
    return together(
        {featureText(feature), ": ", std::to_string(rounding.count),
         isOne(rounding) ? " time is no whole sample at " : " times are no whole samples at ",
         std::to_string(rate), " Hz, the largest error is ",
         numberText(rounding.largestError.doubleValue()), " samples"});
}

std::string numberText(double value) {
    // Room for the shortest form of any double.
    std::array<char, 32> text{};
    const auto end = std::to_chars(text.data(), text.data() + text.size(), value);
    return {text.data(), end.ptr};
}

std::string pointsText(std::size_t count) {
    return std::to_string(count) + (count == 1 ? " point" : " points");
}

std::string samplesText(Samples count, std::int64_t rate) {
    return together({std::to_string(count), count == 1 ? " sample at " : " samples at ",
                     std::to_string(rate), " Hz"});
}

std::string curveName(const AAFAutomationInterpolation& curve) {
    return curveText(curve);
}

}  // namespace trellant::exchange
