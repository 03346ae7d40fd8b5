// SPDX-License-Identifier: Apache-2.0
// `trellant extract`: the audio of files, each piece in a file of its own.
#include "extract/extract.h"

#include "extract/extractor.h"
#include "extract/folder_names.h"
#include "extract/salvager.h"
#include "extract/staged_run.h"

#include <trellant/extraction/extraction.h>

namespace trellant::cli {

ExitStatus runExtract(const ExtractOptions& given, Console& console, const StopToken& stop) {
    ExtractOptions options = given;
    if (const auto message = wrongFolders(options.call.directory, options.call.mediaFolders,
                                          options.call.bag ? "--bag" : "--to")) {
        console.error(*message);
        return ExitStatus::wrongUse;
    }
    if (!options.call.wav) {
        options.waveConverter.reset();
    } else if (!options.waveConverter) {
        options.waveConverter = installedWaveConverter();
        if (!options.waveConverter) {
            console.error(
                "the program trellant-wav, which writes WAVE files, is missing. It "
                "belongs to this one; please install Trellant again, or leave out --wav");
            return ExitStatus::fileFailed;
        }
    }
    ExitStatus status = ExitStatus::done;
    const std::vector<std::string> folders = foldersFor(options.call.files, options.call.directory);
    if (options.call.salvage) {
        Salvager salvager(options.call, console);
        for (std::size_t i = 0; i < folders.size(); ++i) {
            status = worse(status, salvager.run({options.call.files[i], folders[i]}));
        }
        return status;
    }
    Extractor extractor(options, console, stop);
    for (std::size_t i = 0; i < folders.size(); ++i) {
        status = worse(status, extractor.run({options.call.files[i], folders[i]}));
        if (stop.stop_requested()) {
            return ExitStatus::fileFailed;
        }
    }
    return status;
}

}  // namespace trellant::cli
