// SPDX-License-Identifier: Apache-2.0
// What follows from a file and its place: the worker that reads it, the request that is sent.
#include <trellant/base/system_error_text.h>
#include <trellant/base/url.h>
#include <trellant/client/worker_client.h>

#include <algorithm>
#include <system_error>

namespace trellant {

namespace {

/// Throws AAFWorkerClientError launchFailed for a relative path where the current directory is
/// gone.
std::string absoluteText(const std::filesystem::path& path) {
    if (path.is_absolute()) {
        return path.native();
    }
    std::error_code failure;
    const std::filesystem::path directory = std::filesystem::current_path(failure);
    if (failure) {
        throw AAFWorkerClientError::launchFailed(
            "cannot tell the current directory: " + systemErrorText(failure.value()),
            AAFWorkerClientError::LaunchFailed::Cause::noCurrentDirectory);
    }
    return absolutePath(path.native(), directory.native());
}

/// Letters of ASCII only: the extensions that are looked for hold no others.
std::string lowerCased(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(), [](char letter) {
        return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
    });
    return text;
}

}  // namespace

AAFWorkerClient AAFWorkerClient::fuer(const std::filesystem::path& url) {
    const std::string extension =
        lowerCased((url.has_filename() ? url : url.parent_path()).extension().string());
    AAFWorkerClient client;
    if (extension == ".omf" || extension == ".omfi") {
        client.helperName = "trellant-omf";
    }
    return client;
}

AAFWorkerProtocol::Request AAFWorkerClient::inspection(
    const std::filesystem::path& aafURL, const std::filesystem::path& workDirectory,
    const std::optional<std::filesystem::path>& mediaSearchDirectory) {
    AAFWorkerProtocol::Request request{
        .protocolVersion = AAFWorkerProtocol::version,
        .operation = AAFWorkerProtocol::Request::Operation::extractAndInspect,
        .aafPath = absoluteText(aafURL),
        .workDirectory = absoluteText(workDirectory),
        .mediaSearchDirectory = std::nullopt,
        .recoverProToolsTrueFades = true,
        .removeProToolsSampleAccurateEditFragments = true};
    if (mediaSearchDirectory) {
        request.mediaSearchDirectory = absoluteText(*mediaSearchDirectory);
    }
    return request;
}

}  // namespace trellant
