// SPDX-License-Identifier: Apache-2.0
// The media search directory: which of its entries count, and when it is looked at.
#include "media_search.h"

#include "song.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <optional>
#include <trellant_testing/temporary_directory.h>
#include <unistd.h>

namespace trellant::testing {
namespace {

using ::testing::ElementsAre;

/// Rights of a user without any, while it lives; the superuser may read what others may not.
class WithoutPrivileges {
  public:
    WithoutPrivileges() { set(nobody); }
    ~WithoutPrivileges() { set(0); }
    WithoutPrivileges(const WithoutPrivileges&) = delete;
    WithoutPrivileges& operator=(const WithoutPrivileges&) = delete;
    WithoutPrivileges(WithoutPrivileges&&) = delete;
    WithoutPrivileges& operator=(WithoutPrivileges&&) = delete;

  private:
    static constexpr uid_t nobody = 65'534;
    void set(uid_t user) const {
        if (isSuperuser_ && ::seteuid(user) != 0) {
            std::abort();
        }
    }
    bool isSuperuser_ = ::getuid() == 0;
};

class SearchDirectory : public ::testing::Test {
  protected:
    std::string add(const std::string& name) {
        std::filesystem::create_directories(std::filesystem::path(path(name)).parent_path());
        return writeFile(path(name), bytesOf("x"));
    }
    std::string path(const std::string& name) const { return folder_.file(name); }
    std::optional<std::string> locate(const std::string& name) {
        MediaSearch search(folder_.path().string(), "");
        return search.locate(name);
    }

    TemporaryDirectory folder_;
};

TEST_F(SearchDirectory, FindsAFileAnywhereBelow) {
    add("a/b/c/kick.wav");
    EXPECT_EQ(locate("kick.wav"), path("a/b/c/kick.wav"));
    EXPECT_EQ(locate("snare.wav"), std::nullopt);
}

TEST_F(SearchDirectory, ComparesLowerCasedNames) {
    add("KICK \u00C4.Wav");
    EXPECT_EQ(locate("kick \u00E4.wav"), path("KICK \u00C4.Wav"));
}

TEST_F(SearchDirectory, ComposedAndDecomposedNamesDiffer) {
    add("kick a\u0308.wav");
    EXPECT_EQ(locate("kick \u00E4.wav"), std::nullopt);
}

TEST_F(SearchDirectory, KeepsAudioExtensionsOnly) {
    for (const std::string name :
         {"a.wav", "a.wave", "a.aif", "a.aiff", "a.aifc", "b.AIFF", "a.mp3", "a.wav.bak", "wav"}) {
        add(name);
    }
    for (const std::string name : {"a.wav", "a.wave", "a.aif", "a.aiff", "a.aifc"}) {
        EXPECT_EQ(locate(name), path(name));
    }
    EXPECT_EQ(locate("b.aiff"), path("b.AIFF"));
    for (const std::string name : {"a.mp3", "a.wav.bak", "wav", "a"}) {
        EXPECT_EQ(locate(name), std::nullopt) << name;
    }
}

TEST_F(SearchDirectory, SeveralFilesOfANameAreNone) {
    add("a/kick.wav");
    add("b/KICK.WAV");
    add("kick.wav");
    EXPECT_EQ(locate("kick.wav"), std::nullopt);
}

TEST_F(SearchDirectory, PassesOverHiddenFilesAndFolders) {
    add(".kick.wav");
    add(".hidden/kick.wav");
    EXPECT_EQ(locate("kick.wav"), std::nullopt);
    EXPECT_EQ(locate(".kick.wav"), std::nullopt);
    add("seen/kick.wav");
    EXPECT_EQ(locate("kick.wav"), path("seen/kick.wav"));
}

TEST_F(SearchDirectory, HiddenSearchDirectoryIsStillSearched) {
    add(".hidden/kick.wav");
    MediaSearch search(path(".hidden"), "");
    EXPECT_EQ(search.locate("kick.wav"), path(".hidden/kick.wav"));
}

TEST_F(SearchDirectory, LinkToAFileIsAFileOfItsOwn) {
    const TemporaryDirectory elsewhere;
    std::filesystem::create_symlink(writeFile(elsewhere.file("other.wav"), bytesOf("x")),
                                    path("kick.wav"));
    EXPECT_EQ(locate("kick.wav"), path("kick.wav"));
    add("below/kick.wav");
    EXPECT_EQ(locate("kick.wav"), std::nullopt);
}

TEST_F(SearchDirectory, DanglingLinkIsNoFile) {
    std::filesystem::create_symlink(path("missing"), path("kick.wav"));
    add("below/kick.wav");
    EXPECT_EQ(locate("kick.wav"), path("below/kick.wav"));
}

TEST_F(SearchDirectory, LinksToFoldersAreNotFollowed) {
    const TemporaryDirectory elsewhere;
    writeFile(elsewhere.file("kick.wav"), bytesOf("x"));
    std::filesystem::create_directory_symlink(elsewhere.path(), path("linked"));
    std::filesystem::create_directory_symlink(folder_.path(), path("circle"));
    EXPECT_EQ(locate("kick.wav"), std::nullopt);
    add("kick.wav");
    EXPECT_EQ(locate("kick.wav"), path("kick.wav"));
}

TEST_F(SearchDirectory, SearchDirectoryMayItselfBeALink) {
    const TemporaryDirectory elsewhere;
    writeFile(elsewhere.file("kick.wav"), bytesOf("x"));
    std::filesystem::create_directory_symlink(elsewhere.path(), path("linked"));
    MediaSearch search(path("linked"), "");
    EXPECT_EQ(search.locate("kick.wav"), path("linked/kick.wav"));
}

TEST_F(SearchDirectory, FolderNamedLikeAFileIsNoneButIsEntered) {
    add("kick.wav/snare.wav");
    add("below/kick.wav");
    EXPECT_EQ(locate("kick.wav"), path("below/kick.wav"));
    EXPECT_EQ(locate("snare.wav"), path("kick.wav/snare.wav"));
}

TEST_F(SearchDirectory, UnreadableFolderIsPassedOver) {
    add("closed/kick.wav");
    add("open/snare.wav");
    std::filesystem::permissions(folder_.path(), std::filesystem::perms{0755});
    std::filesystem::permissions(path("closed"), std::filesystem::perms::none);
    {
        const WithoutPrivileges user;
        EXPECT_EQ(locate("kick.wav"), std::nullopt);
        EXPECT_EQ(locate("snare.wav"), path("open/snare.wav"));
    }
    std::filesystem::permissions(path("closed"), std::filesystem::perms::owner_all);
}

TEST_F(SearchDirectory, DirectoryThatDoesNotExistHoldsNothing) {
    MediaSearch search(path("missing"), "");
    EXPECT_EQ(search.locate("kick.wav"), std::nullopt);
}

TEST_F(SearchDirectory, WithoutADirectoryNothingIsFound) {
    MediaSearch search(std::nullopt, folder_.path().string());
    EXPECT_FALSE(search.hasDirectory());
    EXPECT_EQ(search.locate("kick.wav"), std::nullopt);
}

TEST_F(SearchDirectory, DeepFoldersAreSearched) {
    std::string name;
    for (int level = 0; level < 200; ++level) {
        name += "d/";
    }
    add(name + "kick.wav");
    EXPECT_EQ(locate("kick.wav"), path(name + "kick.wav"));
}

TEST_F(SearchDirectory, IsReadOnce) {
    add("kick.wav");
    MediaSearch search(folder_.path().string(), "");
    EXPECT_EQ(search.locate("snare.wav"), std::nullopt);
    add("snare.wav");
    EXPECT_EQ(search.locate("snare.wav"), std::nullopt);
    EXPECT_EQ(search.locate("kick.wav"), path("kick.wav"));
}

/// An embedded source named Kick between two external sources that are looked for by that name.
class SearchBesideExtraction : public ::testing::Test {
  protected:
    SearchBesideExtraction() {
        addExternal({1, 0, 0});
        add({2, 0, 0}, {.id = {2, 0, 0}, .name = "Kick", .media = shortWave(), .length = 48});
        addExternal({3, 0, 0});
    }
    void addExternal(MobID id) {
        add(id, {.id = id, .length = 48, .locators = {omf_.textLocator("KICK.wav")}});
    }
    void add(MobID id, const AudioFileSpec& given) {
        omf_.audioFile(given);
        clips_.push_back(omf_.clip({.length = 100, .source = id}));
    }
    /// The locations of the three sources.
    std::vector<std::string> locations(const std::string& work, const std::string& search) {
        const ObjectID slot = omf_.slot({.editRate = Ratio{100}, .segment = omf_.sequence(clips_)});
        omf_.composition({.slots = {slot}});
        const Mapped mapped = mapImage(
            omf_.build(), {.workDirectory = work, .mediaSearchDirectory = search, .extract = true});
        std::vector<std::string> urls;
        for (const AAFSourceEssence& essence : mapped.timeline.essences) {
            urls.push_back(essence.fileURL.value_or(AAFURL{"none"}).text);
        }
        return urls;
    }

    TemporaryDirectory search_;
    OmfBuilder omf_;
    std::vector<ObjectID> clips_;
};

TEST_F(SearchBesideExtraction, ExtractedFileIsSeenByLaterSearchesOnly) {
    const std::string work = search_.file("work");
    std::filesystem::create_directory(work);
    const std::string url = "file://" + work + "/Kick.wav";
    EXPECT_THAT(locations(work, search_.path().string()), ElementsAre("none", url, url));
}

TEST_F(SearchBesideExtraction, WorkDirectoryMayBeTheSearchDirectory) {
    const std::string work = search_.path().string();
    const std::string url = "file://" + work + "/Kick.wav";
    EXPECT_THAT(locations(work, work), ElementsAre("none", url, url));
}

TEST_F(SearchBesideExtraction, WorkDirectoryElsewhereIsNotSeen) {
    const TemporaryDirectory work;
    EXPECT_THAT(locations(work.path().string(), search_.path().string()),
                ElementsAre("none", "file://" + work.path().string() + "/Kick.wav", "none"));
}

TEST_F(SearchBesideExtraction, HiddenWorkDirectoryIsNotSeen) {
    const std::string work = search_.file(".work");
    std::filesystem::create_directory(work);
    EXPECT_THAT(locations(work, search_.path().string()),
                ElementsAre("none", "file://" + work + "/Kick.wav", "none"));
}

TEST_F(SearchBesideExtraction, FolderBesideTheSearchDirectoryOfLongerNameIsElsewhere) {
    const TemporaryDirectory parent;
    std::filesystem::create_directory(parent.file("media"));
    std::filesystem::create_directory(parent.file("media2"));
    EXPECT_THAT(locations(parent.file("media2"), parent.file("media")),
                ElementsAre("none", "file://" + parent.file("media2") + "/Kick.wav", "none"));
}

TEST_F(SearchBesideExtraction, ExtractedFileMakesAnotherOfItsNameAmbiguous) {
    const std::string work = search_.file("work");
    std::filesystem::create_directory(work);
    const std::string kick = writeFile(search_.file("kick.wav"), shortWave());
    EXPECT_THAT(locations(work, search_.path().string()),
                ElementsAre("file://" + kick, "file://" + work + "/Kick.wav", "none"));
}

TEST_F(SearchBesideExtraction, SearchDirectoryByAnotherWayToTheSamePlace) {
    const TemporaryDirectory links;
    std::filesystem::create_directory_symlink(search_.path(), links.file("media"));
    const std::string work = search_.file("work");
    std::filesystem::create_directory(work);
    EXPECT_THAT(locations(work, links.file("media")),
                ElementsAre("none", "file://" + work + "/Kick.wav",
                            "file://" + links.file("media/work/Kick.wav")));
}

}  // namespace
}  // namespace trellant::testing
