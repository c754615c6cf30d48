#include "model/Json.h"
#include "model/JsonFields.h"

#include <QStringEncoder>
#include <algorithm>
#include <charconv>
#include <cmath>

namespace quorel {

namespace {

constexpr std::string_view kHex = "0123456789ABCDEF";

using Take = std::function<bool(QByteArrayView)>;

/// Puts JSON text together in one array, which grows or is taken each time it is full.
class Writer {
  public:
    explicit Writer(const Take* take = nullptr)
        : take_(take) {
        constexpr qsizetype kPiece = 1 << 20;
        if (take_)
            text_.resize(kPiece);
    }

    QByteArray text() {
        text_.truncate(at_);
        text_.squeeze();
        return std::move(text_);
    }

    /// Has what is left taken; false if any piece was refused.
    bool finish() { return handOver(at_); }

    void put(char c) { *room(1) = c, ++at_; }

    void put(std::string_view plain) {
        const auto size = static_cast<qsizetype>(plain.size());
        std::copy_n(plain.data(), size, room(size));
        at_ += size;
    }

    /// Ends an object or a list, each element of which was followed by a comma.
    void close(char bracket) {
        if (text_[at_ - 1] == ',')
            --at_;
        put(bracket);
    }

    template <class Number>
    void number(Number value) {
        constexpr qsizetype kLongest = 32; // the shortest form of any double has at most 24
        char* begin = room(kLongest);
        at_ += std::to_chars(begin, begin + kLongest, value).ptr - begin;
    }

    void string(QStringView text) {
        put('"');
        if (!putAscii(text))
            putEscaped(text);
        put('"');
    }

  private:
    char* room(qsizetype bytes) {
        if (at_ + bytes > text_.size())
            makeRoom(bytes);
        return text_.data() + at_;
    }

    void makeRoom(qsizetype bytes);
    bool handOver(qsizetype size);

    /// Text that stands in JSON as it is, as most does; false, and nothing put, for any other.
    /// Its loop has no early exit, for the compiler to take whole vectors at once.
    bool putAscii(QStringView text);
    void putEscaped(QStringView text);

    const Take* take_;
    bool isTaken_ = true; ///< no piece has been refused
    QByteArray text_;
    qsizetype at_ = 0; ///< the end of what is written
    QByteArray utf8_;  ///< one string on its way, kept to save allocations
    QStringEncoder encoder_{QStringEncoder::Utf8, QStringEncoder::Flag::Stateless};
};

constexpr bool needsEscape(char16_t c) {
    return (c < 0x20) | (c == u'"') | (c == u'\\');
}

void Writer::makeRoom(qsizetype bytes) {
    // The last character stays, for a bracket that may have to replace it.
    if (take_ && at_ > 1)
        handOver(at_ - 1);
    if (at_ + bytes > text_.size())
        text_.resize(qMax(at_ + bytes, 2 * text_.size()));
}

bool Writer::handOver(qsizetype size) {
    isTaken_ = isTaken_ && (*take_)(QByteArrayView(text_).first(size));
    std::copy(text_.cbegin() + size, text_.cbegin() + at_, text_.begin());
    at_ -= size;
    return isTaken_;
}

bool Writer::putAscii(QStringView text) {
    const char16_t* from = text.utf16();
    const qsizetype size = text.size();
    char* to = room(size);
    char16_t others = 0;
    for (qsizetype i = 0; i < size; ++i) {
        others |= static_cast<char16_t>((from[i] > 0x7F) | needsEscape(from[i]));
        to[i] = static_cast<char>(from[i]);
    }
    if (others == 0)
        at_ += size;
    return others == 0;
}

void Writer::putEscaped(QStringView text) {
    utf8_.resize(encoder_.requiredSpace(text.size()));
    const char* end = encoder_.appendToBuffer(utf8_.data(), text);
    constexpr qsizetype kLongestEscape = 6;
    char* to = room(kLongestEscape * (end - utf8_.constData()));
    for (const char* from = utf8_.constData(); from != end; ++from) {
        const auto code = static_cast<unsigned char>(*from);
        if (needsEscape(code))
            *to++ = '\\';
        if (code < 0x20) {
            to = std::copy_n("u00", 3, to);
            *to++ = kHex[code >> 4];
            *to++ = kHex[code & 15];
        } else {
            *to++ = *from;
        }
    }
    at_ = to - text_.constData();
}

void write(Writer& out, bool value) {
    out.put(value ? std::string_view("true") : std::string_view("false"));
}

void write(Writer& out, qint64 value) {
    out.number(value);
}

void write(Writer& out, double value) {
    out.number(std::isfinite(value) ? value : 0.0);
}

void write(Writer& out, const QString& value) {
    out.string(value);
}

void write(Writer& out, const QUuid& id) {
    std::array<char, 38> text;
    char* at = text.data();
    const auto digits = [&at](quint32 value, int count) {
        for (int shift = 4 * (count - 1); shift >= 0; shift -= 4)
            *at++ = kHex[(value >> shift) & 15];
    };
    *at++ = '"';
    digits(id.data1, 8);
    *at++ = '-';
    digits(id.data2, 4);
    *at++ = '-';
    digits(id.data3, 4);
    *at++ = '-';
    digits(id.data4[0], 2);
    digits(id.data4[1], 2);
    *at++ = '-';
    for (int i = 2; i < 8; ++i)
        digits(id.data4[i], 2);
    *at++ = '"';
    out.put(std::string_view(text.data(), text.size()));
}

template <StoredEnum Enum>
void write(Writer& out, Enum value) {
    out.put('"');
    out.put(rawValue(value));
    out.put('"');
}

// Containers write each other's elements, so all are declared before the first is defined.
template <class T>
void write(Writer& out, const std::optional<T>& value);
template <class T>
void write(Writer& out, const QList<T>& list);
template <class T>
void write(Writer& out, const QMap<QString, T>& map);
template <JsonRecord Record>
void write(Writer& out, const Record& record);

template <class T>
void write(Writer& out, const std::optional<T>& value) {
    write(out, *value);
}

template <class T>
void write(Writer& out, const QList<T>& list) {
    out.put('[');
    for (const T& item : list) {
        write(out, item);
        out.put(',');
    }
    out.close(']');
}

template <class T>
void write(Writer& out, const QMap<QString, T>& map) {
    out.put('{');
    for (auto item = map.begin(); item != map.end(); ++item) {
        out.string(item.key());
        out.put(':');
        write(out, item.value());
        out.put(',');
    }
    out.close('}');
}

template <class T>
bool isWritable(const T&) {
    return true;
}

bool isWritable(double value) {
    return std::isfinite(value);
}

template <class T>
bool isWritable(const std::optional<T>& value) {
    return value && isWritable(*value);
}

template <class T>
void writeField(Writer& out, std::string_view key, const T& value) {
    if (!isWritable(value))
        return;
    out.put('"');
    out.put(key);
    out.put("\":");
    write(out, value);
    out.put(',');
}

template <JsonRecord Record>
void write(Writer& out, const Record& record) {
    out.put('{');
    std::apply(
        [&](const auto&... field) { (writeField(out, field.key, record.*field.member), ...); },
        kFields<Record>);
    out.close('}');
}

} // namespace

template <class Record>
QByteArray toJson(const Record& record) {
    Writer out;
    write(out, record);
    return out.text();
}

template <class Record>
bool writeJson(const Record& record, const Take& take) {
    Writer out(&take);
    write(out, record);
    return out.finish();
}

template QByteArray toJson(const Track&);
template QByteArray toJson(const Playlist&);
template QByteArray toJson(const AppSettings&);
template QByteArray toJson(const PersistedState&);
template bool writeJson(const PersistedState&, const Take&);

} // namespace quorel
