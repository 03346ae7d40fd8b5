// SPDX-License-Identifier: Apache-2.0
// What stands where the worker should be cannot be started.
#include "client_fixture.h"

#include <filesystem>

namespace trellant::testing {

namespace {

class ClientLaunch : public ClientTest {
  protected:
    [[nodiscard]] std::string path(const std::string& name) const {
        return workers_.directory().file(name);
    }
    void scriptAt(const std::string& name, std::string_view text) const {
        std::string copy(text);
        Bytes bytes;
        for (const char character : copy) {
            bytes.push_back(static_cast<std::byte>(character));
        }
        writeFile(path(name), bytes);
        std::filesystem::permissions(path(name), std::filesystem::perms::owner_all);
    }
    /// Both ways to call, and the reason that both must give.
    void expectCannotStart(const std::string& name, const std::string& why) const {
        AAFWorkerClient asking;
        asking.helperURLProvider = [place = path(name)](const std::string&) { return place; };
        const LaunchFailed fault{"cannot start \"" + path(name) + "\": " + why};
        expectFault(asking.inspect("/film.omf", "/work"), fault);
        expectFault(asking.run(largeRequest()), fault);
    }
};

TEST_F(ClientLaunch, WorkerThatDoesNotExist) {
    expectCannotStart("missing", "No such file or directory");
}

TEST_F(ClientLaunch, WorkerWithoutRunBit) {
    scriptAt("worker", "#!/bin/sh\n");
    std::filesystem::permissions(path("worker"), std::filesystem::perms::owner_read);
    expectCannotStart("worker", "Permission denied");
}

TEST_F(ClientLaunch, WorkerThatIsAFolder) {
    std::filesystem::create_directory(path("worker"));
    expectCannotStart("worker", "Is a directory");
}

TEST_F(ClientLaunch, WorkerBelowAFile) {
    scriptAt("worker", "#!/bin/sh\n");
    expectCannotStart("worker/inside", "Not a directory");
}

TEST_F(ClientLaunch, NameThatGoesOnBehindANulIsNotCutShort) {
    AAFWorkerClient asking;
    asking.helperURLProvider = [](const std::string&) {
        return std::filesystem::path(std::string("/bin/true\0more", 14));
    };
    expectFault(asking.run(plainRequest()),
                LaunchFailed{"cannot start \"/bin/true\\u0000more\": Invalid argument"});
}

TEST_F(ClientLaunch, ScriptThatNamesNoInterpreter) {
    scriptAt("worker", "exit 0\n");
    expectCannotStart("worker", "Exec format error");
}

TEST_F(ClientLaunch, ScriptWhoseInterpreterIsMissing) {
    scriptAt("worker", "#!/nowhere/interpreter\n");
    expectCannotStart("worker", "No such file or directory");
}

TEST_F(ClientLaunch, EmptyWorkerFile) {
    scriptAt("worker", "");
    expectCannotStart("worker", "Exec format error");
}

TEST_F(ClientLaunch, LinkThatLeadsNowhere) {
    std::filesystem::create_symlink(path("missing"), path("worker"));
    expectCannotStart("worker", "No such file or directory");
}

TEST_F(ClientLaunch, ScriptWithAnInterpreterIsAWorker) {
    scriptAt("worker", "#!/bin/sh\nread -r request\necho \"told $request\" >&2\nexit 5\n");
    AAFWorkerClient asking;
    asking.helperURLProvider = [place = path("worker")](const std::string&) { return place; };
    expectFault(asking.run(plainRequest()),
                NonZeroExit{5, "told " + encodeRequest(plainRequest())});
}

TEST_F(ClientLaunch, NameOfTheWorkerIsShownOnOneLine) {
    AAFWorkerClient asking;
    asking.helperURLProvider = [](const std::string&) { return "/missing\nworker"; };
    expectFault(asking.run(plainRequest()),
                LaunchFailed{R"(cannot start "/missing\u000aworker": No such file or directory)"});
}

}  // namespace

}  // namespace trellant::testing
