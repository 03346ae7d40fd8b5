// SPDX-License-Identifier: Apache-2.0
// Opening a container, and looking things up in it.
#include "bento_contents.h"
#include "bento_toc.h"

#include <trellant/base/large_pages.h>
#include <trellant/io/bento_container.h>
#include <trellant/io/bento_footer.h>
#include <trellant/io/errors.h>

#include <algorithm>
#include <iterator>
#include <memory>
#include <utility>

namespace trellant {

namespace {

/// Cap in bytes of all names of one kind together. Many objects may point at the same long text:
/// without it a small file could fill the memory. Objects beyond it get no name.
constexpr std::uint64_t allNamesLimit = 67'108'864;

BentoFooter readFooter(const RandomAccessFile& file) {
    const std::uint64_t count = std::min<std::uint64_t>(file.size(), bentoTailSize);
    return decodeBentoFooter(file.read(file.size() - count, static_cast<std::int64_t>(count)),
                             file.size());
}

BentoItemList readItems(const RandomAccessFile& file, const BentoFooter& footer,
                        EmptyPieces emptyPieces) {
    // Not zeroed first, as a vector would be: the table may have hundreds of megabytes.
    // NOLINTNEXTLINE(modernize-avoid-c-arrays): only the file says how many.
    const auto storage = std::make_unique_for_overwrite<std::byte[]>(footer.tocSize);
    const std::span<std::byte> toc(storage.get(), footer.tocSize);
    preferLargePages(toc);
    file.read(footer.tocOffset, toc);
    switch (footer.majorVersion) {
        case 2:
            return decodeCompressedToc(toc, footer.byteOrder, footer.blockSize, emptyPieces);
        case 1:
            return decodeTocV1(toc, footer.byteOrder);
        default:
            throw OMFIOError::unsupported("Bento footer major version " +
                                          std::to_string(footer.majorVersion));
    }
}

BentoTOCItem unpacked(const BentoPackedItem& item) {
    return {item.object, item.property, item.type, item.generation, item.segment()};
}

}  // namespace

BentoContainer::Contents::Contents(const std::string& path)
    : file(path),
      footer(readFooter(file)),
      index(readItems(file, footer, EmptyPieces::dropped)),
      cache(file),
      propertyNames(readNames(bentoPropertyNameProperty)),
      typeNames(readNames(bentoTypeNameProperty)) {}

BentoNames BentoContainer::Contents::readNames(std::uint32_t property) const {
    BentoNames names;
    std::uint64_t total = 0;
    for (const std::uint32_t object : index.objects()) {
        const BentoItemIndex::Run run = index.find(object, property);
        if (run.empty() || total > allNamesLimit) {
            continue;
        }
        try {
            total += names.add(object, value(run, nameLimit));
        } catch (const OMFIOError&) {
            continue;
        } catch (const FileSystemError&) {
            continue;
        }
    }
    return names;
}

BentoContainer::BentoContainer(const std::string& path)
    : contents_(std::make_unique<Contents>(path)) {}

BentoContainer::BentoContainer(BentoContainer&& source, std::span<const BentoPackedItem> items,
                               std::span<const NamedProperty> properties)
    : contents_(std::move(source.contents_)) {
    BentoItemList table;
    table.reserve(items.size());
    for (const BentoPackedItem& item : items) {
        table.append(item);
    }
    contents_->index = BentoItemIndex(std::move(table));
    contents_->propertyNames = BentoNames();
    for (const NamedProperty& property : properties) {
        contents_->propertyNames.add(property.number, std::as_bytes(std::span(property.name)));
    }
}

BentoContainer::BentoContainer(BentoContainer&& source) noexcept = default;
BentoContainer::~BentoContainer() = default;

const RandomAccessFile& BentoContainer::file() const noexcept {
    return contents_->file;
}

const BentoFooter& BentoContainer::footer() const noexcept {
    return contents_->footer;
}

std::vector<BentoTOCItem> BentoContainer::tableItems() const {
    const BentoItemList table = readItems(file(), footer(), EmptyPieces::kept);
    std::vector<BentoTOCItem> result;
    result.reserve(table.size());
    std::transform(table.items().begin(), table.items().end(), std::back_inserter(result),
                   unpacked);
    return result;
}

std::size_t BentoContainer::itemCount() const noexcept {
    return contents_->index.itemCount();
}

std::span<const BentoPackedItem> BentoContainer::packedItems(
    std::uint32_t object, std::uint32_t property) const noexcept {
    return contents_->index.find(object, property);
}

std::vector<BentoTOCItem> BentoContainer::items(std::uint32_t object,
                                                std::uint32_t property) const {
    const BentoItemIndex::Run run = contents_->index.find(object, property);
    std::vector<BentoTOCItem> result;
    result.reserve(run.size());
    std::transform(run.begin(), run.end(), std::back_inserter(result), unpacked);
    return result;
}

std::vector<BentoTOCItem> BentoContainer::items(std::uint32_t object,
                                                std::string_view propertyName) const {
    const std::optional<std::uint32_t> property = propertyID(propertyName);
    return property ? items(object, *property) : std::vector<BentoTOCItem>();
}

std::span<const std::uint32_t> BentoContainer::objectIDs() const noexcept {
    return contents_->index.objects();
}

std::optional<std::size_t> BentoContainer::objectIndex(std::uint32_t object) const noexcept {
    return contents_->index.rank(object);
}

std::optional<std::string_view> BentoContainer::propertyName(std::uint32_t property) const {
    return contents_->propertyNames.name(property);
}

std::optional<std::string_view> BentoContainer::typeName(std::uint32_t type) const {
    return contents_->typeNames.name(type);
}

std::optional<std::uint32_t> BentoContainer::propertyID(std::string_view name) const {
    return contents_->propertyNames.object(name);
}

std::optional<std::uint32_t> BentoContainer::typeID(std::string_view name) const {
    return contents_->typeNames.object(name);
}

}  // namespace trellant
