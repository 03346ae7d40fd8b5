// SPDX-License-Identifier: Apache-2.0
// The field tables as the schemas would say them. Names of records are given here a second time, on
// purpose: a record without one does not compile, so nothing enters the format unseen.
#include "message_fields.h"
#include "probe.h"

#include <trellant/json/json_writer.h>
#include <trellant/model/record_fields.h>
#include <trellant/protocol/messages.h>

#include <map>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

namespace trellant::test {

namespace {

using Curve = AAFAutomationInterpolation;
using Protocol = AAFWorkerProtocol;

template <class T>
constexpr const char* nameOf = nullptr;

template <>
constexpr const char* nameOf<bool> = "boolean";
template <>
constexpr const char* nameOf<std::int64_t> = "integer";
template <>
constexpr const char* nameOf<double> = "number";
template <>
constexpr const char* nameOf<std::string> = "string";
template <>
constexpr const char* nameOf<AAFURL> = "url";
template <>
constexpr const char* nameOf<AAFRational> = "rational";

template <>
constexpr const char* nameOf<AAFStemRole> = "stemRole";
template <>
constexpr const char* nameOf<AAFChannelRole> = "channelRole";
template <>
constexpr const char* nameOf<AAFFade::Direction> = "fadeDirection";
template <>
constexpr const char* nameOf<AAFUnsupportedFeature::Severity> = "severity";
template <>
constexpr const char* nameOf<Protocol::Request::Operation> = "operation";

template <>
constexpr const char* nameOf<AAFTimecodeRate> = "timecodeRate";
template <>
constexpr const char* nameOf<AAFTimecodeAddress> = "timecodeAddress";
template <>
constexpr const char* nameOf<AAFProgramClock> = "clock";
template <>
constexpr const char* nameOf<Curve> = "interpolation";
template <>
constexpr const char* nameOf<Curve::Linear> = "object";
template <>
constexpr const char* nameOf<Curve::Constant> = "object";
template <>
constexpr const char* nameOf<Curve::Power> = "object";
template <>
constexpr const char* nameOf<Curve::Logarithmic> = "object";
template <>
constexpr const char* nameOf<Curve::Unsupported> = "unsupportedCurve";
template <>
constexpr const char* nameOf<AAFAutomationPoint> = "point";
template <>
constexpr const char* nameOf<AAFAutomationEnvelope> = "envelope";
template <>
constexpr const char* nameOf<AAFFade> = "fade";
template <>
constexpr const char* nameOf<AAFSourceEssence> = "essence";
template <>
constexpr const char* nameOf<AAFTrackState> = "track";
template <>
constexpr const char* nameOf<AAFSemanticDecision> = "semanticDecision";
template <>
constexpr const char* nameOf<AAFClipEvent::ExportTrackNameOrigin> = "exportTrackNameOrigin";
template <>
constexpr const char* nameOf<AAFClipEvent> = "event";
template <>
constexpr const char* nameOf<AAFUnsupportedFeature> = "unsupportedFeature";
template <>
constexpr const char* nameOf<AAFTimeline> = "timeline";
template <>
constexpr const char* nameOf<LossKind> = "lossKind";
template <>
constexpr const char* nameOf<AAFWorkerExtensions> = "extensions";
template <>
constexpr const char* nameOf<AAFWorkerExtensions::LossPlace> = "lossPlace";
template <>
constexpr const char* nameOf<AAFWorkerExtensions::LossPlaces> = "lossPlaces";
template <>
constexpr const char* nameOf<AAFWorkerExtensions::Composition> = "composition";
template <>
constexpr const char* nameOf<AAFWorkerExtensions::Compositions> = "compositions";
template <>
constexpr const char* nameOf<AAFWorkerExtensions::SeparateFile> = "separateFile";
template <>
constexpr const char* nameOf<AAFWorkerExtensions::EmbeddedMedia> = "embeddedMedia";
template <>
constexpr const char* nameOf<AAFWorkerExtensions::Dates> = "dates";
template <>
constexpr const char* nameOf<AAFWorkerExtensions::ReelTimecode> = "reelTimecode";
template <>
constexpr const char* nameOf<AAFWorkerExtensions::Reel> = "reel";
template <>
constexpr const char* nameOf<AAFWorkerExtensions::Reels> = "reels";
template <>
constexpr const char* nameOf<AAFWorkerExtensions::MasterMob> = "masterMob";
template <>
constexpr const char* nameOf<AAFWorkerExtensions::MasterMobs> = "masterMobs";
template <>
constexpr const char* nameOf<AAFWorkerExtensions::MediaLength> = "mediaLength";
template <>
constexpr const char* nameOf<AAFWorkerExtensions::Contents> = "contents";
template <>
constexpr const char* nameOf<AAFWorkerExtensions::Application> = "application";
template <>
constexpr const char* nameOf<AAFWorkerExtensions::Provenance> = "provenance";
template <>
constexpr const char* nameOf<AAFWorkerExtensions::SamplePiece> = "samplePiece";
template <>
constexpr const char* nameOf<AAFWorkerExtensions::Samples> = "samples";
template <>
constexpr const char* nameOf<AAFWorkerExtensions::SampleData> = "sampleData";
template <>
constexpr const char* nameOf<AAFWorkerExtensions::OlderModel> = "olderModel";
template <>
constexpr const char* nameOf<Protocol::Request> = "request";
template <>
constexpr const char* nameOf<Protocol::Progress> = "progress";
template <>
constexpr const char* nameOf<Protocol::Result> = "result";

class Tables {
  public:
    /// Takes in what a `T` is made of and gives its shape.
    template <class T>
    std::string shape() {
        if constexpr (Vector<T>) {
            return "array of " + shape<typename T::value_type>();
        } else if constexpr (TextMap<T>) {
            return "map of " + shape<typename T::mapped_type>();
        } else {
            static_assert(nameOf<T> != nullptr, "a kind of value that has no name");
            if constexpr (NamedEnum<T>) {
                enums_[nameOf<T>].assign(EnumNames<T>::names.begin(), EnumNames<T>::names.end());
            } else if constexpr (Record<T>) {
                addRecord<T>(std::make_index_sequence<fieldCount<T>>{});
            } else if constexpr (TaggedVariant<T>) {
                addVariant<T>(std::make_index_sequence<VariantCases<T>::names.size()>{});
            }
            return nameOf<T>;
        }
    }

    void write(JsonWriter& writer) const {
        writer.beginObject();
        writer.plainKey("records");
        writer.beginObject();
        for (const auto& [name, fields] : records_) {
            writer.key(name);
            writer.beginObject();
            for (const auto& [key, value] : fields) {
                writer.key(key);
                writer.string(value);
            }
            writer.endObject();
        }
        writer.endObject();
        writer.plainKey("enums");
        writer.beginObject();
        for (const auto& [name, values] : enums_) {
            writer.key(name);
            writer.beginArray();
            for (const std::string& value : values) {
                writer.string(value);
            }
            writer.endArray();
        }
        writer.endObject();
        writer.endObject();
    }

  private:
    using Fields = std::map<std::string, std::string>;

    template <class Value>
    std::string fieldText() {
        if constexpr (PresenceHolder<Value>) {
            return "optional " + shape<typename Value::value_type>();
        } else {
            return "required " + shape<Value>();
        }
    }

    template <class R, std::size_t... I>
    void addRecord(std::index_sequence<I...> /*fields*/) {
        if constexpr (sizeof...(I) > 0) {
            Fields fields;
            (fields.emplace(fieldKeys<R>[I], fieldText<FieldValue<R, I>>()), ...);
            records_[nameOf<R>] = std::move(fields);
        }
    }

    template <class V, std::size_t... I>
    void addVariant(std::index_sequence<I...> /*cases*/) {
        Fields fields;
        (fields.emplace(VariantCases<V>::names[I],
                        "optional " + shape<std::variant_alternative_t<I, VariantOf<V>>>()),
         ...);
        records_[nameOf<V>] = std::move(fields);
    }

    std::map<std::string, Fields> records_;
    std::map<std::string, std::vector<std::string>> enums_;
};

}  // namespace

void printTables(std::ostream& out) {
    Tables tables;
    static_cast<void>(tables.shape<Protocol::Request>());
    static_cast<void>(tables.shape<Protocol::Progress>());
    static_cast<void>(tables.shape<Protocol::Result>());
    StringSink sink;
    JsonWriter writer(sink);
    tables.write(writer);
    writer.flush();
    out << sink.text << '\n';
}

}  // namespace trellant::test
