// SPDX-License-Identifier: Apache-2.0
#include "export_fixture.h"

#include <algorithm>
#include <filesystem>
#include <trellant_testing/byte_writer.h>
#include <trellant_testing/worker_process.h>

namespace trellant::testing {

namespace fs = std::filesystem;

cli::ExportOptions ExportTest::exporting(const std::string& file,
                                         exchange::ExportFormat format) const {
    cli::ExportOptions options;
    options.call.files = {file};
    options.call.directory = out();
    options.call.format = format;
    options.helperURLProvider = [](const std::string&) { return workerPath(); };
    options.waveConverter = TRELLANT_WAV;
    return options;
}

Said ExportTest::exported(const cli::ExportOptions& options, const Setting& setting,
                          const StopToken& stop) const {
    return saidWithStatus(setting, [&](cli::Console& console) {
        return static_cast<int>(cli::runExport(options, console, stop));
    });
}

std::string ExportTest::exportWell(const cli::ExportOptions& options) const {
    const Said said = exported(options);
    EXPECT_EQ(said.status, 0) << said.errors;
    return said.out;
}

nlohmann::json ExportTest::losses(const std::string& name) const {
    return nlohmann::json::parse(textOf(readFile(out(name + ".losses.json"))));
}

std::vector<std::string> ExportTest::written() const {
    std::vector<std::string> names;
    for (const auto& entry : fs::recursive_directory_iterator(out())) {
        if (!entry.is_directory()) {
            names.push_back(fs::relative(entry.path(), out()).native());
        }
    }
    std::sort(names.begin(), names.end());
    return names;
}

}  // namespace trellant::testing
