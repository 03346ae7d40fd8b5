// SPDX-License-Identifier: Apache-2.0
#include "zip_archive.h"

#include "zip_reader.h"

#include <trellant/base/system_call_error.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <map>
#include <stdexcept>
#include <sys/stat.h>
#include <trellant_testing/temporary_directory.h>

namespace trellant {

namespace {

using sessions::PlacedSink;
using sessions::ZipArchive;
using testing::zipBytes;
using testing::zipContent;
using testing::ZipMember;
using testing::zipMembers;
using Packing = ZipArchive::Packing;

compound::ByteSource textSource(std::string text) {
    return [text = std::move(text)](const compound::ByteSink& sink) {
        sink(std::as_bytes(std::span(text)));
    };
}

PlacedSink into(Bytes& archive) {
    return [&archive](std::uint64_t offset, ByteView bytes) {
        archive.resize(std::max(archive.size(), offset + bytes.size()));
        std::copy(bytes.begin(), bytes.end(),
                  archive.begin() + static_cast<std::ptrdiff_t>(offset));
    };
}

/// The date of the one member of an archive of that date.
std::uint32_t dosDateOf(std::int64_t date) {
    Bytes archive;
    const PlacedSink sink = into(archive);
    ZipArchive zip(sink, date);
    zip.add("a", Packing::stored, 0, textSource(""));
    zip.finish();
    return zipMembers(zipBytes(archive)).at(0).dosDate;
}

TEST(ZipArchive, HoldsMembersInTheirOrder) {
    Bytes archive;
    const PlacedSink sink = into(archive);
    ZipArchive zip(sink, 0);
    const std::string text(100'000, 'x');
    zip.add("content", Packing::deflated, text.size(), textSource(text));
    zip.add("media/B\xC3\xA9n.wav", Packing::stored, 3, textSource("abc"));
    zip.add("empty", Packing::deflated, 0, textSource(""));
    zip.finish();
    const std::vector<ZipMember> members = zipMembers(zipBytes(archive));
    ASSERT_EQ(members.size(), 3U);
    EXPECT_EQ(members[0].name, "content");
    EXPECT_TRUE(members[0].isDeflated);
    EXPECT_LT(members[0].packedByteCount, 1000U);
    EXPECT_EQ(members[1].name, "media/B\xC3\xA9n.wav");
    EXPECT_FALSE(members[1].isDeflated);
    for (const ZipMember& member : members) {
        EXPECT_TRUE(member.isNameUtf8);
        // A plain file that its owner may change and all may read.
        EXPECT_EQ(member.attributes >> 16U, S_IFREG | 0644U);
    }
    EXPECT_EQ(zipContent(archive, "content"), text);
    EXPECT_EQ(zipContent(archive, "media/B\xC3\xA9n.wav"), "abc");
    EXPECT_EQ(zipContent(archive, "empty"), "");
}

TEST(ZipArchive, MayBeEmpty) {
    Bytes archive;
    const PlacedSink sink = into(archive);
    ZipArchive zip(sink, 0);
    zip.finish();
    EXPECT_TRUE(zipMembers(zipBytes(archive)).empty());
}

TEST(ZipArchive, DatesMembersInUtc) {
    const auto dos = [](unsigned year, unsigned month, unsigned day, unsigned hour, unsigned minute,
                        unsigned second) {
        return (year - 1980) << 25U | month << 21U | day << 16U | hour << 11U | minute << 5U |
               second / 2;
    };
    // 1,000,000,000 s are 2001-09-09 01:46:40.
    EXPECT_EQ(dosDateOf(1'000'000'000), dos(2001, 9, 9, 1, 46, 40));
    EXPECT_EQ(dosDateOf(1'000'000'001), dos(2001, 9, 9, 1, 46, 40));
    EXPECT_EQ(dosDateOf(0), dos(1980, 1, 1, 0, 0, 0));
    EXPECT_EQ(dosDateOf(-1), dos(1980, 1, 1, 0, 0, 0));
    EXPECT_EQ(dosDateOf(std::numeric_limits<std::int64_t>::min()), dos(1980, 1, 1, 0, 0, 0));
    EXPECT_EQ(dosDateOf(std::numeric_limits<std::int64_t>::max()), dos(2107, 12, 31, 23, 59, 58));
}

TEST(ZipArchive, CopiesFiles) {
    const testing::TemporaryDirectory folder;
    Bytes content(700'001, std::byte{7});
    content.back() = std::byte{9};
    const std::string path = testing::writeFile(folder.file("a.wav"), content);
    Bytes archive;
    const PlacedSink sink = into(archive);
    ZipArchive zip(sink, 0);
    zip.addFile("all", path, content.size());
    zip.addFile("part", path, 4);
    zip.finish();
    EXPECT_EQ(zipContent(archive, "all"), std::string(700'000, '\7') + '\t');
    EXPECT_EQ(zipContent(archive, "part"), std::string(4, '\7'));
}

TEST(ZipArchive, RefusesFilesThatAreShorterOrNotThere) {
    const testing::TemporaryDirectory folder;
    const std::string path = testing::writeFile(folder.file("a.wav"), Bytes(3));
    Bytes archive;
    const PlacedSink sink = into(archive);
    ZipArchive zip(sink, 0);
    try {
        zip.addFile("a", path, 4);
        FAIL() << "a file of three bytes gave four";
    } catch (const SystemCallError& error) {
        EXPECT_EQ(error.errorNumber(), EIO);
    }
    try {
        zip.addFile("b", folder.file("none"), 1);
        FAIL() << "a file that is not there was read";
    } catch (const SystemCallError& error) {
        EXPECT_EQ(error.errorNumber(), ENOENT);
    }
}

TEST(ZipArchive, PassesOnWhatItsSinkThrows) {
    for (int allowed = 0; allowed < 12; ++allowed) {
        int left = allowed;
        const PlacedSink sink = [&left](std::uint64_t, ByteView) {
            if (left == 0) {
                throw std::runtime_error("full");
            }
            --left;
        };
        const auto write = [&sink] {
            ZipArchive zip(sink, 0);
            zip.add("a", Packing::deflated, 3, textSource("abc"));
            zip.finish();
        };
        EXPECT_THAT(write, ::testing::ThrowsMessage<std::runtime_error>("full")) << allowed;
    }
}

TEST(ZipArchive, WritesNoMoreOnceItIsGivenUp) {
    int writes = 0;
    const PlacedSink sink = [&writes](std::uint64_t, ByteView) { ++writes; };
    {
        ZipArchive zip(sink, 0);
        zip.add("a", Packing::stored, 3, textSource("abc"));
        writes = 0;
    }
    EXPECT_EQ(writes, 0);
}

TEST(ZipArchive, HoldsAsManyMembersAsAllReadersCount) {
    constexpr std::size_t most = 65'534;
    Bytes archive;
    const PlacedSink sink = into(archive);
    ZipArchive zip(sink, 0);
    for (std::size_t i = 0; i < most; ++i) {
        zip.add(std::to_string(i), Packing::stored, 0, textSource(""));
    }
    EXPECT_THROW(zip.add("more", Packing::stored, 0, textSource("")), SystemCallError);
    zip.finish();
    const std::vector<ZipMember> members = zipMembers(zipBytes(archive));
    ASSERT_EQ(members.size(), most);
    EXPECT_EQ(members.back().name, "65533");
}

TEST(ZipArchive, HoldsMembersBeyondFourGibibytes) {
    // Zeros are not kept: what was not written reads as zeros.
    std::map<std::uint64_t, std::byte> written;
    std::uint64_t size = 0;
    const PlacedSink sink = [&](std::uint64_t offset, ByteView bytes) {
        size = std::max(size, offset + bytes.size());
        const bool isSilent =
            bytes.size() > 1024 && bytes.front() == std::byte{0} && bytes.back() == std::byte{0};
        for (std::size_t i = 0; !isSilent && i < bytes.size(); ++i) {
            written[offset + i] = bytes[i];
        }
    };
    constexpr std::uint64_t byteCount = 0x1'0000'0001;
    ZipArchive zip(sink, 0);
    zip.add("long", Packing::stored, byteCount, [](const compound::ByteSink& member) {
        const Bytes zeros(1U << 20U);
        for (std::uint64_t i = 0; i < byteCount / zeros.size(); ++i) {
            member(zeros);
        }
        member(ByteView(zeros).first(byteCount % zeros.size()));
    });
    zip.add("behind", Packing::stored, 3, textSource("abc"));
    zip.finish();
    const testing::ZipBytes archive{size, [&written](std::uint64_t offset, std::uint64_t count) {
                                        Bytes bytes(count);
                                        for (auto at = written.lower_bound(offset);
                                             at != written.end() && at->first < offset + count;
                                             ++at) {
                                            bytes[at->first - offset] = at->second;
                                        }
                                        return bytes;
                                    }};
    const std::vector<ZipMember> members = zipMembers(archive);
    ASSERT_EQ(members.size(), 2U);
    EXPECT_EQ(members[0].byteCount, byteCount);
    EXPECT_GT(members[1].dataOffset, byteCount);
    EXPECT_EQ(zipContent(archive, members[1]), "abc");
}

TEST(ZipArchive, RefusesMembersThatGrewBeyondWhatWasSaid) {
    Bytes archive;
    const PlacedSink sink = into(archive);
    ZipArchive zip(sink, 0);
    zip.add("just", Packing::stored, 3, textSource("abc"));
    EXPECT_THROW(zip.add("more", Packing::stored, 3, textSource("abcd")), SystemCallError);
}

}  // namespace

}  // namespace trellant
