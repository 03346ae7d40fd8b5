// SPDX-License-Identifier: Apache-2.0
// Small OMF files, workers that do as a test wants, and rows read back.
#pragma once

#include <trellant/client/worker_client.h>
#include <trellant/scan/row.h>

#include <filesystem>
#include <optional>
#include <string>
#include <sys/stat.h>
#include <trellant_testing/byte_writer.h>
#include <trellant_testing/omf_builder.h>
#include <trellant_testing/temporary_directory.h>
#include <trellant_testing/wave_builder.h>
#include <trellant_testing/worker_process.h>

namespace trellant::testing {

inline AAFWorkerClient::HelperURLProvider realWorker() {
    return [](const std::string&) -> std::optional<std::filesystem::path> { return workerPath(); };
}

/// A worker that takes its request and then does what the shell's `words` say.
inline AAFWorkerClient::HelperURLProvider shellWorker(const TemporaryDirectory& folder,
                                                      const std::string& words) {
    const std::string path =
        writeFile(folder.file("worker.sh"), bytesOf("#!/bin/sh\ncat > /dev/null\n" + words + "\n"));
    ::chmod(path.c_str(), 0755);
    return [path](const std::string&) -> std::optional<std::filesystem::path> { return path; };
}

/// One track that plays one embedded WAVE file of these samples.
inline Bytes smallOmf(const std::string& clip = "Kick", const Bytes& samples = Bytes(960)) {
    OmfBuilder omf;
    const MobID source{1, 2, 3};
    omf.audioFile({.id = source,
                   .name = clip,
                   .media = waveImage({.samples = samples}),
                   .length = static_cast<std::int64_t>(samples.size() / 2)});
    omf.composition(
        {.name = "Song",
         .slots = {omf.slot({.editRate = Ratio{48'000},
                             .segment = omf.clip({.length = 480, .source = source})})}});
    return omf.build();
}

}  // namespace trellant::testing
