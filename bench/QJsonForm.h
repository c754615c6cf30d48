#pragma once

#include "model/JsonFields.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace quorel::bench {

// The records' JSON form by way of Qt's own classes, as the measure for ours. It checks less.

inline QJsonValue toValue(bool value) {
    return value;
}
inline QJsonValue toValue(qint64 value) {
    return value;
}
inline QJsonValue toValue(double value) {
    return value;
}
inline QJsonValue toValue(const QString& value) {
    return value;
}
inline QJsonValue toValue(const QUuid& value) {
    return value.toString(QUuid::WithoutBraces).toUpper();
}
template <StoredEnum Enum>
QJsonValue toValue(Enum value) {
    const std::string_view raw = rawValue(value);
    return QLatin1StringView(raw.data(), qsizetype(raw.size()));
}
template <class T>
QJsonValue toValue(const QList<T>& list);
template <class T>
QJsonValue toValue(const QMap<QString, T>& map);
template <JsonRecord Record>
QJsonValue toValue(const Record& record);
template <class T>
QJsonValue toValue(const std::optional<T>& value) {
    return value ? toValue(*value) : QJsonValue(QJsonValue::Undefined);
}
template <class T>
QJsonValue toValue(const QList<T>& list) {
    QJsonArray array;
    for (const T& item : list)
        array.append(toValue(item));
    return array;
}
template <class T>
QJsonValue toValue(const QMap<QString, T>& map) {
    QJsonObject object;
    for (auto item = map.begin(); item != map.end(); ++item)
        object.insert(item.key(), toValue(item.value()));
    return object;
}
template <JsonRecord Record>
QJsonValue toValue(const Record& record) {
    QJsonObject object;
    const auto insert = [&object](std::string_view key, const QJsonValue& value) {
        object.insert(QLatin1StringView(key.data(), qsizetype(key.size())), value);
    };
    std::apply(
        [&](const auto&... field) { (insert(field.key, toValue(record.*field.member)), ...); },
        kFields<Record>);
    return object;
}

inline void fromValue(const QJsonValue& json, bool& value) {
    value = json.toBool();
}
inline void fromValue(const QJsonValue& json, qint64& value) {
    value = json.toInteger();
}
inline void fromValue(const QJsonValue& json, double& value) {
    value = json.toDouble();
}
inline void fromValue(const QJsonValue& json, QString& value) {
    value = json.toString();
}
inline void fromValue(const QJsonValue& json, QUuid& value) {
    value = QUuid::fromString(json.toString());
}
template <StoredEnum Enum>
void fromValue(const QJsonValue& json, Enum& value) {
    value = fromRawValue<Enum>(json.toString().toStdString()).value_or(value);
}
template <class T>
void fromValue(const QJsonValue& json, QList<T>& list);
template <class T>
void fromValue(const QJsonValue& json, QMap<QString, T>& map);
template <JsonRecord Record>
void fromValue(const QJsonValue& json, Record& record);
template <class T>
void fromValue(const QJsonValue& json, std::optional<T>& value) {
    fromValue(json, value.emplace());
}
template <class T>
void fromValue(const QJsonValue& json, QList<T>& list) {
    const QJsonArray array = json.toArray();
    list.clear();
    list.reserve(array.size());
    for (const QJsonValue item : array)
        fromValue(item, list.emplaceBack());
}
template <class T>
void fromValue(const QJsonValue& json, QMap<QString, T>& map) {
    const QJsonObject object = json.toObject();
    for (auto item = object.begin(); item != object.end(); ++item)
        fromValue(item.value(), map[item.key()]);
}
template <JsonRecord Record>
void fromValue(const QJsonValue& json, Record& record) {
    const QJsonObject object = json.toObject();
    const auto read = [&object](std::string_view key, auto& value) {
        const QJsonValue found = object[QLatin1StringView(key.data(), qsizetype(key.size()))];
        if (!found.isUndefined())
            fromValue(found, value);
    };
    std::apply([&](const auto&... field) { (read(field.key, record.*field.member), ...); },
               kFields<Record>);
}

} // namespace quorel::bench
