// SPDX-License-Identifier: Apache-2.0
// project.xml and metadata.xml, both deflated, then the embedded audio as it is.
#include "dawproject_document.h"
#include "session_text.h"
#include "zip_archive.h"

namespace trellant::sessions {

void writeDawProject(const Session& session, const PlacedSink& sink) {
    ZipArchive archive(sink, session.date);
    const std::uint64_t mostBytes = mostTextBytes(session);
    archive.add("project.xml", ZipArchive::Packing::deflated, mostBytes,
                [&session](const compound::ByteSink& document) {
                    writeDawProjectDocument(session, document);
                });
    archive.add("metadata.xml", ZipArchive::Packing::deflated, mostBytes,
                [&session](const compound::ByteSink& document) {
                    writeDawProjectMetadata(session, document);
                });
    for (std::size_t i = 0; i < session.media.size(); ++i) {
        const SessionMedia& media = session.media[i];
        if (isDawProjectMember(media)) {
            archive.addFile(dawProjectMemberName(session.plan.media.at(i)), media.wave->path,
                            media.wave->byteCount);
        }
    }
    archive.finish();
}

}  // namespace trellant::sessions
