// SPDX-License-Identifier: Apache-2.0
// Typed reads of property values. Numbers are small and read without an allocation; each read has
// a cap, so that a corrupt length cannot make a small read allocate much.
#include <trellant/base/text.h>
#include <trellant/io/errors.h>
#include <trellant/omf/document.h>

#include <algorithm>

namespace trellant {

namespace {

constexpr std::int64_t stringLimit = 1'048'576;
constexpr std::int64_t referencesLimit = 16'777'216;
/// Values up to this size are read without an allocation; most texts and lists are shorter.
constexpr std::size_t stackLimit = 256;

bool isUsable(const std::vector<OMFObject>& references) {
    return !references.empty();
}

template <class Value>
bool isUsable(const std::optional<Value>& value) {
    return value.has_value();
}

}  // namespace

std::optional<ByteView> OMFDocument::smallValue(OMFObject object, OMFProperty name,
                                                std::span<std::byte> buffer) const noexcept {
    const auto property = propertyIDs_[static_cast<std::size_t>(name)];
    if (!property) {
        return std::nullopt;
    }
    return bento_.smallValue(number(object), *property, buffer);
}

template <std::size_t cap, class Decode>
auto OMFDocument::firstUsable(OMFObject object, Candidates names, const Decode& decode) const
    -> decltype(decode(ByteView{})) {
    std::array<std::byte, cap> buffer;
    for (const auto name : names) {
        if (const auto value = smallValue(object, name, buffer)) {
            if (auto result = decode(*value); isUsable(result)) {
                return result;
            }
        }
    }
    return {};
}

template <class Decode>
auto OMFDocument::firstUsableLarge(OMFObject object, Candidates names, std::int64_t cap,
                                   const Decode& decode) const -> decltype(decode(ByteView{})) {
    std::array<std::byte, stackLimit> buffer;
    for (const auto name : names) {
        const auto property = propertyIDs_[static_cast<std::size_t>(name)];
        if (!property) {
            continue;
        }
        decltype(decode(ByteView{})) result{};
        if (const auto small = smallValue(object, name, buffer)) {
            result = decode(*small);
        } else {
            try {
                if (const auto value = bento_.valueData(number(object), *property, cap)) {
                    result = decode(*value);
                }
            } catch (const OMFIOError&) {
                continue;
            } catch (const FileSystemError&) {
                continue;
            }
        }
        if (isUsable(result)) {
            return result;
        }
    }
    return {};
}

std::optional<Bytes> OMFDocument::raw(OMFObject object, Candidates names,
                                      std::int64_t maxBytes) const {
    for (const auto name : names) {
        const auto property = propertyIDs_[static_cast<std::size_t>(name)];
        if (!property) {
            continue;
        }
        if (auto value = bento_.valueData(number(object), *property, maxBytes)) {
            return value;
        }
    }
    return std::nullopt;
}

std::string OMFDocument::decodeString(ByteView bytes) const {
    constexpr std::size_t looked = 64;
    if (bytes.size() >= 4) {
        int zeros = 0;
        // Odd positions only, then the document's byte order, on purpose, whatever the text's own
        // order is: Western text in little-endian UTF-16 is what real files hold.
        for (std::size_t i = 1; i < std::min(bytes.size(), looked); i += 2) {
            zeros += bytes[i] == std::byte{0} ? 1 : 0;
        }
        if (zeros >= 2) {
            if (const auto text = fromUTF16(bytes, byteOrder_)) {
                return trimmedOfControls(*text);
            }
        }
    }
    return asciiCString(bytes);
}

std::optional<std::string> OMFDocument::string(OMFObject object, Candidates names) const {
    return firstUsableLarge(object, names, stringLimit,
                            [this](ByteView bytes) -> std::optional<std::string> {
                                auto text = decodeString(bytes);
                                if (text.empty()) {
                                    return std::nullopt;
                                }
                                return text;
                            });
}

std::optional<std::int16_t> OMFDocument::int16(OMFObject object, Candidates names) const {
    return firstUsable<8>(object, names, [this](ByteView bytes) -> std::optional<std::int16_t> {
        if (bytes.size() >= 2) {
            return static_cast<std::int16_t>(u16(bytes, 0, byteOrder_));
        }
        if (bytes.size() == 1) {
            return static_cast<std::int16_t>(bytes[0]);
        }
        return std::nullopt;
    });
}

std::optional<std::int32_t> OMFDocument::int32(OMFObject object, Candidates names) const {
    return firstUsable<8>(object, names, [this](ByteView bytes) -> std::optional<std::int32_t> {
        if (bytes.size() >= 4) {
            return i32(bytes, 0, byteOrder_);
        }
        if (bytes.size() >= 2) {
            return u16(bytes, 0, byteOrder_);
        }
        return std::nullopt;
    });
}

std::optional<std::uint32_t> OMFDocument::uint32(OMFObject object, Candidates names) const {
    return firstUsable<8>(object, names, [this](ByteView bytes) -> std::optional<std::uint32_t> {
        if (bytes.size() < 4) {
            return std::nullopt;
        }
        return u32(bytes, 0, byteOrder_);
    });
}

std::optional<std::int64_t> OMFDocument::int64(OMFObject object, Candidates names) const {
    return firstUsable<16>(object, names, [this](ByteView bytes) -> std::optional<std::int64_t> {
        if (bytes.size() >= 8) {
            return i64(bytes, 0, byteOrder_);
        }
        if (bytes.size() >= 4) {
            return i32(bytes, 0, byteOrder_);
        }
        return std::nullopt;
    });
}

std::optional<OMFRationalValue> OMFDocument::rational(OMFObject object, Candidates names) const {
    return firstUsable<16>(
        object, names, [this](ByteView bytes) -> std::optional<OMFRationalValue> {
            if (bytes.size() < 8) {
                return std::nullopt;
            }
            const OMFRationalValue value{i32(bytes, 0, byteOrder_), i32(bytes, 4, byteOrder_)};
            if (value.denominator == 0) {
                return std::nullopt;
            }
            return value;
        });
}

std::optional<OMFUID> OMFDocument::uid(OMFObject object, Candidates names) const {
    return firstUsable<32>(object, names, [this](ByteView bytes) -> std::optional<OMFUID> {
        if (bytes.size() < 12) {
            return std::nullopt;
        }
        return OMFUID{u32(bytes, 0, byteOrder_), u32(bytes, 4, byteOrder_),
                      u32(bytes, 8, byteOrder_)};
    });
}

std::optional<OMFObject> OMFDocument::objectRef(OMFObject object, Candidates names) const {
    return firstUsable<32>(object, names, [this](ByteView bytes) -> std::optional<OMFObject> {
        if (bytes.size() < 4) {
            return std::nullopt;
        }
        const OMFObject reference{u32(bytes, 0, byteOrder_)};
        if (reference == OMFObject::none) {
            return std::nullopt;
        }
        return reference;
    });
}

std::vector<OMFObject> OMFDocument::decodeReferences(ByteView bytes) const {
    if (bytes.size() < 4) {
        return {};
    }
    std::size_t first = 0;
    const std::size_t counted = u16(bytes, 0, byteOrder_);
    if (counted * 4 == bytes.size() - 2) {
        first = 2;
    } else if (bytes.size() % 4 != 0) {
        return {};
    }
    std::vector<OMFObject> references;
    references.reserve((bytes.size() - first) / 4);
    for (std::size_t offset = first; offset < bytes.size(); offset += 4) {
        const OMFObject reference{u32(bytes, static_cast<std::int64_t>(offset), byteOrder_)};
        if (reference != OMFObject::none) {
            references.push_back(reference);
        }
    }
    return references;
}

std::vector<OMFObject> OMFDocument::objectRefs(OMFObject object, Candidates names) const {
    return firstUsableLarge(object, names, referencesLimit,
                            [this](ByteView bytes) { return decodeReferences(bytes); });
}

}  // namespace trellant
