// SPDX-License-Identifier: Apache-2.0
#include <trellant/io/bento_footer.h>
#include <trellant/scan/identification.h>

#include <algorithm>
#include <array>
#include <span>
#include <variant>

namespace trellant::scan {

namespace {

using namespace std::string_view_literals;

std::string bytesAt(const RandomAccessFile& file, std::uint64_t offset, std::uint64_t count) {
    std::string text(static_cast<std::size_t>(count), '\0');
    text.resize(file.readAvailable(offset, std::as_writable_bytes(std::span(text))));
    return text;
}

bool isContainer(const RandomAccessFile& file) {
    if (file.size() < bentoFooterSize) {
        return false;
    }
    std::array<std::byte, bentoFooterSize> tail{};
    return file.readAvailable(file.size() - bentoFooterSize, tail) == tail.size() &&
           lastBentoFooter(tail) == std::size_t{0};
}

bool holds(std::string_view text, std::string_view name) {
    return text.find(name) != std::string_view::npos;
}

std::optional<std::string> modelNamed(std::string_view text) {
    if (holds(text, "OMFI:OOBJ:ObjClass")) {
        return std::string(pronomOmf2);
    }
    if (holds(text, "OMFI:ObjID")) {
        return std::string(pronomOmf1);
    }
    return std::nullopt;
}

/// Programs and documents name the model too.
bool isOtherKind(std::string_view head) {
    constexpr std::array others{
        "\x7F"
        "ELF"sv,
        "MZ"sv,
        "\xCF\xFA\xED\xFE"sv,
        "!<arch>"sv,
        "%PDF"sv,
        "PK\x03\x04"sv,
        "SQLite format 3"sv};
    return head.find('\0') == std::string_view::npos ||
           std::any_of(others.begin(), others.end(),
                       [head](std::string_view other) { return head.starts_with(other); });
}

}  // namespace

std::optional<Identification> identified(const RandomAccessFile& file) {
    Identification found{.hasFooter = isContainer(file)};
    const std::string head = bytesAt(file, 0, std::min<std::uint64_t>(file.size(), searchedEnd));
    if (found.hasFooter) {
        found.pronom = modelNamed(head);
        for (const std::uint64_t end : {searchedEnd, searchedFarther}) {
            if (!found.pronom) {
                const std::uint64_t count = std::min<std::uint64_t>(file.size(), end);
                found.pronom = modelNamed(bytesAt(file, file.size() - count, count));
            }
        }
        return found;
    }
    if (isOtherKind(head) || !(holds(head, "OMFI:"sv) || holds(head, "omfi:data:"sv))) {
        return std::nullopt;
    }
    found.pronom = modelNamed(head);
    return found;
}

}  // namespace trellant::scan
