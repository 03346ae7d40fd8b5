// SPDX-License-Identifier: Apache-2.0
// The paths of a request: what they may be, and what becomes of them in the result.
#include "worker_fixture.h"

#include <sys/stat.h>

namespace trellant::testing {

namespace {

/// A document like the one-clip one, its audio a file of the search directory.
Bytes externalDocument() {
    OmfBuilder omf = oneClipDocument();
    omf.at(2).bytes("OMFI:OOBJ:ObjClass", bytesOf("XXXX"));
    return omf.build();
}

class HelperPaths : public WorkerTest {
  protected:
    /// The part of the result that says where the source lies, as JSON text.
    static std::string sourceURLOf(const WorkerRun& run) { return textUnder(run, "sourceAAF"); }
    static std::string mediaURLOf(const WorkerRun& run) { return textUnder(run, "fileURL"); }

    /// The URL of a file in the test's folder whose name is encoded as `encoded`.
    [[nodiscard]] std::string urlOf(std::string_view encoded) const {
        return jsonFileURL(directory().string() + "/" + std::string(encoded));
    }
    /// Writes the one-clip file under `name` and gives the URL that the result names.
    [[nodiscard]] std::string urlOfSourceNamed(std::string_view name) const {
        return sourceURLOf(run(requestFor("inspect", oneClipFile(name), "")));
    }
    void expectCannotOpen(const WorkerRun& run, std::string_view name,
                          std::string_view reason) const {
        expectFailed(run, progressLineText("opening", "0.05"),
                     std::string("unexpected failure: cannot open \"")
                         .append(path(name))
                         .append("\": ")
                         .append(reason));
    }
    /// Status 2, one log line of a foreign error, and nothing created.
    void expectPathRefused(const RequestText& request) const {
        const auto before = everything();
        const auto answer = run(request);
        const std::string beginning =
            progressLineText("opening", "0.05") + "trellant-omf: unexpected failure: ";
        EXPECT_EQ(answer.errors.substr(0, beginning.size()), beginning);
        EXPECT_EQ(linesOf(answer.errors).size(), 2U);
        EXPECT_EQ(answer.output, "");
        EXPECT_EQ(answer.status, 2);
        EXPECT_EQ(everything(), before);
    }

  private:
    static std::string textUnder(const WorkerRun& run, std::string_view key) {
        const std::string start = std::string("\"").append(key).append("\":\"");
        const auto place = run.output.find(start);
        if (place == std::string::npos) {
            return "no " + std::string(key) + ": " + run.errors;
        }
        const auto text = run.output.substr(place + start.size());
        return text.substr(0, text.find('"'));
    }
};

TEST_F(HelperPaths, MissingSourceFailsAfterTheOpeningLine) {
    expectCannotOpen(run(requestFor("inspect", path("missing.omf"), "")), "missing.omf",
                     "No such file or directory");
}

TEST_F(HelperPaths, FolderIsNoSource) {
    std::filesystem::create_directory(path("folder.omf"));
    expectCannotOpen(run(requestFor("inspect", path("folder.omf"), "")), "folder.omf",
                     "Is a directory");
}

TEST_F(HelperPaths, SourceBelowAFileIsMissing) {
    writeFile(path("file"), bytesOf("text"));
    expectCannotOpen(run(requestFor("inspect", path("file/piece.omf"), "")), "file/piece.omf",
                     "Not a directory");
}

TEST_F(HelperPaths, NamedPipeWithoutWriterDoesNotBlock) {
    ASSERT_EQ(::mkfifo(path("pipe.omf").c_str(), 0600), 0);
    expectFailed(run(requestFor("inspect", path("pipe.omf"), "")),
                 progressLineText("opening", "0.05"),
                 "Malformed OMF/Bento file: file too small for Bento footer");
}

TEST_F(HelperPaths, SourceWithoutEndIsTooSmall) {
    expectFailed(run(requestFor("inspect", "/dev/zero", "")), progressLineText("opening", "0.05"),
                 "Malformed OMF/Bento file: file too small for Bento footer");
}

TEST_F(HelperPaths, EmptySourceIsTheCurrentDirectory) {
    const auto answer = runInside(requestFor("inspect", "", ""));
    expectFailed(answer, progressLineText("opening", "0.05"),
                 "unexpected failure: cannot open \"" +
                     std::filesystem::canonical(directory()).string() + "\": Is a directory");
}

TEST_F(HelperPaths, NulInAnyPathIsRefused) {
    const std::string source = oneClipFile();
    RequestText request = requestFor("extractAndInspect", source, path("work"));
    request.aafPath = jsonString(source).insert(source.size() + 1, R"(\u0000)");
    expectPathRefused(request);
    request.aafPath = jsonString(source).insert(source.size() + 1, R"(\u0000.omf)");
    expectPathRefused(request);
    request = requestFor("extractAndInspect", source, path("work"));
    request.workDirectory = R"("work\u0000")";
    expectPathRefused(request);
    request = requestFor("inspect", source, path("work"));
    request.mediaSearchDirectory = R"("\u0000")";
    expectPathRefused(request);
}

TEST_F(HelperPaths, PathBeyondTheSystemsLengthIsRefused) {
    expectPathRefused(requestFor("inspect", path(std::string(5'000, 'x')), ""));
    expectPathRefused(requestFor("extractAndInspect", oneClipFile(), path(std::string(300, 'x'))));
}

TEST_F(HelperPaths, SourceIsPercentEncoded) {
    EXPECT_EQ(urlOfSourceNamed("Session 1; 50%.omf"), urlOf("Session%201%3B%2050%25.omf"));
    // Umlauts as one scalar: UTF-8 C3 BC, C3 84.
    EXPECT_EQ(urlOfSourceNamed("\u00FCber \u00C4.omf"), urlOf("%C3%BCber%20%C3%84.omf"));
    EXPECT_EQ(urlOfSourceNamed("\U0001F600.omf"), urlOf("%F0%9F%98%80.omf"));
    EXPECT_EQ(urlOfSourceNamed("a\"b\\c#d?e<f>g^h`i{j|k}l[m]n.omf"),
              urlOf("a%22b%5Cc%23d%3Fe%3Cf%3Eg%5Eh%60i%7Bj%7Ck%7Dl%5Bm%5Dn.omf"));
}

TEST_F(HelperPaths, NamesAreNotNormalised) {
    // "u" and a combining diaeresis, CC 88.
    EXPECT_EQ(urlOfSourceNamed("u\u0308.omf"), urlOf("u%CC%88.omf"));
}

TEST_F(HelperPaths, CharactersOfPathsStayAsTheyAre) {
    EXPECT_EQ(urlOfSourceNamed("aZ09!$&'()*+,-.:=@_~.omf"), urlOf("aZ09!$&'()*+,-.:=@_~.omf"));
}

TEST_F(HelperPaths, ControlCharactersArePercentEncoded) {
    const std::string source = oneClipFile("a\tb\x7F.omf");
    RequestText request = requestFor("inspect", "", "");
    request.aafPath = jsonString(source);
    request.aafPath.replace(request.aafPath.find('\t'), 1, R"(\t)");
    EXPECT_EQ(sourceURLOf(run(request)), urlOf("a%09b%7F.omf"));
}

TEST_F(HelperPaths, RelativeSourceIsTakenAgainstTheCurrentDirectory) {
    std::filesystem::create_directories(path("here/deep"));
    std::filesystem::create_directory(path("there"));
    oneClipFile("there/piece.omf");
    oneClipFile("here/near.omf");
    const std::string base = std::filesystem::canonical(directory()).string();
    const auto urlFrom = [&](std::string_view source) {
        return sourceURLOf(runInside(requestFor("inspect", source, ""), "here"));
    };
    EXPECT_EQ(urlFrom("near.omf"), jsonFileURL(base + "/here/near.omf"));
    EXPECT_EQ(urlFrom("./near.omf"), jsonFileURL(base + "/here/near.omf"));
    EXPECT_EQ(urlFrom("../there/./piece.omf"), jsonFileURL(base + "/there/piece.omf"));
    EXPECT_EQ(urlFrom("deep/..//near.omf"), jsonFileURL(base + "/here/near.omf"));
}

TEST_F(HelperPaths, AbsoluteSourceStaysAsWritten) {
    std::filesystem::create_directory(path("here"));
    oneClipFile("piece.omf");
    const auto answer = run(requestFor("inspect", path("here") + "/.././/piece.omf", ""));
    EXPECT_EQ(sourceURLOf(answer), urlOf("here/.././/piece.omf"));
}

TEST_F(HelperPaths, ExtractedFileIsNamedByItsURL) {
    const std::string source = oneClipFile();
    const auto answer = run(requestFor("extractAndInspect", source, path("my work; \u00FC")));
    EXPECT_EQ(mediaURLOf(answer), urlOf("my%20work%3B%20%C3%BC/Tone.wav"));
    EXPECT_EQ(readFile(path("my work; \u00FC/Tone.wav")), toneWave());
}

TEST_F(HelperPaths, RelativeWorkDirectoryIsTakenAgainstTheCurrentDirectory) {
    std::filesystem::create_directory(path("here"));
    const auto answer =
        runInside(requestFor("extractAndInspect", oneClipFile(), "../there/./work"), "here");
    const std::string base = std::filesystem::canonical(directory()).string();
    EXPECT_EQ(mediaURLOf(answer), jsonFileURL(base + "/there/work/Tone.wav"));
    EXPECT_EQ(readFile(path("there/work/Tone.wav")), toneWave());
}

TEST_F(HelperPaths, EmptyWorkDirectoryIsTheCurrentOne) {
    std::filesystem::create_directory(path("here"));
    EXPECT_EQ(runInside(requestFor("extractAndInspect", oneClipFile(), ""), "here").status, 0);
    EXPECT_EQ(readFile(path("here/Tone.wav")), toneWave());
}

TEST_F(HelperPaths, EmptySearchDirectoryIsTheCurrentOne) {
    const std::string source = writeFile(path("piece.omf"), externalDocument());
    std::filesystem::create_directories(path("here/below"));
    writeFile(path("here/below/TONE.WAV"), toneWave());
    const auto answer = runInside(requestFor("inspect", source, "", ""), "here");
    const std::string base = std::filesystem::canonical(directory()).string();
    EXPECT_EQ(mediaURLOf(answer), jsonFileURL(base + "/here/below/TONE.WAV"));
}

TEST_F(HelperPaths, WithoutSearchDirectoryNothingIsSearched) {
    const std::string source = writeFile(path("piece.omf"), externalDocument());
    writeFile(path("Tone.wav"), toneWave());
    const auto answer = runInside(requestFor("inspect", source, ""));
    EXPECT_EQ(answer.status, 0);
    EXPECT_EQ(answer.output.find("fileURL"), std::string::npos);
    EXPECT_NE(answer.output.find("\"external essence not located: Tone.wav\""), std::string::npos);
}

TEST_F(HelperPaths, MissingSearchDirectoryHoldsNothing) {
    const std::string source = writeFile(path("piece.omf"), externalDocument());
    const auto answer = run(requestFor("inspect", source, "", path("missing")));
    EXPECT_EQ(answer.status, 0);
    EXPECT_NE(answer.output.find("\"external essence not located: Tone.wav\""), std::string::npos);
    EXPECT_EQ(everything(), std::vector<std::string>{"piece.omf"});
}

}  // namespace

}  // namespace trellant::testing
