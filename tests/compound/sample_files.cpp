// SPDX-License-Identifier: Apache-2.0
// Writes a compound file for readers that are no part of this project: compound_samples PATH
#include <trellant/base/file_descriptor.h>
#include <trellant/compound/compound_file.h>

#include <array>
#include <cstdio>
#include <exception>
#include <fcntl.h>
#include <string>

namespace trellant::compound {
namespace {

using Storage = CompoundFile::Storage;

/// Bytes that a reader in another language can work out.
Bytes contentOf(std::size_t length) {
    Bytes bytes(length);
    for (std::size_t index = 0; index < length; ++index) {
        bytes[index] = static_cast<std::byte>(7 * index + length);
    }
    return bytes;
}

std::u16string numbered(std::u16string name, std::size_t number) {
    const std::string digits = std::to_string(number);
    return name.append(digits.begin(), digits.end());
}

CompoundFile sample() {
    CompoundFile file({}, {});
    const Storage lengths = file.addStorage(Storage::root, u"lengths");
    for (const std::size_t length :
         std::array<std::size_t, 10>{0, 1, 63, 64, 65, 4095, 4096, 4097, 10'000, 300'000}) {
        const Bytes content = contentOf(length);
        file.addStream(lengths, numbered(u"of ", length), content.size(),
                       [content](const ByteSink& sink) { sink(content); });
    }
    Storage inner = Storage::root;
    for (std::size_t depth = 1; depth <= 5; ++depth) {
        inner = file.addStorage(inner, numbered(u"depth ", depth));
    }
    file.addStream(inner, u"bottom", contentOf(10));
    const Storage many = file.addStorage(Storage::root, u"many");
    for (std::size_t index = 0; index < 5000; ++index) {
        file.addStream(many, numbered(u"stream ", index), contentOf(index % 100));
    }
    const Storage names = file.addStorage(Storage::root, u"names");
    for (const char16_t* name :
         {u"\u00E4\u00D6", u"\u0416\u0436", u"\U0001F3B5 one", u"_a", u"B", u"a"}) {
        file.addStream(names, name, contentOf(5));
    }
    return file;
}

void writeSample(const char* path) {
    const FileDescriptor descriptor(::open(path, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600));
    sample().write(descriptorSink(descriptor.number()));
}

}  // namespace
}  // namespace trellant::compound

int main(int count, char** arguments) {
    try {
        if (count == 2) {
            trellant::compound::writeSample(arguments[1]);
            return 0;
        }
    } catch (const std::exception& error) {
        static_cast<void>(std::fprintf(stderr, "%s\n", error.what()));
    }
    return 1;
}
