#pragma once

#include <QString>
#include <QStringList>
#include <cstddef>
#include <span>

namespace quorel {

/// How an ID3v2 frame's text is stored, by the byte in front of it.
enum class Id3Encoding : unsigned char { Latin1 = 0, Utf16 = 1, Utf16BigEndian = 2, Utf8 = 3 };

/// Takes the texts out of a frame, one after the other: each ends at a zero of its encoding's width
/// or with the frame. Marks of byte order (also doubled, or where none belongs) are obeyed and left
/// out; UTF-16 without one is read in the order of the text before it, else in the likelier one.
class Id3Strings {
  public:
    Id3Strings(std::span<const std::byte> bytes, Id3Encoding encoding)
        : bytes_(bytes)
        , encoding_(encoding) {}

    bool atEnd() const { return bytes_.empty(); }
    /// The next text; what is not well-formed in it becomes U+FFFD.
    QString next();
    /// All that follow, without empty ones at the end, which are but more zeros.
    QStringList rest();

  private:
    enum class Order { Unknown, Big, Little };

    QString decodeUtf16(std::span<const std::byte> text);

    std::span<const std::byte> bytes_;
    Id3Encoding encoding_;
    Order order_ = Order::Unknown;
};

} // namespace quorel
