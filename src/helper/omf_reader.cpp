// SPDX-License-Identifier: Apache-2.0
#include "omf_reader.h"

#include "directories.h"
#include "extensions.h"
#include "memory_use.h"

#include <trellant/base/url.h>
#include <trellant/io/errors.h>
#include <trellant/mapper/mapper.h>
#include <trellant/omf/document.h>
#include <trellant/omf1/open.h>

#include <cerrno>
#include <utility>

namespace trellant {

namespace {

/// Progress once the document is open.
constexpr double progressAfterOpening = 0.15;

/// `path` as the system takes it: absolute. A NUL would silently cut it short.
std::string location(const std::string& path) {
    if (path.find('\0') != std::string::npos) {
        throw FileSystemError("use path", path, EINVAL);
    }
    if (path.starts_with('/')) {
        return path;
    }
    return absolutePath(path, currentDirectory());
}

/// A file of OMF 1.x only for hosts that know of it.
OMFDocument opened(const AAFWorkerProtocol::Request& request, const std::string& path) {
    if (asksFor(request, AAFWorkerExtensions::omf1Name)) {
        return openAnyOMF(path);
    }
    return OMFDocument(path);
}

}  // namespace

AAFWorkerProtocol::Result OMFReader::process(const AAFWorkerProtocol::Request& request,
                                             const Progress& progress,
                                             const WithinReach& withinReach) {
    // main has checked this already; callers beside it are protected too.
    if (request.protocolVersion != AAFWorkerProtocol::version) {
        throw OMFIOError::unsupported("worker protocol version " +
                                      std::to_string(request.protocolVersion));
    }
    MappingPlaces places{.sourcePath = location(request.aafPath),
                         .workDirectory = location(request.workDirectory)};
    if (request.mediaSearchDirectory) {
        places.mediaSearchDirectory = location(*request.mediaSearchDirectory);
    }
    places.extract = request.operation == AAFWorkerProtocol::Request::Operation::extractAndInspect;
    places.placesLosses = asksFor(request, AAFWorkerExtensions::lossPlacesName);
    if (places.extract) {
        createDirectories(places.workDirectory);
    }
    Reach reach{
        .source = places.sourcePath,
        .writableDirectory = places.extract ? std::optional(places.workDirectory) : std::nullopt,
        .searchedFolder = places.mediaSearchDirectory};
    // Opened while the process may still look there.
    const MemoryUse memory = asksFor(request, AAFWorkerExtensions::provenanceName)
                                 ? MemoryUse::ofProcess()
                                 : MemoryUse();
    withinReach(reach);
    const OMFDocument document = opened(request, places.sourcePath);
    progress(progressAfterOpening);
    Mapper mapper(document, std::move(places), [&](const std::vector<std::string>& files) {
        reach.files = files;
        withinReach(reach);
    });
    auto timeline = mapper.makeTimeline(progress);
    auto extensions = extensionsFor(request, document, mapper, timeline, memory);
    return {.protocolVersion = AAFWorkerProtocol::version,
            .timeline = std::move(timeline),
            .diagnostics = mapper.diagnostics(),
            .embeddedMediaSHA256 = std::nullopt,
            .extensions = std::move(extensions)};
}

}  // namespace trellant
