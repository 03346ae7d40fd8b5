// SPDX-License-Identifier: Apache-2.0
// The stored objects of an AAF file as they stand there, without a look at what they mean. Strict:
// whatever does not fit together is noted down.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <trellant_testing/compound_reader.h>
#include <vector>

namespace trellant::testing {

struct StoredObject;

/// As the head of its value says.
enum class StoredForm : std::uint16_t {
    weak = 0x02,
    weakVector = 0x12,
    weakSet = 0x1A,
    strong = 0x22,
    strongVector = 0x32,
    strongSet = 0x3A,
    stream = 0x42,
    data = 0x82,
};

struct StoredProperty {
    StoredForm form = StoredForm::data;
    /// Of data.
    Bytes value{};
    /// Of a stream its entry in the container.
    std::uint32_t stream = 0;
    /// Of strong references, in the order of the index.
    std::vector<std::shared_ptr<StoredObject>> objects{};
    /// Of a strong set and of weak references.
    std::vector<Bytes> names{};
    std::uint16_t namingPID = 0;
    /// Of weak references: the place of their path among the file's.
    std::uint16_t path = 0;
};

struct StoredObject {
    std::array<std::byte, 16> classID{};
    /// By PID.
    std::map<std::uint16_t, StoredProperty> properties{};
};

class StoredObjects {
  public:
    /// Reads all objects. `image` has to outlive this.
    explicit StoredObjects(const FileImage& image);

    /// Of the container too; empty for a faultless file.
    [[nodiscard]] const std::vector<std::string>& problems() const noexcept { return problems_; }
    [[nodiscard]] const StoredObject& root() const noexcept { return *root_; }
    /// PIDs from the root on.
    [[nodiscard]] const std::vector<std::vector<std::uint16_t>>& paths() const noexcept {
        return paths_;
    }
    /// What a path leads to; null when nothing is there.
    [[nodiscard]] const StoredProperty* follow(const std::vector<std::uint16_t>& path) const;
    [[nodiscard]] const CompoundReader& container() const noexcept { return container_; }

  private:
    struct Place {
        std::uint32_t storage;
        std::string path;
        /// Entries of the storage that a property accounts for.
        std::set<std::uint32_t> known;
    };
    struct Head {
        std::uint16_t pid;
        std::uint16_t form;
        std::uint16_t length;
    };

    void check(bool holds, const Place& place, const std::string& problem);
    std::shared_ptr<StoredObject> readObject(std::uint32_t storage, const std::string& path);
    std::vector<Head> readHeads(ByteView stored, const Place& place);
    StoredProperty readProperty(const Head& head, ByteView value, Place& place);
    void readWeak(StoredProperty& property, ByteView value, Place& place);
    void readWeakIndex(StoredProperty& property, ByteView value, Place& place);
    void readStrong(StoredProperty& property, ByteView value, Place& place);
    void readStrongIndex(StoredProperty& property, ByteView value, Place& place);
    std::optional<std::u16string> readName(ByteView value, Place& place);
    std::optional<std::uint32_t> entry(const std::u16string& name, StoredEntry::Type type,
                                       Place& place);
    /// The index that a value leads to; empty when there is none.
    Bytes readIndex(const std::u16string& name, Place& place);
    void readPaths();
    void checkSetNames(const StoredProperty& property, const Place& place);

    CompoundReader container_;
    std::vector<std::string> problems_;
    std::shared_ptr<StoredObject> root_ = std::make_shared<StoredObject>();
    std::vector<std::vector<std::uint16_t>> paths_;
};

}  // namespace trellant::testing
