// SPDX-License-Identifier: Apache-2.0
// Which texts are requests, and what is said of those that are none.
#include "worker_fixture.h"

namespace trellant::testing {

namespace {

class HelperRequests : public WorkerTest {
  protected:
    [[nodiscard]] RequestText request() const {
        return requestFor("inspect", source_, path("work"));
    }
    void expectAccepted(const std::string& json) const {
        const auto run = runText(json);
        EXPECT_EQ(run.errors, oneSlotProgress());
        EXPECT_EQ(run.output, oneClipResult(jsonFileURL(source_)));
        EXPECT_EQ(run.status, 0);
    }
    [[nodiscard]] const std::string& source() const { return source_; }

  private:
    std::string source_ = oneClipFile();
};

TEST_F(HelperRequests, EmptyInputIsRejected) {
    expectRejected(runText(""), "empty request on stdin");
}

TEST_F(HelperRequests, InputThatIsClosedFromTheStartIsEmpty) {
    expectRejected(runWorker({}), "empty request on stdin");
}

TEST_F(HelperRequests, WhitespaceIsNotEmptyButNoJson) {
    expectInvalidJson(runText(" "), "syntax error at line 1, column ");
    expectInvalidJson(runText("\n\n\t"), "syntax error at line 3, column ");
}

TEST_F(HelperRequests, WhitespaceAroundAndWithinIsFine) {
    RequestText spaced = request();
    spaced.protocolVersion = " \r\n1\t";
    expectAccepted("\n " + spaced.json() + "\r\n\t ");
}

TEST_F(HelperRequests, ByteOrderMarkIsSkipped) {
    expectAccepted("\xEF\xBB\xBF" + request().json());
}

TEST_F(HelperRequests, SyntaxErrorNamesItsPlace) {
    expectInvalidJson(runText("{x}"), "syntax error at line 1, column 2: ");
    expectInvalidJson(runText("{\n  nothing"), "syntax error at line 2, column ");
    expectInvalidJson(runText("{'operation':'inspect'}"), "syntax error at line 1, column 2: ");
}

TEST_F(HelperRequests, WrongVersionIsRejectedBeforeAnyProgress) {
    const auto rejects = [&](std::string number, std::string_view inDecimal) {
        RequestText wrong = request();
        wrong.protocolVersion = std::move(number);
        expectRejected(run(wrong), std::string("unsupported protocol version ").append(inDecimal));
    };
    rejects("0", "0");
    rejects("2", "2");
    rejects("-1", "-1");
    rejects("2e1", "20");
    rejects("9223372036854775807", "9223372036854775807");
}

TEST_F(HelperRequests, VersionIsCheckedAfterTheWholeRequestIsRead) {
    RequestText wrong = request();
    wrong.protocolVersion = "2";
    wrong.recoverProToolsTrueFades = "";
    expectRejected(run(wrong), "invalid request JSON: recoverProToolsTrueFades: missing key");
}

TEST_F(HelperRequests, AnyWholeNumberTextIsAnInteger) {
    for (const std::string_view one : {"1.0", "1e0", "1E+0", "10e-1", "0.1e1", "1.000"}) {
        SCOPED_TRACE(one);
        RequestText accepted = request();
        accepted.protocolVersion = one;
        expectAccepted(accepted.json());
    }
}

TEST_F(HelperRequests, VersionThatIsNoIntegerIsInvalid) {
    const auto rejects = [&](std::string version, std::string_view reason) {
        SCOPED_TRACE(version);
        RequestText wrong = request();
        wrong.protocolVersion = std::move(version);
        expectRejected(run(wrong),
                       std::string("invalid request JSON: protocolVersion: ").append(reason));
    };
    rejects("1.5", "the number is not whole");
    rejects("1e-1", "the number is not whole");
    rejects("9223372036854775808", "the number is out of range");
    rejects("1e400", "the number is out of range");
    rejects("\"1\"", "expected an integer, found a string");
    rejects("true", "expected an integer, found a boolean");
    rejects("null", "expected an integer, found null");
    rejects("[1]", "expected an integer, found an array");
    rejects("{}", "expected an integer, found an object");
}

TEST_F(HelperRequests, EveryRequiredKeyIsRequired) {
    const auto rejects = [&](std::string RequestText::*member, std::string_view key) {
        RequestText incomplete = request();
        incomplete.*member = "";
        expectRejected(run(incomplete),
                       std::string("invalid request JSON: ").append(key).append(": missing key"));
    };
    rejects(&RequestText::protocolVersion, "protocolVersion");
    rejects(&RequestText::operation, "operation");
    rejects(&RequestText::aafPath, "aafPath");
    rejects(&RequestText::workDirectory, "workDirectory");
    rejects(&RequestText::recoverProToolsTrueFades, "recoverProToolsTrueFades");
    rejects(&RequestText::removeProToolsSampleAccurateEditFragments,
            "removeProToolsSampleAccurateEditFragments");
}

TEST_F(HelperRequests, TypesAreStrict) {
    const auto rejects = [&](std::string RequestText::*member, std::string value,
                             std::string_view reason) {
        RequestText wrong = request();
        wrong.*member = std::move(value);
        expectRejected(run(wrong), std::string("invalid request JSON: ").append(reason));
    };
    rejects(&RequestText::aafPath, "null", "aafPath: expected a string, found null");
    rejects(&RequestText::workDirectory, "7", "workDirectory: expected a string, found a number");
    rejects(&RequestText::mediaSearchDirectory, "false",
            "mediaSearchDirectory: expected a string, found a boolean");
    rejects(&RequestText::recoverProToolsTrueFades, "0",
            "recoverProToolsTrueFades: expected a boolean, found a number");
    rejects(&RequestText::removeProToolsSampleAccurateEditFragments, "\"false\"",
            "removeProToolsSampleAccurateEditFragments: expected a boolean, found a string");
    expectRejected(runText("[]"), "invalid request JSON: expected an object, found an array");
    expectRejected(runText("null"), "invalid request JSON: expected an object, found null");
    expectRejected(runText("{}"), "invalid request JSON: protocolVersion: missing key");
}

TEST_F(HelperRequests, OperationIsComparedExactly) {
    for (const std::string_view operation : {"Inspect", "INSPECT", "inspect ", ""}) {
        expectRejected(run(requestFor(operation, source(), path("work"))),
                       std::string("invalid request JSON: operation: unknown value \"")
                           .append(operation)
                           .append("\""));
    }
}

TEST_F(HelperRequests, ReasonStaysOneLineWhateverTheRequestHolds) {
    RequestText wrong = request();
    wrong.operation = R"("in\nspect\r\u0007")";
    expectInvalidJson(run(wrong), "operation: unknown value \"");
}

TEST_F(HelperRequests, LogLineNeverBeginsWithTheProgressMarker) {
    RequestText wrong = request();
    wrong.operation = R"("TRELLANT-AAF-PROGRESS {}")";
    expectRejected(run(wrong),
                   "invalid request JSON: operation: unknown value \"TRELLANT-AAF-PROGRESS {}\"");
}

TEST_F(HelperRequests, SearchDirectoryMayBeNullOrMissing) {
    RequestText request = this->request();
    request.mediaSearchDirectory = "";
    expectAccepted(request.json());
    request.mediaSearchDirectory = "null";
    expectAccepted(request.json());
}

TEST_F(HelperRequests, HostOptionsChangeNothing) {
    RequestText request = this->request();
    request.recoverProToolsTrueFades = "true";
    request.removeProToolsSampleAccurateEditFragments = "true";
    expectAccepted(request.json());
}

TEST_F(HelperRequests, UnknownKeysAreIgnored) {
    RequestText request = this->request();
    request.more = R"(,"later":{"a":[1,-2.5e99,1e999,null,true,{"b":"\ud83d\ude00"}]},"":"",)"
                   R"("Operation":3)";
    expectAccepted(request.json());
}

TEST_F(HelperRequests, UnknownKeyMayNestAMillionLevels) {
    constexpr std::size_t levels = 1'000'000;
    RequestText request = this->request();
    request.more = ",\"deep\":" + std::string(levels, '[') + std::string(levels, ']');
    expectAccepted(request.json());
}

TEST_F(HelperRequests, MillionOpenLevelsAreASyntaxError) {
    constexpr std::size_t levels = 1'000'000;
    expectInvalidJson(runText(std::string(levels, '[')));
    expectInvalidJson(runText("{\"deep\":" + std::string(levels, '[')), "syntax error at line 1, ");
}

TEST_F(HelperRequests, NulBytesAreASyntaxError) {
    const std::string json = request().json();
    expectInvalidJson(runText(std::string("\0", 1)), "syntax error at line 1, column 1: ");
    expectInvalidJson(runText(std::string("{\0", 2) + json.substr(1)),
                      "syntax error at line 1, column 2: ");
    expectInvalidJson(runText(json + '\0'), "syntax error at line 1, column ");
}

TEST_F(HelperRequests, LoneSurrogatesAreASyntaxError) {
    RequestText request = this->request();
    for (const std::string_view text :
         {R"("\ud800")", R"("\udc00")", R"("\ud800x")", R"("\ud800\ud800")", R"("\ud800\u0041")"}) {
        SCOPED_TRACE(text);
        request.aafPath = text;
        expectInvalidJson(run(request), "syntax error at line 1, column ");
    }
}

TEST_F(HelperRequests, LoneSurrogateUnderAnUnknownKeyIsASyntaxError) {
    RequestText request = this->request();
    request.more = R"(,"later":"\udfff")";
    expectInvalidJson(run(request), "syntax error at line 1, column ");
}

TEST_F(HelperRequests, BytesThatAreNoUtf8AreASyntaxError) {
    RequestText request = this->request();
    for (const std::string_view text :
         {"\"\xFF\"", "\"\xC3\"", "\"\xC0\xAF\"", "\"\xED\xA0\x80\"", "\"\xF4\x90\x80\x80\""}) {
        request.workDirectory = text;
        expectInvalidJson(run(request), "syntax error at line 1, column ");
    }
}

TEST_F(HelperRequests, NothingMayFollowTheObject) {
    const std::string json = request().json();
    for (const std::string_view more : {"x", "{}", ",", "1", "]"}) {
        expectInvalidJson(runText(json + std::string(more)), "syntax error at line 1, column ");
    }
    expectInvalidJson(runText(json + "\n" + json), "syntax error at line 2, column 1: ");
}

TEST_F(HelperRequests, ObjectMustEnd) {
    const std::string json = request().json();
    for (std::size_t length = 1; length < json.size(); length += 17) {
        expectInvalidJson(runText(json.substr(0, length)));
    }
}

TEST_F(HelperRequests, JsonExtensionsAreSyntaxErrors) {
    const std::string json = request().json();
    expectInvalidJson(runText(json.substr(0, json.size() - 1) + ",}"), "syntax error at line 1, ");
    expectInvalidJson(runText("// request\n" + json), "syntax error at line 1, column 1: ");
    RequestText request = this->request();
    for (const std::string_view number : {"01", "+1", "1.", ".1", "0x1", "NaN", "1e"}) {
        SCOPED_TRACE(number);
        request.protocolVersion = number;
        expectInvalidJson(run(request), "syntax error at line 1, column ");
    }
}

}  // namespace

}  // namespace trellant::testing
