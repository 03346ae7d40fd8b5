// SPDX-License-Identifier: Apache-2.0
// The two documents of a DAWproject.
#pragma once

#include <trellant/compound/byte_source.h>
#include <trellant/sessions/session.h>

#include <string>

namespace trellant::sessions {

/// "audio/Anna.wav".
[[nodiscard]] std::string dawProjectMemberName(const exchange::PlannedMedia& media);
/// Whether the archive holds the file itself.
[[nodiscard]] bool isDawProjectMember(const SessionMedia& media);

/// project.xml
void writeDawProjectDocument(const Session& session, const compound::ByteSink& sink);
/// metadata.xml
void writeDawProjectMetadata(const Session& session, const compound::ByteSink& sink);

}  // namespace trellant::sessions
