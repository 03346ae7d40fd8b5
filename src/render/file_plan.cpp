// SPDX-License-Identifier: Apache-2.0
#include "file_plan.h"

#include "sound.h"

#include <trellant/base/keyed_hash.h>
#include <trellant/base/numbered_name.h>
#include <trellant/base/text.h>
#include <trellant/exchange/file_stem.h>
#include <trellant/model/timecode_label.h>

#include <algorithm>
#include <string>
#include <utility>

namespace trellant::render {

namespace {

using exchange::ExportPlan;
using exchange::PlannedClip;
using exchange::PlannedTrack;
using exchange::Samples;

/// Room for a number and an extension in a name of 255 bytes.
constexpr std::size_t mostStemBytes = 180;

std::int64_t framesOfADay(const AAFTimecodeRate& rate) {
    return AAFTimecodeAddress(23, 59, 59, rate.nominalFramesPerSecond - 1, rate)
               .absoluteFrameNumber() +
           1;
}

Samples samplesOf(std::int64_t frames, const ExportPlan& plan) {
    return (AAFRational(frames) / plan.start.rate.exactRate * AAFRational(plan.rate))
        .roundedInt64();
}

/// A session may run over midnight.
Samples sampleAt(const std::string& label, const ExportPlan& plan) {
    const AAFTimecodeRate& rate = plan.start.rate;
    const auto frame = frameOfLabel(label, rate);
    if (!frame) {
        throw RenderRefusal("no frame of this session has the timecode " + label);
    }
    std::int64_t frames = *frame - plan.start.absoluteFrameNumber();
    if (frames < 0) {
        frames += framesOfADay(rate);
        if (samplesOf(frames, plan) > plan.length) {
            throw RenderRefusal("the timecode " + label +
                                " lies before the session, which begins at " +
                                plan.start.description());
        }
    }
    return samplesOf(frames, plan);
}

/// "07": two digits at least.
std::string digits(std::size_t number, std::size_t least) {
    std::string text = std::to_string(number);
    return text.size() < least ? std::string(least - text.size(), '0') + text : text;
}

std::string stemOf(const std::string& name) {
    return std::string(prefixOfClusters(exchange::fileStem(name, exchange::NameKind::name),
                                        mostStemBytes, mostStemBytes));
}

class Files {
  public:
    Files(const RenderRequest& request, const ExportPlan& plan, const PlayedFiles& played,
          const SessionPart& part)
        : request_(request), plan_(plan), played_(played), part_(part) {}

    [[nodiscard]] std::vector<RenderedFile> all() && {
        if (request_.kind == RenderKind::mix) {
            addMix();
        } else {
            for (std::size_t i = 0; i < plan_.tracks.size(); ++i) {
                request_.kind == RenderKind::tracks ? addTrack(i) : addClips(i);
            }
        }
        return std::move(files_);
    }

  private:
    [[nodiscard]] bool isPlayed(const PlannedClip& clip) const {
        return clip.start < part_.end && clip.end() > part_.first;
    }

    [[nodiscard]] bool isResampled(const PlannedClip& clip) const {
        return played_[clip.media] && plan_.media[clip.media].sampleRate != AAFRational(plan_.rate);
    }

    void count(RenderedFile& file, const PlannedTrack& track) const {
        for (const PlannedClip& clip : track.lanes.front().clips) {
            if (isPlayed(clip)) {
                ++file.clips;
                file.silentClips += played_[clip.media] ? 0U : 1U;
                file.resampledClips += isResampled(clip) ? 1U : 0U;
            }
        }
    }

    void addMix() {
        RenderedFile file{.channels = 2,
                          .format = request_.format.value_or(audio::PcmFormat{}),
                          .start = part_.first,
                          .length = part_.end - part_.first};
        for (const std::size_t track : heardTracks(plan_)) {
            count(file, plan_.tracks[track]);
        }
        add(std::move(file), "mix");
    }

    void addTrack(std::size_t number) {
        const PlannedTrack& track = plan_.tracks[number];
        if (track.lanes.front().clips.empty()) {
            return;
        }
        RenderedFile file{.track = number,
                          .format = formatFor(track.lanes.front().clips),
                          .start = part_.first,
                          .length = part_.end - part_.first};
        count(file, track);
        add(std::move(file), digits(number + 1, 2) + " " + stemOf(track.name));
    }

    void addClips(std::size_t number) {
        const std::vector<PlannedClip>& clips = plan_.tracks[number].lanes.front().clips;
        for (std::size_t i = 0; i < clips.size(); ++i) {
            const PlannedClip& clip = clips[i];
            if (!isPlayed(clip) || !played_[clip.media]) {
                continue;
            }
            RenderedFile file{.track = number,
                              .clip = i,
                              .format = formatFor(std::span(&clip, 1)),
                              .clips = 1,
                              .resampledClips = isResampled(clip) ? 1U : 0U};
            setHandles(file, clip);
            add(std::move(file),
                digits(number + 1, 2) + "-" + digits(i + 1, 3) + " " + stemOf(clip.name));
        }
    }

    /// As long as the media go, and not before midnight, where no time reference is.
    void setHandles(RenderedFile& file, const PlannedClip& clip) const {
        const Samples wanted = (request_.handles * AAFRational(plan_.rate)).roundedInt64();
        const Samples frames = framesOf(*played_[clip.media]);
        const Samples head = std::max<Samples>(
            0, std::min({wanted, clip.sourceStart, samplesFromMidnight(plan_) + clip.start}));
        const Samples tail =
            std::max<Samples>(0, std::min(wanted, frames - clip.sourceStart - clip.length));
        file.start = clip.start - head;
        file.length = head + clip.length + tail;
    }

    /// Edits keep the bits of their media where these agree.
    [[nodiscard]] audio::PcmFormat formatFor(std::span<const PlannedClip> clips) const {
        if (request_.format || request_.treatment != Treatment::edits) {
            return request_.format.value_or(audio::PcmFormat{});
        }
        std::optional<audio::PcmFormat> common;
        for (const PlannedClip& clip : clips) {
            if (!isPlayed(clip) || !played_[clip.media]) {
                continue;
            }
            const audio::PcmFormat format = formatOf(*played_[clip.media]);
            if (common && *common != format) {
                return {};
            }
            common = format;
        }
        return common && audio::isPcmFormat(*common) ? *common : audio::PcmFormat{};
    }

    void add(RenderedFile file, const std::string& stem) {
        refuseBeyondBounds(file);
        const NumberedName name{stem, "wav"};
        std::uint64_t& number = nextNumbers_.emplace(lowerCased(stem), 1).first->second;
        file.name = name.withNumber(number);
        while (!taken_.insert(lowerCased(file.name)).second) {
            file.name = name.withNumber(++number);
        }
        files_.push_back(std::move(file));
    }

    void refuseBeyondBounds(const RenderedFile& file) const {
        constexpr Samples secondsOfHour = 3'600;
        const Samples hour = secondsOfHour * plan_.rate;
        if (file.length > mostHours * hour) {
            throw RenderRefusal(
                (file.clip ? "a clip and its handles are " : "what is to be rendered is ") +
                std::to_string((file.length - 1) / hour + 1) + " hours long, and a file has " +
                std::to_string(mostHours) +
                " at most; --from and --until name a part, and leave out other clips");
        }
        if (files_.size() == mostFiles) {
            throw RenderRefusal("there would be more than " + std::to_string(mostFiles) +
                                " files; --from and --until name a part");
        }
    }

    const RenderRequest& request_;
    const ExportPlan& plan_;
    const PlayedFiles& played_;
    const SessionPart& part_;
    std::vector<RenderedFile> files_;
    KeyedSet<std::string> taken_;
    KeyedMap<std::string, std::uint64_t> nextNumbers_;
};

}  // namespace

std::int64_t samplesFromMidnight(const ExportPlan& plan) {
    return std::max<Samples>(0, samplesOf(plan.start.absoluteFrameNumber(), plan));
}

SessionPart sessionPart(const RenderRequest& request, const ExportPlan& plan) {
    SessionPart part{request.from ? sampleAt(*request.from, plan) : 0,
                     request.until ? sampleAt(*request.until, plan) : plan.length};
    part.end = std::min(part.end, plan.length);
    if (request.from && part.first >= plan.length) {
        throw RenderRefusal("the timecode " + *request.from + " lies behind the session's end");
    }
    if (request.until && part.first >= part.end) {
        throw RenderRefusal("--until " + *request.until +
                            " does not lie behind the start of what is to be rendered");
    }
    return part;
}

std::vector<RenderedFile> plannedFiles(const RenderRequest& request, const ExportPlan& plan,
                                       const PlayedFiles& played, const SessionPart& part) {
    return Files(request, plan, played, part).all();
}

}  // namespace trellant::render
