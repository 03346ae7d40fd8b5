// SPDX-License-Identifier: Apache-2.0
#include <trellant/base/printable_text.h>
#include <trellant/base/text.h>
#include <trellant/exporter/exporter.h>
#include <trellant/handoff/clip_name.h>
#include <trellant/handoff/timeline_text.h>
#include <trellant/json/json_writer.h>

#include <string_view>
#include <utility>

namespace trellant {

namespace {

using exchange::ExportLoss;
using Severity = AAFUnsupportedFeature::Severity;

/// What the records of both kinds say.
struct Record {
    std::string_view effect;
    std::optional<std::string> track{};
    std::optional<std::int64_t> trackNumber{};
    std::optional<std::string> clip{};
    bool isNamedByMasterMob = false;
    std::optional<AAFRational> start{};
    std::optional<AAFRational> duration{};
    std::string_view sentence{};
    std::string_view technical{};
    std::optional<std::string> objectPath{};
};

Record recordOf(const AAFUnsupportedFeature& feature, const PlacedLoss& loss) {
    return {.effect = feature.severity == Severity::informational ? "dropped" : "soundsDifferent",
            .track = loss.trackName,
            .trackNumber = loss.trackNumber,
            .clip = loss.clipName,
            .isNamedByMasterMob = loss.isClipNamedByMasterMob,
            .start = loss.start,
            .duration = loss.duration,
            .sentence = loss.plain.empty() ? feature.description : loss.plain,
            .technical = feature.description,
            .objectPath = feature.objectPath};
}

Record recordOf(const HandOff& handOff, const ExportLoss& loss) {
    const AAFTimeline& timeline = handOff.timeline;
    Record record{.effect = exchange::effectWord(exchange::effectOf(loss)),
                  .start = loss.start,
                  .duration = loss.duration,
                  .sentence = loss.sentence,
                  .technical = loss.technical};
    if (loss.track) {
        record.track = timeline.tracks[*loss.track].name;
        record.trackNumber = timeline.tracks[*loss.track].index + 1;
    }
    if (loss.event) {
        const ClipName name = clipName(handOff, *loss.event);
        record.clip = name.text == nullptr ? std::nullopt : std::optional(*name.text);
        record.isNamedByMasterMob = name.isOfMasterMob;
    }
    return record;
}

void member(JsonWriter& writer, std::string_view key, std::string_view value) {
    writer.plainKey(key);
    writer.string(madeValidUTF8(value));
}

void member(JsonWriter& writer, std::string_view key, const std::optional<std::string>& value) {
    if (value) {
        member(writer, key, std::string_view(*value));
    }
}

void integer(JsonWriter& writer, std::string_view key, std::int64_t value) {
    writer.plainKey(key);
    writer.integer(value);
}

void seconds(JsonWriter& writer, std::string_view key, std::string_view exactKey,
             const AAFRational& value) {
    writer.plainKey(key);
    writer.number(value.doubleValue());
    member(writer, exactKey, std::string_view(fractionText(value)));
}

/// An array with one record a line.
class Document {
  public:
    Document(std::string file, const AAFTimeline& timeline)
        : file_(std::move(file)), timeline_(timeline) {}

    void add(const Record& record);
    [[nodiscard]] std::string text() && {
        sink_.text += number_ == 0 ? "[]\n" : "\n]\n";
        return std::move(sink_.text);
    }

  private:
    void members(JsonWriter& writer, const Record& record) const;

    std::string file_;
    const AAFTimeline& timeline_;
    StringSink sink_;
    std::int64_t number_ = 0;
};

void Document::add(const Record& record) {
    sink_.text += number_ == 0 ? "[\n" : ",\n";
    ++number_;
    JsonWriter writer(sink_, JsonWriter::shortBufferSize);
    writer.beginObject();
    members(writer, record);
    writer.endObject();
    writer.flush();
}

void Document::members(JsonWriter& writer, const Record& record) const {
    member(writer, "file", std::string_view(textOfBytes(file_)));
    integer(writer, "loss", number_);
    member(writer, "effect", record.effect);
    member(writer, "track", record.track);
    if (record.trackNumber) {
        integer(writer, "trackNumber", *record.trackNumber);
    }
    member(writer, "clip", record.clip);
    if (record.isNamedByMasterMob) {
        member(writer, "clipNameFrom", std::string_view("masterMob"));
    }
    if (record.start) {
        member(writer, "in", std::string_view(timecodeText(timeline_, *record.start)));
    }
    if (record.start && record.duration) {
        member(writer, "out",
               std::string_view(timecodeText(timeline_, *record.start + *record.duration)));
    }
    if (record.start) {
        seconds(writer, "startSeconds", "startSecondsExact", *record.start);
    }
    if (record.duration) {
        seconds(writer, "durationSeconds", "durationSecondsExact", *record.duration);
    }
    member(writer, "sentence", record.sentence);
    member(writer, "technical", record.technical);
    member(writer, "objectPath", record.objectPath);
}

}  // namespace

std::string lossesDocument(const std::string& file, const HandOff& handOff,
                           const std::vector<ExportLoss>& losses) {
    const AAFTimeline& timeline = handOff.timeline;
    Document document(file, timeline);
    for (std::size_t i = 0; i < handOff.losses.size(); ++i) {
        document.add(recordOf(timeline.unsupportedFeatures[i], handOff.losses[i]));
    }
    for (const ExportLoss& loss : losses) {
        document.add(recordOf(handOff, loss));
    }
    return std::move(document).text();
}

}  // namespace trellant
