// SPDX-License-Identifier: Apache-2.0
#include <trellant/extraction/taken_out.h>
#include <trellant/listening/audible_hand_off.h>

#include <utility>

namespace trellant::listening {

AudibleHandOff::AudibleHandOff(const AudibleHandOffRequest& request, WorkProgress& progress)
    : audio_(request.directory),
      made_(request.directory),
      handOff_(std::move(
          takeOut(request.file, audio_, request.helperURLProvider, progress, request.contents)
              .handOff)) {
    findMedia(handOff_, request.file, request.mediaFolders, {}, progress);
    makeUsable(handOff_);
    if (request.contents) {
        measureMedia(handOff_, progress);
    }
}

bool AudibleHandOff::isStaged(std::string_view path) const {
    return path.starts_with(audio_.path() + "/") || path.starts_with(made_.path() + "/");
}

std::vector<SourceSound> AudibleHandOff::measure(const MeasureRequest& request,
                                                 WorkProgress& progress) const {
    return measureSources(handOff_.timeline, request, made_, progress);
}

std::vector<Preview> AudibleHandOff::previews(const std::vector<PreviewWish>& wishes,
                                              const PreviewRequest& request,
                                              WorkProgress& progress) const {
    return previewSources(handOff_.timeline, wishes, request, made_, progress);
}

}  // namespace trellant::listening
