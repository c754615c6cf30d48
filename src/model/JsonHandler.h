#pragma once

#include <rapidjson/reader.h>

#include <QString>
#include <array>
#include <functional>
#include <string_view>

// The parser's events go straight into the records. While a record or list is open, a frame holds
// where its next value belongs (a Slot): the type, known by a table of functions, and the address.

namespace quorel::json {

inline QString toQString(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

/// Strings read lately, shared by those who read them again: the tracks of an album have most of
/// their texts in common. Given text must outlive it.
class RecentStrings {
  public:
    QString get(std::string_view text) {
        if (text.size() > kMaxSize)
            return toQString(text);
        Entry& entry = entries_[std::hash<std::string_view>()(text) % entries_.size()];
        if (entry.text != text)
            entry = {text, toQString(text)};
        return entry.string;
    }

  private:
    static constexpr std::size_t kMaxSize = 64; ///< longer texts are paths and remarks, all unlike

    struct Entry {
        std::string_view text;
        QString string;
    };

    std::array<Entry, 64> entries_;
};

/// A value as the parser meets it. Of an object or list it is the opening bracket.
struct Token {
    enum class Kind { Null, False, True, Number, String, Object, List };

    Kind kind;
    std::string_view text; ///< of a number its digits, of a string its UTF-8 without escapes
    RecentStrings* strings = nullptr;
};

struct Slot;
struct Frame;

/// How values of one C++ type are read.
struct Type {
    /// Stores a value, or begins an object or list; false where it is of another type.
    bool (*take)(const Token&, void* target) = nullptr;
    /// Of an object: where that key's value belongs; nowhere for a key that may not stand here.
    Slot (*member)(Frame&, std::string_view key) = nullptr;
    /// Of a list: where its next element belongs.
    Slot (*element)(void* target) = nullptr;
    /// Of a record: a bit for each field that must be there.
    quint64 required = 0;
};

/// A place for a value.
struct Slot {
    const Type* type = nullptr;
    void* target = nullptr;
};

/// An open object or list.
struct Frame {
    Slot slot;
    bool isList = false;
    std::size_t likely = 0; ///< of a record: the field that probably comes next
    quint64 seen = 0;       ///< of a record: a bit for each field that came
};

/// What an unknown key holds: anything, read past.
inline constexpr Type kIgnored = {
    .take = [](const Token&, void*) { return true; },
    .member = [](Frame& frame, std::string_view) { return frame.slot; },
    .element = [](void*) { return Slot{&kIgnored}; },
};

/// Takes the parser's events; a false ends the parsing.
class Handler : public rapidjson::BaseReaderHandler<rapidjson::UTF8<>, Handler> {
  public:
    explicit Handler(Slot root)
        : next_(root) {}

    bool Null() { return take({Token::Kind::Null, {}}); }
    bool Bool(bool value) { return take({value ? Token::Kind::True : Token::Kind::False, {}}); }
    bool RawNumber(const char* text, unsigned size, bool) {
        return take({Token::Kind::Number, {text, size}});
    }
    bool String(const char* text, unsigned size, bool) {
        return take({Token::Kind::String, {text, size}, &strings_});
    }
    bool StartObject() { return open({Token::Kind::Object, {}}); }
    bool StartArray() { return open({Token::Kind::List, {}}); }
    bool EndArray(unsigned) { return close(); }
    bool EndObject(unsigned) { return close(); }
    bool Key(const char* text, unsigned size, bool) {
        Frame& frame = frames_[depth_ - 1];
        next_ = frame.slot.type->member(frame, {text, size});
        return next_.type != nullptr;
    }

  private:
    /// The records need five levels; the rest is room for unknown keys. The parser recurses, so
    /// the limit guards its stack.
    static constexpr std::size_t kMaxDepth = 64;

    bool take(const Token& token) {
        if (depth_ > 0 && frames_[depth_ - 1].isList) {
            const Slot& list = frames_[depth_ - 1].slot;
            next_ = list.type->element(list.target);
        }
        return next_.type->take(token, next_.target);
    }

    bool open(const Token& token) {
        if (depth_ == kMaxDepth || !take(token))
            return false;
        frames_[depth_++] = {next_, token.kind == Token::Kind::List};
        return true;
    }

    bool close() {
        const Frame& frame = frames_[--depth_];
        const quint64 required = frame.slot.type->required;
        return (frame.seen & required) == required;
    }

    RecentStrings strings_;
    std::array<Frame, kMaxDepth> frames_;
    std::size_t depth_ = 0;
    Slot next_; ///< where the value behind the last key belongs
};

} // namespace quorel::json
