// SPDX-License-Identifier: Apache-2.0
// The words come from the tables of the program, so that none is missed or goes out of date.
#include "message_fields.h"
#include "older_names.h"
#include "require.h"
#include "seeds.h"

#include <trellant/model/enum_names.h>
#include <trellant/model/record_fields.h>
#include <trellant/omf/names.h>
#include <trellant/protocol/messages.h>

#include <array>
#include <set>

namespace trellant::fuzzing {

namespace {

/// Texts that a composition is told apart by, beside names and classes.
constexpr std::array<std::string_view, 6> identifiers{
    "omfi:data:Sound",           "omfi:data:StereoSound",    "omfi:data:Timecode",
    "omfi:effect:MonoAudioGain", "omfi:effect:MonoAudioPan", "omfi:effect:SimpleMonoAudioDissolve"};

/// Of OMF 1.x, beside those that OMF 2.x has too.
constexpr std::array<std::string_view, 4> olderClasses{"MOBJ", "TRAK", "SD2D", "WARP"};

constexpr std::array<std::string_view, 14> chunks{"RIFF", "RF64", "WAVE", "fmt ", "data",
                                                  "FORM", "AIFF", "AIFC", "COMM", "SSND",
                                                  "NONE", "sowt", "fl32", "ds64"};

constexpr std::array<std::string_view, 9> pathParts{"/",   "..",  ".wav", ".aif",     "file://",
                                                    "%2F", "%00", "%c3",  "localhost"};

constexpr std::array<std::string_view, 8> numbers{
    "-1",    "1e-400",     "0.5", "9223372036854775807", "-9223372036854775808",
    "1e999", "4294967296", "1.0"};

using Words = std::set<std::string, std::less<>>;

template <class List>
void add(Words& words, const List& list) {
    for (const std::string_view word : list) {
        words.emplace(word);
    }
}

/// Keys and texts stand in quotes, as JSON has them.
template <class List>
void addQuoted(Words& words, const List& list) {
    for (const std::string_view word : list) {
        words.insert(std::string("\"").append(word).append("\""));
    }
}

template <Record... Records>
void addKeys(Words& words) {
    (addQuoted(words, fieldKeys<Records>), ...);
}

Words omfWords() {
    Words words;
    add(words, omfPropertyNames);
    add(words, olderPropertyNames);
    add(words, olderClasses);
    add(words, omfClassIDs);
    add(words, identifiers);
    return words;
}

Words requestWords() {
    Words words;
    addKeys<AAFWorkerProtocol::Request, AAFWorkerProtocol::Progress>(words);
    addQuoted(words, EnumNames<AAFWorkerProtocol::Request::Operation>::names);
    add(words, numbers);
    add(words, std::array<std::string_view, 3>{"true", "false", "null"});
    return words;
}

Words timelineWords() {
    Words words;
    addKeys<AAFTimecodeRate, AAFTimecodeAddress, AAFProgramClock, AAFAutomationPoint,
            AAFAutomationEnvelope, AAFFade, AAFSourceEssence, AAFTrackState, AAFSemanticDecision,
            AAFClipEvent::ExportTrackNameOrigin, AAFClipEvent, AAFUnsupportedFeature, AAFTimeline>(
        words);
    addQuoted(words, EnumNames<AAFStemRole>::names);
    addQuoted(words, EnumNames<AAFChannelRole>::names);
    addQuoted(words, EnumNames<AAFFade::Direction>::names);
    addQuoted(words, EnumNames<AAFUnsupportedFeature::Severity>::names);
    addQuoted(words, VariantCases<AAFAutomationInterpolation>::names);
    addQuoted(words, std::array<std::string_view, 2>{"numerator", "denominator"});
    add(words, numbers);
    add(words, std::array<std::string_view, 3>{"true", "false", "null"});
    return words;
}

std::string inQuotes(std::string_view word) {
    std::string line = "\"";
    for (const char character : word) {
        if (character == '"' || character == '\\') {
            line += '\\';
        }
        line += character;
    }
    return line + "\"\n";
}

}  // namespace

std::string dictionaryOf(std::string_view target) {
    Words words;
    if (target == "container" || target == "document" || target == "mapping") {
        words = omfWords();
    } else if (target == "audio_probe" || target == "salvage") {
        add(words, chunks);
    } else if (target == "request") {
        words = requestWords();
    } else if (target == "timeline") {
        words = timelineWords();
    } else {
        require(target == "file_names", "each target has words");
        add(words, pathParts);
    }
    std::string text;
    for (const std::string& word : words) {
        text += inQuotes(word);
    }
    return text;
}

}  // namespace trellant::fuzzing
