// SPDX-License-Identifier: Apache-2.0
// What an error says, as data, for the log and for a person.
#include <trellant/client/errors.h>

#include <gtest/gtest.h>

#include <string>
#include <type_traits>
#include <variant>

namespace trellant {

namespace {

using Error = AAFWorkerClientError;
using Fault = Error::Fault;

constexpr const char* parserFailed =
    "The interchange file could not be read. The log has the details.";
constexpr const char* parserMissing =
    "The part that reads interchange files is missing. Please install the application again.";

void expectSays(const Error& error, const Fault& fault, const std::string& detail,
                const std::string& description) {
    EXPECT_TRUE(error.fault() == fault) << error.what();
    EXPECT_EQ(error.technicalDetail(), detail);
    EXPECT_EQ(error.errorDescription(), description);
    EXPECT_EQ(std::string(error.what()), detail);
}

TEST(WorkerClientError, LaunchFailedCarriesTheReason) {
    expectSays(Error::launchFailed("no room"), Error::LaunchFailed{"no room"},
               "helper launch failed: no room", parserFailed);
}

TEST(WorkerClientError, NonZeroExitCarriesStatusAndLogLines) {
    expectSays(Error::nonZeroExit(2, "first\nsecond"), Error::NonZeroExit{2, "first\nsecond"},
               "helper exited with 2: first\nsecond", parserFailed);
}

TEST(WorkerClientError, NonZeroExitWithoutLogLinesKeepsTheColon) {
    expectSays(Error::nonZeroExit(255, ""), Error::NonZeroExit{255, ""},
               "helper exited with 255: ", parserFailed);
}

TEST(WorkerClientError, NonZeroExitCarriesEveryStatusOf32Bits) {
    EXPECT_EQ(Error::nonZeroExit(-2'147'483'647 - 1, "x").technicalDetail(),
              "helper exited with -2147483648: x");
    EXPECT_EQ(Error::nonZeroExit(2'147'483'647, "x").technicalDetail(),
              "helper exited with 2147483647: x");
}

TEST(WorkerClientError, InvalidResponseCarriesTheReason) {
    expectSays(Error::invalidResponse("protocol version mismatch"),
               Error::InvalidResponse{"protocol version mismatch"},
               "helper returned an invalid response: protocol version mismatch", parserFailed);
}

TEST(WorkerClientError, HelperMissingHasTextsOfItsOwn) {
    expectSays(Error::helperMissing(), Error::HelperMissing{}, "bundled AAF helper missing",
               parserMissing);
}

TEST(WorkerClientError, IsMadeFromAFaultToo) {
    expectSays(Error(Fault(Error::LaunchFailed{"no room"})), Error::LaunchFailed{"no room"},
               "helper launch failed: no room", parserFailed);
}

TEST(WorkerClientError, TextsOfALogAreCarriedAsTheyAre) {
    EXPECT_EQ(Error::nonZeroExit(1, "50 % of \x1b[1m\n").technicalDetail(),
              "helper exited with 1: 50 % of \x1b[1m\n");
}

TEST(WorkerClientError, CancellationIsATypeOfItsOwn) {
    EXPECT_EQ(std::string(AAFCancellationError().what()), "the call was cancelled");
    EXPECT_FALSE((std::is_base_of_v<Error, AAFCancellationError>));
    EXPECT_TRUE((std::is_base_of_v<std::exception, AAFCancellationError>));
}

}  // namespace

}  // namespace trellant
