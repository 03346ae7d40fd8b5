// SPDX-License-Identifier: Apache-2.0
// Streams of every critical length, held or given by a source.
#include "written.h"

#include <trellant/base/file_descriptor.h>
#include <trellant/base/system_call_error.h>

#include <fcntl.h>
#include <stdexcept>
#include <trellant_testing/byte_writer.h>
#include <trellant_testing/temporary_directory.h>
#include <unistd.h>

namespace trellant::compound {
namespace {

using Fault = CompoundError::Fault;
using testing::patternBytes;

struct Length {
    std::size_t bytes;
    /// Of the whole file, the header's included.
    std::size_t sectors;
};

void PrintTo(const Length& length, std::ostream* stream) {
    *stream << length.bytes;
}

class StreamOfLength : public ::testing::TestWithParam<Length> {};

TEST_P(StreamOfLength, HeldComesBackAndTakesNoMoreThanItsSectors) {
    const Bytes content = patternBytes(GetParam().bytes);
    CompoundFile file = newFile();
    file.addStream(Storage::root, u"stream", content);
    const Written written(file);
    EXPECT_EQ(written.image.size(), GetParam().sectors * 4096);
    EXPECT_EQ(written.reader->entries().at(1).size, content.size());
    EXPECT_EQ(written.reader->content(1), content);
}

TEST_P(StreamOfLength, GivenByASourceIsTheSame) {
    const Bytes content = patternBytes(GetParam().bytes);
    CompoundFile held = newFile();
    held.addStream(Storage::root, u"stream", content);
    CompoundFile given = newFile();
    given.addStream(Storage::root, u"stream", content.size(), [&](const ByteSink& sink) {
        for (ByteView rest = content; !rest.empty();) {
            const std::size_t piece = std::min<std::size_t>(rest.size(), 100);
            sink(rest.first(piece));
            rest = rest.subspan(piece);
        }
    });
    EXPECT_EQ(Written(given).image.bytes(), Written(held).image.bytes());
}

// Header, FAT and directory are three sectors; a mini stream takes its FAT and at least one more.
INSTANTIATE_TEST_SUITE_P(CompoundStreams, StreamOfLength,
                         ::testing::Values(Length{0, 3}, Length{1, 5}, Length{63, 5}, Length{64, 5},
                                           Length{65, 5}, Length{4095, 5}, Length{4096, 4},
                                           Length{4097, 5}, Length{8192, 5}, Length{70'000, 21}));

TEST(CompoundStreams, ShortOnesShareSectors) {
    CompoundFile file = newFile();
    for (int index = 0; index < 64; ++index) {
        file.addStream(Storage::root, std::u16string(1, static_cast<char16_t>(0x3041 + index)),
                       Bytes(64, static_cast<std::byte>(index)));
    }
    // Header, FAT, three sectors of directory for 65 entries, mini FAT, 64 mini sectors.
    const Written written(file);
    EXPECT_EQ(written.image.size(), 7 * 4096U);
    EXPECT_EQ(written.reader->content(64), Bytes(64, std::byte{63}));
}

TEST(CompoundStreams, MiniFATGrowsByItsSectors) {
    CompoundFile file = newFile();
    // 1024 mini sectors: 16 streams of 4095 bytes take 64 each.
    for (int index = 0; index < 16; ++index) {
        file.addStream(Storage::root, std::u16string(1, static_cast<char16_t>(u'A' + index)),
                       Bytes(4095, std::byte{1}));
    }
    // Header, FAT, directory, mini FAT, 16 of mini stream.
    EXPECT_EQ(Written(file).image.size(), 20 * 4096U);
    file.addStream(Storage::root, u"more", Bytes(1, std::byte{2}));
    // One more of each of the last two.
    EXPECT_EQ(Written(file).image.size(), 22 * 4096U);
}

TEST(CompoundStreams, ShortAndLongMixedKeepTheirBytes) {
    CompoundFile file = newFile();
    const std::vector<std::size_t> lengths{5000, 10, 0, 4096, 4095, 100'000, 64};
    char16_t name = u'a';
    for (const std::size_t length : lengths) {
        Bytes content = patternBytes(length + 1);
        content.erase(content.begin());
        file.addStream(Storage::root, std::u16string(1, name++), content);
    }
    const Written written(file);
    std::uint32_t stream = 0;
    for (const std::size_t length : lengths) {
        Bytes content = patternBytes(length + 1);
        content.erase(content.begin());
        EXPECT_EQ(written.reader->content(++stream), content);
    }
}

Fault faultOfSource(std::uint64_t promised, std::size_t pieces, std::size_t pieceLength) {
    CompoundFile file = newFile();
    file.addStream(Storage::root, u"given", promised, [=](const ByteSink& sink) {
        for (std::size_t piece = 0; piece < pieces; ++piece) {
            sink(Bytes(pieceLength));
        }
    });
    return faultOf([&] { file.write([](ByteView) {}); });
}

TEST(CompoundStreams, SourceThatGivesTooLittleIsAnError) {
    EXPECT_EQ(faultOfSource(10'000, 3, 3000),
              Fault(CompoundError::WrongStreamLength{u"given", 10'000, 9000}));
    EXPECT_EQ(faultOfSource(1, 0, 0), Fault(CompoundError::WrongStreamLength{u"given", 1, 0}));
}

TEST(CompoundStreams, SourceThatGivesTooMuchIsStoppedAtOnce) {
    EXPECT_EQ(faultOfSource(10'000, 1000, 3000),
              Fault(CompoundError::WrongStreamLength{u"given", 10'000, 12'000}));
    EXPECT_EQ(faultOfSource(0, 1, 1), Fault(CompoundError::WrongStreamLength{u"given", 0, 1}));
    EXPECT_STREQ(CompoundError(CompoundError::WrongStreamLength{u"given", 0, 1}).what(),
                 "compound file: the stream \"given\" was to have 0 bytes, its source gave 1");
}

TEST(CompoundStreams, WhatASourceThrowsEndsTheWriting) {
    CompoundFile file = newFile();
    file.addStream(Storage::root, u"given", 10,
                   [](const ByteSink&) { throw std::runtime_error("gone"); });
    EXPECT_THROW(file.write([](ByteView) {}), std::runtime_error);
}

TEST(CompoundStreams, WhatTheSinkThrowsEndsTheWriting) {
    CompoundFile file = newFile();
    int calls = 0;
    EXPECT_THROW(file.write([&](ByteView) {
        ++calls;
        throw std::runtime_error("full");
    }),
                 std::runtime_error);
    EXPECT_EQ(calls, 1);
}

TEST(CompoundStreams, ADescriptorTakesTheFile) {
    const testing::TemporaryDirectory folder;
    const std::string path = folder.file("written");
    CompoundFile file = newFile();
    file.addStream(Storage::root, u"stream", patternBytes(300'000));
    {
        const FileDescriptor descriptor(::open(path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600));
        file.write(descriptorSink(descriptor.number()));
    }
    EXPECT_EQ(testing::readFile(path), Written(file).image.bytes());
}

TEST(CompoundStreams, ADescriptorThatTakesNothingIsAnError) {
    const FileDescriptor descriptor(::open("/dev/full", O_WRONLY | O_CLOEXEC));
    ASSERT_TRUE(descriptor.isOpen());
    EXPECT_THROW(newFile().write(descriptorSink(descriptor.number())), SystemCallError);
}

// Held bytes lie in pieces of 1,048,576: up to the end of one, none, over it, more than one, none.
TEST(CompoundStreams, HeldKeepTheirBytesAtTheEndsOfPieces) {
    const std::vector<std::size_t> lengths{1'048'575, 1, 0, 1'048'570, 6, 1'048'577, 0, 7};
    std::vector<Bytes> contents;
    CompoundFile file = newFile();
    for (std::size_t i = 0; i < lengths.size(); ++i) {
        contents.push_back(patternBytes(lengths[i]));
        if (!contents.back().empty()) {
            contents.back().front() = static_cast<std::byte>(i);
        }
        file.addStream(Storage::root,
                       u"stream " + std::u16string(1, static_cast<char16_t>(u'a' + i)),
                       contents.back());
    }
    const Written written(file);
    for (std::size_t i = 0; i < contents.size(); ++i) {
        EXPECT_EQ(written.reader->content(static_cast<std::uint32_t>(i + 1)), contents[i]) << i;
    }
}

}  // namespace
}  // namespace trellant::compound
