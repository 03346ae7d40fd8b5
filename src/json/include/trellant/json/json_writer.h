// SPDX-License-Identifier: Apache-2.0
// JsonWriter: compact JSON, written as it is said, without a tree in between.
//
// Strings are UTF-8 by contract and are not checked. The caller keeps the grammar: a key before
// each member of an object, every begin with its end. Commas are the writer's business.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>

namespace [[gnu::visibility("default")]] trellant {

/// Where the bytes go.
class JsonSink {
  public:
    JsonSink() = default;
    JsonSink(const JsonSink&) = delete;
    JsonSink(JsonSink&&) = delete;
    JsonSink& operator=(const JsonSink&) = delete;
    JsonSink& operator=(JsonSink&&) = delete;
    virtual ~JsonSink() = default;
    /// Takes the next bytes; they are not kept alive after the call. What it throws leaves the
    /// writer's call.
    virtual void write(std::string_view bytes) = 0;
};

/// A sink that gathers everything in `text`.
class StringSink final : public JsonSink {
  public:
    void write(std::string_view bytes) override { text.append(bytes); }
    std::string text;
};

class JsonWriter {
  public:
    /// Bytes that are gathered before the sink is called; also the longest piece that it gets,
    /// except for long strings without escapes, which are handed on as they are.
    static constexpr std::size_t bufferSize = 65536;

    /// The same for documents that are short anyhow, such as a progress line.
    static constexpr std::size_t shortBufferSize = 512;

    /// Room for any 64-bit integer and any shortest double ("-2.2250738585072014e-308").
    static constexpr std::size_t longestNumber = 32;

    /// `sink` must outlive the writer. `room`: bytes to gather, at least shortBufferSize.
    explicit JsonWriter(JsonSink& sink, std::size_t room = bufferSize);

    void beginObject() { open('{'); }
    void endObject() { close('}'); }
    void beginArray() { open('['); }
    void endArray() { close(']'); }

    /// A key that needs no escape, such as a name from a field table. Inlined always: with a
    /// constant key the copy is a few moves.
    [[gnu::always_inline]] void plainKey(std::string_view key) {
        separate();
        char* out = reserve(key.size() + 3);
        *out = '"';
        key.copy(out + 1, key.size());
        out[key.size() + 1] = '"';
        out[key.size() + 2] = ':';
        used_ += key.size() + 3;
        needsComma_ = false;
    }
    /// Any key.
    void key(std::string_view key);

    void string(std::string_view text);
    /// A text that needs no escape or has its escapes, as it stands; at most shortBufferSize - 2
    /// bytes.
    void escapedString(std::string_view text) {
        separate();
        shortQuoted(text);
        needsComma_ = true;
    }
    /// The same in printable ASCII only: all else as escapes of four digits, in pairs where needed.
    void asciiString(std::string_view text);
    void integer(std::int64_t value);
    void unsignedInteger(std::uint64_t value);
    /// The fewest digits that read back the same: plain from 0.0001 to below 1e16, with an exponent
    /// beyond ("1e-05", "1e+16"), whole values without a point, minus zero as "-0". Requires a
    /// finite value.
    void number(double value);
    /// The same text without a document around it, at the head of `out`.
    [[nodiscard]] static std::string_view writeNumber(double value,
                                                      std::span<char, longestNumber> out);
    void boolean(bool value);

    /// A line feed behind a whole document: the next one stands on a line of its own.
    void endLine() {
        put('\n');
        needsComma_ = false;
    }

    /// Hands the rest to the sink. Nothing is flushed by the destructor: what is not flushed was
    /// not meant to go out.
    void flush();

  private:
    void separate() {
        if (needsComma_) {
            put(',');
        }
    }
    void open(char bracket) {
        separate();
        put(bracket);
        needsComma_ = false;
    }
    void close(char bracket) {
        put(bracket);
        needsComma_ = true;
    }
    void put(char byte) {
        *reserve(1) = byte;
        ++used_;
    }
    /// Room for `count` bytes (at most `room_`) at the returned place; `used_` is the caller's.
    char* reserve(std::size_t count) {
        if (count > room_ - used_) {
            flush();
        }
        return buffer_.get() + used_;
    }
    void shortQuoted(std::string_view text) {
        char* out = reserve(text.size() + 2);
        *out = '"';
        text.copy(out + 1, text.size());
        out[text.size() + 1] = '"';
        used_ += text.size() + 2;
    }
    void append(std::string_view bytes);
    void quoted(std::string_view text);
    void escaped(unsigned unit);

    JsonSink& sink_;
    std::size_t room_;
    // NOLINTNEXTLINE(modernize-avoid-c-arrays): the size is the caller's.
    std::unique_ptr<char[]> buffer_;
    std::size_t used_ = 0;
    bool needsComma_ = false;
};

}  // namespace trellant
