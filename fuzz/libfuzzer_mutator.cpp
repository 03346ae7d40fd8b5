// SPDX-License-Identifier: Apache-2.0
// Mutation for inputs with a container: of its objects mostly, of plain bytes at times and where
// there is no whole container. Bytes before the container are changed now and then.
#include "object_edits.h"
#include "targets.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <span>

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t maxSize);
extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size,
                                               std::size_t maxSize, unsigned seed);
extern "C" std::size_t LLVMFuzzerCustomCrossOver(const std::uint8_t* data, std::size_t size,
                                                 const std::uint8_t* other, std::size_t otherSize,
                                                 std::uint8_t* out, std::size_t maxSize,
                                                 unsigned seed);

namespace {

using trellant::Bytes;
using trellant::ByteView;

constexpr unsigned plainOneIn = 8;
constexpr unsigned optionsOneIn = 32;
/// The fuzzer would cross two inputs as often as it changes one, which does more.
constexpr unsigned crossOneIn = 8;
constexpr std::size_t longestValue = 4'096;

std::size_t offset() {
    static const std::size_t bytes =
        trellant::fuzzing::targetNamed(TRELLANT_FUZZ_TARGET).containerOffset.value_or(0);
    return bytes;
}

ByteView containerIn(const std::uint8_t* data, std::size_t size) {
    return std::as_bytes(std::span(data, size)).subspan(std::min(size, offset()));
}

void mutateBytes(Bytes& bytes) {
    const std::size_t size = bytes.size();
    bytes.resize(std::max(size + size / 2 + 4, longestValue));
    bytes.resize(
        LLVMFuzzerMutate(reinterpret_cast<std::uint8_t*>(bytes.data()), size, bytes.size()));
}

/// Writes head and container; 0 when there is none or it has no room.
std::size_t written(const std::optional<Bytes>& container, const std::uint8_t* head,
                    std::uint8_t* out, std::size_t maxSize) {
    if (!container || container->size() + offset() > maxSize) {
        return 0;
    }
    std::memmove(out, head, offset());
    std::memcpy(out + offset(), container->data(), container->size());
    return container->size() + offset();
}

}  // namespace

std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t maxSize,
                                    unsigned seed) {
    if (size > offset() && seed % plainOneIn != 0) {
        if (offset() != 0 && seed / plainOneIn % optionsOneIn == 0) {
            data[0] = static_cast<std::uint8_t>(seed >> 16U);
        }
        const auto edited =
            trellant::fuzzing::editedContainer(containerIn(data, size), seed, mutateBytes);
        if (const std::size_t count = written(edited, data, data, maxSize); count != 0) {
            return count;
        }
    }
    return LLVMFuzzerMutate(data, size, maxSize);
}

std::size_t LLVMFuzzerCustomCrossOver(const std::uint8_t* data, std::size_t size,
                                      const std::uint8_t* other, std::size_t otherSize,
                                      std::uint8_t* out, std::size_t maxSize, unsigned seed) {
    if (size <= offset() || seed % crossOneIn != 0) {
        return 0;
    }
    return written(trellant::fuzzing::crossedContainers(containerIn(data, size),
                                                        containerIn(other, otherSize), seed),
                   data, out, maxSize);
}
