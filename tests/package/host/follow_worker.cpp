// SPDX-License-Identifier: Apache-2.0
// Three calls of the client: one followed to its end, one cancelled at its first progress, one
// that fails.
#include <trellant/client/worker_client.h>

#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <string>

namespace {

using Progress = trellant::AAFWorkerProtocol::Progress;

void follow(const trellant::AAFWorkerClient& client, const std::filesystem::path& file,
            const std::filesystem::path& workDirectory) {
    std::string phase;
    auto answer =
        client.inspect(file, workDirectory, std::nullopt, [&phase](const Progress& progress) {
            if (progress.phase != phase) {
                phase = progress.phase;
                std::cout << phase << '\n';
            }
        });
    const auto timeline = answer.get();
    std::cout << timeline.compositionName.value_or("(no name)") << ": " << timeline.tracks.size()
              << " tracks, " << timeline.events.size() << " events, " << timeline.essences.size()
              << " sources, " << timeline.unsupportedFeatures.size() << " losses\n";
}

void cancel(const trellant::AAFWorkerClient& client, const std::filesystem::path& file,
            const std::filesystem::path& workDirectory) {
    trellant::StopSource stop;
    auto answer = client.inspect(
        file, workDirectory, std::nullopt, [&stop](const Progress&) { stop.request_stop(); },
        stop.get_token());
    try {
        [[maybe_unused]] const auto timeline = answer.get();
        std::cout << "not cancelled\n";
    } catch (const trellant::AAFCancellationError& error) {
        std::cout << error.what() << '\n';
    }
}

void fail(const trellant::AAFWorkerClient& client, const std::filesystem::path& workDirectory) {
    try {
        [[maybe_unused]] const auto timeline =
            client.inspect("/no/such/file.omf", workDirectory).get();
        std::cout << "no failure\n";
    } catch (const trellant::AAFWorkerClientError& error) {
        std::cout << error.errorDescription() << '\n' << error.technicalDetail() << '\n';
    }
}

}  // namespace

int main(int count, char** arguments) {
    if (count != 3) {
        return EXIT_FAILURE;
    }
    const auto client = trellant::AAFWorkerClient::fuer(arguments[1]);
    follow(client, arguments[1], arguments[2]);
    cancel(client, arguments[1], arguments[2]);
    fail(client, arguments[2]);
}
