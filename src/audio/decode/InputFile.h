#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

namespace quorel {

/// A regular file open for reading at any place, without a position of its own. Any thread may
/// read.
class InputFile {
  public:
    /// Opens a regular file and nothing else; on failure says why in `error` (one clause).
    static std::optional<InputFile> open(const std::string& path, std::string& error);

    InputFile(InputFile&& other) noexcept;
    InputFile& operator=(InputFile&&) = delete;
    ~InputFile();

    /// Bytes in the file when it was opened.
    int64_t size() const { return size_; }

    /// Fills `buffer` from byte `offset` on and returns the bytes read: fewer than asked at the end
    /// of the file or where the disk fails. Blocks on the disk.
    std::size_t readAt(int64_t offset, std::span<std::byte> buffer) const;

  private:
    InputFile(int descriptor, int64_t size);

    int descriptor_;
    int64_t size_;
};

} // namespace quorel
