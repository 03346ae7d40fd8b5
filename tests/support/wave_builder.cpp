// SPDX-License-Identifier: Apache-2.0
#include <trellant_testing/byte_writer.h>
#include <trellant_testing/wave_builder.h>

namespace trellant::testing {

namespace {

constexpr std::uint16_t extensibleTag = 0xFFFE;

ByteWriter writer() {
    return ByteWriter(OMFByteOrder::little);
}

void writeChunk(ByteWriter& file, const RiffChunk& chunk) {
    file.text(chunk.id).u32(static_cast<std::uint32_t>(chunk.data.size())).bytes(chunk.data);
    file.zeros(chunk.data.size() % 2);
}

Bytes formatChunk(const WaveSpec& given) {
    const auto blockAlign = static_cast<std::uint16_t>(given.channels * (given.bitsPerSample / 8));
    ByteWriter format = writer();
    format.u16(given.formatTag).u16(given.channels).u32(given.sampleRate);
    format.u32(given.sampleRate * blockAlign).u16(blockAlign).u16(given.bitsPerSample);
    if (given.formatTag == extensibleTag) {
        // Whole numbers, all bits valid, no speaker positions.
        format.u16(22).u16(given.bitsPerSample).u32(0);
        format.bytes(hex("01 00 00 00 00 00 10 00 80 00 00 AA 00 38 9B 71"));
    }
    return format.written();
}

}  // namespace

Bytes waveImage(const WaveSpec& given) {
    ByteWriter chunks = writer();
    for (const RiffChunk& chunk : given.leadingChunks) {
        writeChunk(chunks, chunk);
    }
    writeChunk(chunks, {"fmt ", formatChunk(given)});
    writeChunk(chunks, {"data", given.samples});
    ByteWriter file = writer();
    file.text(given.form).u32(static_cast<std::uint32_t>(4 + chunks.size())).text(given.formType);
    return file.bytes(chunks.written()).written();
}

}  // namespace trellant::testing
