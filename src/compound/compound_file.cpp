// SPDX-License-Identifier: Apache-2.0
#include "names.h"
#include "tree.h"
#include "writer.h"

#include <trellant/base/precondition.h>

#include <utility>

namespace trellant::compound {

namespace {

/// A new entry, still without its content.
Entry& addEntry(Tree& tree, CompoundFile::Storage parent, std::u16string_view name,
                EntryKind kind) {
    const auto parentNumber = static_cast<std::uint32_t>(parent);
    precondition(
        parentNumber < tree.entries.size() && tree.entries[parentNumber].kind == EntryKind::storage,
        "the parent of an entry is a storage of the same file");
    checkName(name);
    tree.entries.push_back({.parent = parentNumber,
                            .kind = kind,
                            .nameLength = static_cast<std::uint8_t>(name.size()),
                            .nameOffset = tree.names.size()});
    tree.names += name;
    return tree.entries.back();
}

}  // namespace

CompoundFile::CompoundFile(const ClassID& headerClass, const ClassID& rootClass)
    : tree_(std::make_unique<Tree>()) {
    constexpr std::u16string_view rootName = u"Root Entry";
    tree_->headerClass = headerClass;
    tree_->storageClasses.push_back(rootClass);
    tree_->names = rootName;
    tree_->entries.push_back({.nameLength = static_cast<std::uint8_t>(rootName.size())});
}

CompoundFile::~CompoundFile() = default;
CompoundFile::CompoundFile(CompoundFile&&) noexcept = default;
CompoundFile& CompoundFile::operator=(CompoundFile&&) noexcept = default;

CompoundFile::Storage CompoundFile::addStorage(Storage parent, std::u16string_view name,
                                               const ClassID& classID) {
    addEntry(*tree_, parent, name, EntryKind::storage).content = tree_->storageClasses.size();
    tree_->storageClasses.push_back(classID);
    return static_cast<Storage>(tree_->entries.size() - 1);
}

void CompoundFile::addStream(Storage parent, std::u16string_view name, ByteView bytes) {
    Entry& entry = addEntry(*tree_, parent, name, EntryKind::heldStream);
    entry.byteCount = bytes.size();
    entry.content = tree_->heldBytes.add(bytes);
}

void CompoundFile::addStream(Storage parent, std::u16string_view name, std::uint64_t byteCount,
                             ByteSource source) {
    Entry& entry = addEntry(*tree_, parent, name, EntryKind::sourceStream);
    entry.byteCount = byteCount;
    entry.content = tree_->sources.size();
    tree_->sources.push_back(std::move(source));
}

std::size_t CompoundFile::entryCount() const noexcept {
    return tree_->entries.size();
}

void CompoundFile::write(const ByteSink& sink) const {
    writeTree(*tree_, sink);
}

}  // namespace trellant::compound
