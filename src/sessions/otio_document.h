// SPDX-License-Identifier: Apache-2.0
// The JSON of an OTIO file.
#pragma once

#include <trellant/compound/byte_source.h>
#include <trellant/sessions/session.h>

#include <cstdint>

namespace trellant::sessions {

/// How the file names its media: as the session does, or embedded ones as members of a bundle.
enum class OtioMedia { asReferenced, inBundle };

/// "media/Anna.wav".
[[nodiscard]] std::string otioMemberName(const exchange::PlannedMedia& media);
/// Whether a bundle holds the file itself.
[[nodiscard]] bool isOtioMember(const SessionMedia& media);

void writeOtioDocument(const Session& session, OtioMedia mediaNames,
                       const compound::ByteSink& sink);

}  // namespace trellant::sessions
