// SPDX-License-Identifier: Apache-2.0
#include <bit>
#include <trellant_testing/aiff_builder.h>
#include <trellant_testing/byte_writer.h>

namespace trellant::testing {

namespace {

ByteWriter writer() {
    return ByteWriter(OMFByteOrder::big);
}

void writeChunk(ByteWriter& file, const RiffChunk& chunk) {
    file.text(chunk.id).u32(static_cast<std::uint32_t>(chunk.data.size())).bytes(chunk.data);
    file.zeros(chunk.data.size() % 2);
}

Bytes commonChunk(const AiffSpec& given) {
    const std::size_t frameBytes = std::size_t{given.channels} * (given.bitsPerSample / 8);
    const std::size_t frames = frameBytes == 0 ? 0 : given.samples.size() / frameBytes;
    ByteWriter common = writer();
    common.u16(given.channels).u32(static_cast<std::uint32_t>(frames)).u16(given.bitsPerSample);
    common.bytes(given.rateBytes.empty() ? extended80Bytes(given.sampleRate) : given.rateBytes);
    if (given.formType == "AIFC" && !given.compressionType.empty()) {
        // An empty name: its length, and the byte that makes the text even.
        common.text(given.compressionType).u16(0);
    }
    return common.written();
}

}  // namespace

Bytes extended80Bytes(std::uint32_t value) {
    const auto highestBit = static_cast<unsigned>(std::bit_width(value) - 1);
    const std::uint64_t mantissa = std::uint64_t{value} << (63U - highestBit);
    return writer().u16(static_cast<std::uint16_t>(16'383U + highestBit)).u64(mantissa).written();
}

Bytes aiffImage(const AiffSpec& given) {
    ByteWriter chunks = writer();
    for (const RiffChunk& chunk : given.leadingChunks) {
        writeChunk(chunks, chunk);
    }
    writeChunk(chunks, {"COMM", commonChunk(given)});
    // Offset and block size come before the samples.
    writeChunk(chunks, {"SSND", writer().u32(0).u32(0).bytes(given.samples).written()});
    ByteWriter file = writer();
    file.text("FORM").u32(static_cast<std::uint32_t>(4 + chunks.size())).text(given.formType);
    return file.bytes(chunks.written()).written();
}

}  // namespace trellant::testing
