// SPDX-License-Identifier: Apache-2.0
#include <trellant/base/keyed_hash.h>
#include <trellant/base/url.h>
#include <trellant/extraction/taken_out.h>

#include <chrono>
#include <filesystem>
#include <string_view>
#include <utility>
#include <vector>

namespace trellant {

namespace {

using Extensions = AAFWorkerExtensions;

std::optional<std::string> pathOf(const AAFSourceEssence& essence) {
    return essence.fileURL ? pathOfFileURL(essence.fileURL->text) : std::nullopt;
}

/// Sources that were written over one another get the files that hold the audio of each alone.
void separate(TakenOut& taken, const Staging& staging) {
    if (!taken.embedded) {
        return;
    }
    KeyedMap<std::string_view, const Extensions::SeparateFile*> files;
    for (const Extensions::SeparateFile& file : taken.embedded->separateFiles) {
        files.emplace(file.essenceID, &file);
    }
    for (AAFSourceEssence& essence : taken.handOff.timeline.essences) {
        const auto found = files.find(essence.id);
        if (found == files.end() || !essence.embedded) {
            continue;
        }
        const std::optional<std::string>& path = found->second->path;
        essence.fileURL =
            path && staging.holds(*path) ? std::optional(fileURL(*path)) : std::nullopt;
    }
}

/// Says how much lies in the hidden folder by now. A look takes a call of the system for each file,
/// so that looks become rarer as files become many.
class Arrivals {
  public:
    Arrivals(const Staging& staging, WorkProgress& progress)
        : staging_(staging), progress_(progress) {}

    void look() {
        const auto begun = Clock::now();
        if (begun < next_) {
            return;
        }
        constexpr int restPerLook = 50;
        progress_.at(staging_.bytes());
        const auto done = Clock::now();
        next_ = done + restPerLook * (done - begun);
    }

  private:
    using Clock = std::chrono::steady_clock;

    const Staging& staging_;
    WorkProgress& progress_;
    Clock::time_point next_{};
};

}  // namespace

/// The worker gets no media folder: it would take a file by its name alone, and what an earlier run
/// wrote too. Our own search compares what is in the files.
TakenOut takeOut(const std::string& file, const Staging& staging,
                 const AAFWorkerClient::HelperURLProvider& helperURLProvider,
                 WorkProgress& progress, bool contents) {
    std::vector<std::string> extensions{
        std::string(Extensions::lossPlacesName),    std::string(Extensions::compositionsName),
        std::string(Extensions::embeddedMediaName), std::string(Extensions::datesName),
        std::string(Extensions::reelsName),         std::string(Extensions::masterMobsName),
        std::string(Extensions::omf1Name)};
    if (contents) {
        extensions.emplace_back(Extensions::contentsName);
    }
    progress.begin("Taking the audio out", bytesOfFile(std::filesystem::absolute(file).native()));
    Arrivals arrivals(staging, progress);
    AAFWorkerProtocol::Result answer =
        askWorker({.file = file,
                   .operation = AAFWorkerProtocol::Request::Operation::extractAndInspect,
                   .workDirectory = staging.path(),
                   .extensions = std::move(extensions),
                   .helperURLProvider = helperURLProvider},
                  progress.stop(), {}, [&] { arrivals.look(); });
    progress.check();
    TakenOut taken;
    if (const Boxed<Extensions>& said = answer.extensions) {
        taken.embedded = said->embeddedMedia;
    }
    taken.handOff = handOffOf(std::move(answer));
    // A file is moved from where the worker says it is: only what it was told to write is ours.
    for (AAFSourceEssence& essence : taken.handOff.timeline.essences) {
        const auto path = pathOf(essence);
        if (essence.embedded && (!path || !staging.holds(*path))) {
            essence.fileURL.reset();
        }
    }
    separate(taken, staging);
    return taken;
}

}  // namespace trellant
