#include "model/Json.h"
#include "model/JsonFields.h"
#include "model/JsonHandler.h"

#include <charconv>
#include <cmath>

namespace quorel {

namespace {

using namespace json;

// read() stores a token's value and says whether it is one of that type.

bool read(const Token& token, bool& value) {
    value = token.kind == Token::Kind::True;
    return value || token.kind == Token::Kind::False;
}

template <class Number>
bool parse(std::string_view text, Number& value) {
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    return error == std::errc() && stop == end;
}

bool read(const Token& token, double& value) {
    return token.kind == Token::Kind::Number && parse(token.text, value);
}

bool read(const Token& token, qint64& value) {
    if (token.kind != Token::Kind::Number)
        return false;
    if (parse(token.text, value))
        return true;
    double number = 0;
    if (!parse(token.text, number) || std::abs(number) >= 0x1p63 || std::trunc(number) != number)
        return false;
    value = static_cast<qint64>(number);
    return true;
}

bool read(const Token& token, QString& value) {
    if (token.kind != Token::Kind::String)
        return false;
    value = token.strings->get(token.text);
    return true;
}

bool read(const Token& token, QUuid& value) {
    constexpr std::string_view kNil = "00000000-0000-0000-0000-000000000000";
    if (token.kind != Token::Kind::String || token.text.size() != kNil.size())
        return false;
    value = QUuid::fromString(QLatin1StringView(token.text.data(), kNil.size()));
    return !value.isNull() || token.text == kNil;
}

template <StoredEnum Enum>
bool read(const Token& token, Enum& value) {
    const std::optional<Enum> found =
        token.kind == Token::Kind::String ? fromRawValue<Enum>(token.text) : std::nullopt;
    value = found.value_or(value);
    return found.has_value();
}

template <class T>
bool read(const Token& token, std::optional<T>& value) {
    return token.kind == Token::Kind::Null || read(token, value.emplace());
}

template <class T>
bool read(const Token& token, QList<T>& list) {
    list.clear();
    return token.kind == Token::Kind::List;
}

template <class T>
bool read(const Token& token, QMap<QString, T>&) {
    return token.kind == Token::Kind::Object;
}

template <JsonRecord Record>
bool read(const Token& token, Record&) {
    return token.kind == Token::Kind::Object;
}

template <class T>
Slot slotFor(T& target);

template <class T>
Slot nextElement(QList<T>& list) {
    return slotFor(list.emplaceBack());
}

template <class T>
Slot findMember(Frame&, QMap<QString, T>& map, std::string_view key) {
    const QString name = toQString(key);
    return map.contains(name) ? Slot() : slotFor(map[name]);
}

template <class T>
constexpr bool kIsOptional = false;
template <class T>
constexpr bool kIsOptional<std::optional<T>> = true;

/// A record's field as a key found in the text picks it.
template <class Record>
struct FieldSlot {
    std::string_view key;
    Slot (*slot)(Record&);
    bool isRequired;
};

template <class Record, std::size_t I>
constexpr FieldSlot<Record> fieldSlot() {
    constexpr auto kField = std::get<I>(kFields<Record>);
    using Value = std::remove_reference_t<decltype(std::declval<Record&>().*kField.member)>;
    return {
        kField.key,
        [](Record& record) { return slotFor(record.*std::get<I>(kFields<Record>).member); },
        !kIsOptional<Value> && !kEveryKeyMayBeMissing<Record>,
    };
}

template <class Record>
constexpr auto kFieldSlots = []<std::size_t... I>(std::index_sequence<I...>) {
    static_assert(sizeof...(I) <= 64, "a frame has one bit for each field");
    return std::array{fieldSlot<Record, I>()...};
}
(std::make_index_sequence<std::tuple_size_v<std::remove_const_t<decltype(kFields<Record>)>>>());

template <JsonRecord Record>
Slot findMember(Frame& frame, Record& record, std::string_view key) {
    constexpr auto& kSlots = kFieldSlots<Record>;
    // Keys mostly come in the order in which they are written.
    for (std::size_t i = 0; i < kSlots.size(); ++i) {
        const std::size_t index = (frame.likely + i) % kSlots.size();
        if (kSlots[index].key != key)
            continue;
        const quint64 bit = quint64(1) << index;
        const bool isRepeated = (std::exchange(frame.seen, frame.seen | bit) & bit) != 0;
        frame.likely = index + 1;
        return isRepeated ? Slot() : kSlots[index].slot(record);
    }
    return {&kIgnored};
}

template <class T>
constexpr Type typeOf() {
    Type type;
    type.take = [](const Token& token, void* target) {
        return read(token, *static_cast<T*>(target));
    };
    if constexpr (requires(Frame & frame, T & value) { findMember(frame, value, {}); })
        type.member = [](Frame& frame, std::string_view key) {
            return findMember(frame, *static_cast<T*>(frame.slot.target), key);
        };
    if constexpr (requires(T & value) { nextElement(value); })
        type.element = [](void* target) { return nextElement(*static_cast<T*>(target)); };
    if constexpr (JsonRecord<T>) {
        for (std::size_t i = 0; i < kFieldSlots<T>.size(); ++i)
            type.required |= quint64(kFieldSlots<T>[i].isRequired) << i;
    }
    return type;
}

template <class T>
constexpr Type kType = typeOf<T>();

template <class T>
Slot slotFor(T& target) {
    return {&kType<T>, &target};
}

} // namespace

template <class Record>
std::optional<Record> fromJson(QByteArray json) {
    // Checked here as a whole, which is faster than character by character in the parser.
    if (!QUtf8StringView(json.constData(), json.size()).isValidUtf8())
        return std::nullopt;
    Record record;
    Handler handler(slotFor(record));
    rapidjson::Reader reader;
    rapidjson::InsituStringStream stream(json.data());
    constexpr unsigned kFlags = rapidjson::kParseInsituFlag | rapidjson::kParseNumbersAsStringsFlag;
    // The parser takes a zero byte for the end of the text.
    if (!reader.Parse<kFlags>(stream, handler) ||
        static_cast<qsizetype>(stream.Tell()) != json.size())
        return std::nullopt;
    return record;
}

template std::optional<Track> fromJson(QByteArray);
template std::optional<Playlist> fromJson(QByteArray);
template std::optional<AppSettings> fromJson(QByteArray);
template std::optional<PersistedState> fromJson(QByteArray);

} // namespace quorel
