// SPDX-License-Identifier: Apache-2.0
#include <trellant/base/localization.h>
#include <trellant/client/errors.h>

#include <utility>

namespace trellant {

namespace {

struct Describe {
    std::string operator()(const AAFWorkerClientError::LaunchFailed& fault) const {
        return "helper launch failed: " + fault.reason;
    }
    std::string operator()(const AAFWorkerClientError::NonZeroExit& fault) const {
        return "helper exited with " + std::to_string(fault.status) + ": " + fault.logLines;
    }
    std::string operator()(const AAFWorkerClientError::InvalidResponse& fault) const {
        return "helper returned an invalid response: " + fault.reason;
    }
    std::string operator()(const AAFWorkerClientError::HelperMissing&) const {
        return "bundled AAF helper missing";
    }
};

}  // namespace

AAFWorkerClientError::AAFWorkerClientError(Fault fault)
    : fault_(std::move(fault)), technicalDetail_(std::visit(Describe{}, fault_)) {}

AAFWorkerClientError AAFWorkerClientError::launchFailed(std::string reason,
                                                        LaunchFailed::Cause cause) {
    return AAFWorkerClientError(LaunchFailed{std::move(reason), cause});
}

AAFWorkerClientError AAFWorkerClientError::nonZeroExit(std::int32_t status, std::string logLines) {
    return AAFWorkerClientError(NonZeroExit{status, std::move(logLines)});
}

AAFWorkerClientError AAFWorkerClientError::invalidResponse(std::string reason,
                                                           InvalidResponse::Kind kind,
                                                           std::string keyPath) {
    return AAFWorkerClientError(InvalidResponse{std::move(reason), kind, std::move(keyPath)});
}

AAFWorkerClientError AAFWorkerClientError::helperMissing(
    std::string helperName, std::vector<std::filesystem::path> searched) {
    return AAFWorkerClientError(HelperMissing{std::move(helperName), std::move(searched)});
}

std::string AAFWorkerClientError::errorDescription() const {
    if (std::holds_alternative<HelperMissing>(fault_)) {
        return localizedText("aaf.error.parserMissing",
                             "The part that reads interchange files is missing. Please install "
                             "the application again.");
    }
    return localizedText("aaf.error.parserFailed",
                         "The interchange file could not be read. The log has the details.");
}

}  // namespace trellant
