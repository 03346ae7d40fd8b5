// SPDX-License-Identifier: Apache-2.0
// A composition of sources with odd names or odd locators, put to the real worker in a folder that
// is watched.
#pragma once

#include <trellant/protocol/messages.h>

#include <gtest/gtest.h>

#include <map>
#include <optional>
#include <string>
#include <trellant_testing/omf_builder.h>
#include <trellant_testing/temporary_directory.h>
#include <trellant_testing/worker_process.h>
#include <vector>

namespace trellant::testing {

class PlacesTest : public ::testing::Test {
  protected:
    PlacesTest();

    /// An embedded source of this name, used by one clip; its audio differs from source to source.
    void addEmbedded(const std::optional<std::string>& name);
    /// An external source, used by one clip, with one locator of this path.
    void addExternal(const std::string& locator);

    [[nodiscard]] static Bytes audioOf(std::uint32_t number);

    /// Runs the worker and expects it to succeed; the result.
    AAFWorkerProtocol::Result extract() { return succeed(extractRun()); }
    AAFWorkerProtocol::Result inspect();
    WorkerRun extractRun() { return run("extractAndInspect"); }

    [[nodiscard]] std::string path(const std::string& name) const { return folder_.file(name); }
    [[nodiscard]] std::string work(const std::string& name = "") const;
    [[nodiscard]] std::string search(const std::string& name = "") const;
    /// Contents of the regular files of the work directory by name, links not followed.
    [[nodiscard]] std::map<std::string, Bytes> filesInWork() const;
    /// Names of everything in the test's folder, not below it.
    [[nodiscard]] std::vector<std::string> besideWork() const;

    /// The one diagnostic that tells of external audio; empty when there is none.
    [[nodiscard]] static std::string notLocated(const AAFWorkerProtocol::Result& result);

  private:
    WorkerRun run(std::string_view operation);
    static AAFWorkerProtocol::Result succeed(const WorkerRun& run);
    void write();

    TemporaryDirectory folder_;
    OmfBuilder omf_;
    std::vector<ObjectID> clips_;
    std::uint32_t count_ = 0;
    bool isWritten_ = false;
};

}  // namespace trellant::testing
