// What `trellant list` lists: tracks, clips, audio files and losses, a row each.
#pragma once

#include "inspection.h"
#include "listing.h"

namespace trellant::cli {

[[nodiscard]] Listing listTracks(const Inspection& inspection);
[[nodiscard]] Listing listClips(const Inspection& inspection);
[[nodiscard]] Listing listSources(const Inspection& inspection);
/// For sheets and programs; people read loss blocks.
[[nodiscard]] Listing listLosses(const Inspection& inspection);

}  // namespace trellant::cli
