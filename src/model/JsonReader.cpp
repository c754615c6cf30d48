#include "model/Json.h"
#include "model/JsonFields.h"

#include <simdjson.h>

#include <cmath>

namespace quorel {

namespace {

using simdjson::dom::element;

// Every read() says whether the element holds a value of that type; on false the value is void.

bool read(element json, bool& value) {
    return json.get(value) == simdjson::SUCCESS;
}

bool read(element json, double& value) {
    return json.get(value) == simdjson::SUCCESS;
}

bool read(element json, qint64& value) {
    if (int64_t integer = 0; json.get(integer) == simdjson::SUCCESS) {
        value = integer;
        return true;
    }
    double number = 0;
    if (json.get(number) != simdjson::SUCCESS || std::abs(number) >= 0x1p63 ||
        std::trunc(number) != number)
        return false;
    value = static_cast<qint64>(number);
    return true;
}

bool read(element json, std::string_view& value) {
    return json.get(value) == simdjson::SUCCESS;
}

QString toQString(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

bool read(element json, QString& value) {
    std::string_view text;
    if (!read(json, text))
        return false;
    value = toQString(text);
    return true;
}

bool read(element json, QUuid& value) {
    constexpr std::string_view kNil = "00000000-0000-0000-0000-000000000000";
    std::string_view text;
    if (!read(json, text) || text.size() != kNil.size())
        return false;
    value = QUuid::fromString(QLatin1StringView(text.data(), static_cast<qsizetype>(text.size())));
    return !value.isNull() || text == kNil;
}

template <StoredEnum Enum>
bool read(element json, Enum& value) {
    std::string_view text;
    const bool isText = read(json, text);
    const std::optional<Enum> found = isText ? fromRawValue<Enum>(text) : std::nullopt;
    value = found.value_or(value);
    return found.has_value();
}

// Containers read each other's elements, so all are declared before the first is defined.
template <class T>
bool read(element json, std::optional<T>& value);
template <class T>
bool read(element json, QList<T>& list);
template <class T>
bool read(element json, QMap<QString, T>& map);
template <JsonRecord Record>
bool read(element json, Record& record);

template <class T>
bool read(element json, std::optional<T>& value) {
    return json.is_null() || read(json, value.emplace());
}

template <class T>
bool read(element json, QList<T>& list) {
    simdjson::dom::array array;
    if (json.get(array) != simdjson::SUCCESS)
        return false;
    list.clear();
    list.reserve(static_cast<qsizetype>(array.size()));
    for (const element item : array) {
        if (!read(item, list.emplaceBack()))
            return false;
    }
    return true;
}

template <class T>
bool read(element json, QMap<QString, T>& map) {
    simdjson::dom::object object;
    if (json.get(object) != simdjson::SUCCESS)
        return false;
    for (const auto& [key, item] : object) {
        const QString name = toQString(key);
        if (map.contains(name) || !read(item, map[name]))
            return false;
    }
    return true;
}

template <class T>
constexpr bool kIsOptional = false;
template <class T>
constexpr bool kIsOptional<std::optional<T>> = true;

template <class Record>
constexpr std::size_t kFieldCount = std::tuple_size_v<decltype(kFields<Record>)>;

/// A field as a key found in the text picks it at run time.
template <class Record>
struct FieldReader {
    std::string_view key;
    bool (*readInto)(element, Record&);
    bool required;
};

template <class Record, std::size_t I>
constexpr FieldReader<Record> fieldReader() {
    using Value = std::remove_reference_t<decltype(std::declval<Record>().*
                                                   std::get<I>(kFields<Record>).member)>;
    return {
        std::get<I>(kFields<Record>).key,
        [](element json, Record& record) {
            return read(json, record.*std::get<I>(kFields<Record>).member);
        },
        !kIsOptional<Value> && !kEveryKeyMayBeMissing<Record>,
    };
}

template <class Record>
constexpr auto kFieldReaders = []<std::size_t... I>(std::index_sequence<I...>) {
    return std::array{fieldReader<Record, I>()...};
}(std::make_index_sequence<kFieldCount<Record>>());

/// The field of that key, or kFieldCount. The search begins at `likely`: keys mostly come in the
/// order in which they are written.
template <class Record>
std::size_t findField(std::string_view key, std::size_t likely) {
    constexpr std::size_t kCount = kFieldCount<Record>;
    for (std::size_t i = 0; i < kCount; ++i) {
        const std::size_t index = likely + i < kCount ? likely + i : likely + i - kCount;
        if (kFieldReaders<Record>[index].key == key)
            return index;
    }
    return kCount;
}

template <JsonRecord Record>
bool read(element json, Record& record) {
    simdjson::dom::object object;
    if (json.get(object) != simdjson::SUCCESS)
        return false;
    std::array<bool, kFieldCount<Record>> seen{};
    std::size_t likely = 0;
    for (const auto& [key, item] : object) {
        const std::size_t index = findField<Record>(key, likely);
        if (index == seen.size())
            continue;
        if (std::exchange(seen[index], true) ||
            !kFieldReaders<Record>[index].readInto(item, record))
            return false;
        likely = index + 1;
    }
    for (std::size_t i = 0; i < seen.size(); ++i) {
        if (kFieldReaders<Record>[i].required && !seen[i])
            return false;
    }
    return true;
}

} // namespace

template <class Record>
std::optional<Record> fromJson(QByteArray json) {
    // The parser reads whole vectors and so past the end of the text, within the reserve.
    json.reserve(json.size() + static_cast<qsizetype>(simdjson::SIMDJSON_PADDING));
    simdjson::dom::parser parser;
    element root;
    Record record;
    const bool isJson = parser.parse(json.constData(), static_cast<std::size_t>(json.size()), false)
                            .get(root) == simdjson::SUCCESS;
    if (!isJson || !read(root, record))
        return std::nullopt;
    return record;
}

template std::optional<Track> fromJson(QByteArray);
template std::optional<Playlist> fromJson(QByteArray);
template std::optional<AppSettings> fromJson(QByteArray);
template std::optional<PersistedState> fromJson(QByteArray);

} // namespace quorel
