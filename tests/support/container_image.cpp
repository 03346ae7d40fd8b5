// SPDX-License-Identifier: Apache-2.0
#include <limits>
#include <stdexcept>
#include <trellant_testing/byte_writer.h>
#include <trellant_testing/container_image.h>

namespace trellant::testing {

namespace {

/// Tokens one after the other; one that would cross a block boundary begins the next block.
class CompressedTocWriter {
  public:
    CompressedTocWriter(OMFByteOrder order, std::size_t blockSize)
        : order_(order), blockSize_(blockSize), toc_(order) {}

    void item(const BentoTOCItem& item) {
        state(item);
        std::visit([&](const auto& storage) { value(storage, item.segment.continued); },
                   item.segment.storage);
    }

    [[nodiscard]] const Bytes& written() const { return toc_.written(); }

  private:
    void token(std::uint8_t code, const ByteWriter& payload) {
        const std::size_t room = blockSize_ - toc_.size() % blockSize_;
        if (room < 1 + payload.size()) {
            toc_.u8(24).zeros(room - 1);
        }
        toc_.u8(code).bytes(payload.written());
    }

    [[nodiscard]] ByteWriter payload() const { return ByteWriter(order_); }

    void state(const BentoTOCItem& item) {
        if (isFirst_ || item.object != current_.object) {
            token(1, payload().u32(item.object).u32(item.property).u32(item.type));
            current_.generation = 0;
        } else if (item.property != current_.property) {
            token(2, payload().u32(item.property).u32(item.type));
            current_.generation = 0;
        } else if (item.type != current_.type) {
            token(3, payload().u32(item.type));
            current_.generation = 0;
        }
        if (item.generation != current_.generation) {
            token(4, payload().u32(item.generation));
        }
        current_ = item;
        isFirst_ = false;
    }

    void value(const BentoImmediate& value, bool continued) {
        if (value.count == 0) {
            token(9, payload());
            return;
        }
        if (continued && value.count != value.bytes.size()) {
            throw std::logic_error("only an immediate value of 4 bytes can be continued");
        }
        const auto code = continued ? std::uint8_t{14} : static_cast<std::uint8_t>(9 + value.count);
        token(code, payload().bytes(std::as_bytes(std::span(value.bytes))));
    }

    void value(const BentoRange& range, bool continued) {
        constexpr std::uint64_t word = std::numeric_limits<std::uint32_t>::max();
        const std::uint8_t more = continued ? 1 : 0;
        const auto shortOffset = static_cast<std::uint32_t>(range.offset);
        const auto shortLength = static_cast<std::uint32_t>(range.length);
        if (range.length > word) {
            token(25 + more, payload().u64(range.offset).u64(range.length));
        } else if (range.offset > word) {
            token(7 + more, payload().u64(range.offset).u32(shortLength));
        } else {
            token(5 + more, payload().u32(shortOffset).u32(shortLength));
        }
    }

    void value(const BentoReferenceList& list, bool) { token(15, payload().u32(list.id)); }

    OMFByteOrder order_;
    std::size_t blockSize_;
    ByteWriter toc_;
    BentoTOCItem current_;
    bool isFirst_ = true;
};

void writeEntry(ByteWriter& toc, const BentoTOCItem& item) {
    const unsigned continued = item.segment.continued ? 2U : 0U;
    toc.u32(item.object).u32(item.property).u32(item.type);
    if (const auto* immediate = std::get_if<BentoImmediate>(&item.segment.storage)) {
        toc.bytes(std::as_bytes(std::span(immediate->bytes))).u32(immediate->count);
        toc.u16(item.generation).u16(static_cast<std::uint16_t>(continued | 1U));
    } else {
        const auto& range = std::get<BentoRange>(item.segment.storage);
        toc.u32(static_cast<std::uint32_t>(range.offset));
        toc.u32(static_cast<std::uint32_t>(range.length));
        toc.u16(item.generation).u16(static_cast<std::uint16_t>(continued));
    }
}

}  // namespace

Bytes encodeToc(TocForm form, OMFByteOrder order, std::uint16_t blockSizeKiB,
                std::span<const BentoTOCItem> items) {
    if (form == TocForm::compressed) {
        CompressedTocWriter writer(order, std::size_t{blockSizeKiB} * 1024);
        for (const BentoTOCItem& item : items) {
            writer.item(item);
        }
        return writer.written();
    }
    ByteWriter toc(order);
    for (const BentoTOCItem& item : items) {
        if (!std::holds_alternative<BentoReferenceList>(item.segment.storage)) {
            writeEntry(toc, item);
        }
    }
    return toc.written();
}

ContainerImage ContainerImage::ofForm(TocForm form, OMFByteOrder order) {
    ContainerImage image;
    image.byteOrder = order;
    image.footer.signature = hex("A4 43 4D A5 48 64 72 D7");
    image.footer.extendedSignature = hex("A5 43 4D A5 48 64 72 D7");
    image.footer.majorVersion = form == TocForm::compressed ? 2 : 1;
    return image;
}

Bytes ContainerImage::bytes() const {
    ByteWriter file(byteOrder);
    file.bytes(data).bytes(toc);
    const std::uint64_t tocOffset = data.size();
    const std::uint64_t tocSize = toc.size();
    if (footer.extended) {
        file.bytes(footer.extendedSignature);
        file.u64(footer.extendedTocOffset.value_or(tocOffset));
        file.u64(footer.extendedTocSize.value_or(tocSize));
    }
    file.bytes(footer.signature).u16(0).u16(footer.blockSizeKiB).u16(footer.majorVersion);
    file.u16(footer.extended ? 1 : footer.minorVersion);
    file.u32(
        footer.tocOffset.value_or(footer.extended ? 0 : static_cast<std::uint32_t>(tocOffset)));
    file.u32(footer.tocSize.value_or(footer.extended ? 0 : static_cast<std::uint32_t>(tocSize)));
    return file.written();
}

}  // namespace trellant::testing
