// SPDX-License-Identifier: Apache-2.0
// content.otio and version.txt, both deflated, then the media as they are.
#include "otio_document.h"
#include "session_text.h"
#include "zip_archive.h"

#include <span>
#include <string_view>

namespace trellant::sessions {

void writeOtioBundle(const Session& session, const PlacedSink& sink) {
    constexpr std::string_view version = "1.0.0";
    ZipArchive archive(sink, session.date);
    archive.add("content.otio", ZipArchive::Packing::deflated, mostTextBytes(session),
                [&session](const compound::ByteSink& content) {
                    writeOtioDocument(session, OtioMedia::inBundle, content);
                });
    archive.add(
        "version.txt", ZipArchive::Packing::deflated, version.size(),
        [version](const compound::ByteSink& text) { text(std::as_bytes(std::span(version))); });
    for (std::size_t i = 0; i < session.media.size(); ++i) {
        const SessionMedia& media = session.media[i];
        if (isOtioMember(media)) {
            archive.addFile(otioMemberName(session.plan.media.at(i)), media.wave->path,
                            media.wave->byteCount);
        }
    }
    archive.finish();
}

}  // namespace trellant::sessions
