// SPDX-License-Identifier: Apache-2.0
// A file that comes into being: whole at the end, or gone.
#pragma once

#include <trellant/base/bytes.h>
#include <trellant/base/host_watch.h>

#include <optional>
#include <string>

namespace trellant::wav {

/// A new file that goes again unless it is kept, also when this process is ended.
class NewFile {
  public:
    /// `kind` is what a person calls it ("WAVE file"); `path` outlives this. Throws
    /// ConversionError, also when there is a file of that name.
    NewFile(const std::string& path, std::string kind);
    ~NewFile();
    NewFile(const NewFile&) = delete;
    NewFile& operator=(const NewFile&) = delete;
    NewFile(NewFile&&) = delete;
    NewFile& operator=(NewFile&&) = delete;

    [[nodiscard]] int descriptor() const noexcept { return descriptor_; }
    /// Throws ConversionError.
    void write(ByteView bytes);
    void keep() noexcept { kept_ = true; }

  private:
    const std::string& path_;
    std::string kind_;
    int descriptor_ = -1;
    bool kept_ = false;
    std::optional<UnfinishedFile> unfinished_;
};

}  // namespace trellant::wav
