// SPDX-License-Identifier: Apache-2.0
#include "decoding_error.h"

#include <trellant/model/timeline_json.h>

#include <gtest/gtest.h>

#include <string>

namespace trellant {
namespace {

using Curve = AAFAutomationInterpolation;
using test::decodingError;

constexpr const char* oneKeyMessage = "Invalid number of keys found, expected one.";

TEST(InterpolationJson, EveryCaseDecodes) {
    EXPECT_EQ(decodeJson<Curve>(R"({"constant":{}})"), Curve::constant());
    EXPECT_EQ(decodeJson<Curve>(R"({"linear":{}})"), Curve::linear());
    EXPECT_EQ(decodeJson<Curve>(R"({"power":{}})"), Curve::power());
    EXPECT_EQ(decodeJson<Curve>(R"({"logarithmic":{}})"), Curve::logarithmic());
}

TEST(InterpolationJson, UnsupportedKeepsItsIdentifier) {
    EXPECT_EQ(decodeJson<Curve>(R"({"unsupported":{"identifier":"x"}})"), Curve::unsupported("x"));
}

TEST(InterpolationJson, UnknownKeysOfThePayloadAreIgnored) {
    EXPECT_EQ(decodeJson<Curve>(R"({"linear":{"identifier":[{}]}})"), Curve::linear());
}

TEST(InterpolationJson, NoKeyFails) {
    EXPECT_EQ(decodingError<Curve>("{}"), oneKeyMessage);
}

TEST(InterpolationJson, TwoKeysFail) {
    EXPECT_EQ(decodingError<Curve>(R"({"linear":{},"power":{}})"), oneKeyMessage);
    EXPECT_EQ(decodingError<Curve>(R"({"linear":{},"spline":{}})"), oneKeyMessage);
    EXPECT_EQ(decodingError<Curve>(R"({"spline":{},"linear":{}})"), oneKeyMessage);
}

TEST(InterpolationJson, TwoUnknownKeysAreTwoKeys) {
    EXPECT_EQ(decodingError<Curve>(R"({"spline":{},"bezier":{}})"), oneKeyMessage);
    EXPECT_EQ(decodingError<Curve>(R"({"spline":{},"bezier":{},"hermite":{}})"), oneKeyMessage);
    EXPECT_EQ(decodingError<Curve>(R"({"spline":{},"linear":{},"bezier":{}})"), oneKeyMessage);
}

TEST(InterpolationJson, TheSameKeyTwiceIsOneKey) {
    EXPECT_EQ(
        decodeJson<Curve>(R"({"unsupported":{"identifier":"x"},"unsupported":{"identifier":"y"}})"),
        Curve::unsupported("y"));
}

TEST(InterpolationJson, UnknownCaseFails) {
    EXPECT_EQ(decodingError<Curve>(R"({"spline":{}})"), "the key is none of the known cases");
    EXPECT_EQ(decodingError<Curve>(R"({"Linear":{}})"), "the key is none of the known cases");
}

TEST(InterpolationJson, FaultsNameTheKeyPathOfTheirOwner) {
    EXPECT_EQ(decodingError<AAFAutomationEnvelope>(R"({"points":[],"interpolation":{}})"),
              std::string("interpolation: ") + oneKeyMessage);
}

TEST(InterpolationJson, ThePayloadMustBeAnObject) {
    EXPECT_EQ(decodingError<Curve>(R"({"linear":null})"), "linear: expected an object, found null");
    EXPECT_EQ(decodingError<Curve>(R"({"linear":[]})"),
              "linear: expected an object, found an array");
    EXPECT_EQ(decodingError<Curve>(R"({"unsupported":{}})"), "unsupported.identifier: missing key");
    EXPECT_EQ(decodingError<Curve>(R"("linear")"), "expected an object, found a string");
}

}  // namespace
}  // namespace trellant
