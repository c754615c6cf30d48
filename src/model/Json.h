#pragma once

#include <QByteArray>
#include <functional>
#include <optional>

namespace quorel {

// The JSON forms of Track, Playlist, AppSettings and PersistedState; model/JsonFields.h holds the
// keys. All of these may run on any thread.

/// The record as compact UTF-8 JSON. Absent optionals are left out; UUIDs are upper case with
/// hyphens and without braces. Never fails: JSON has no word for what is not a number or infinite,
/// so such a double's key is left out, in a list it is written as 0, and half of a surrogate pair
/// is written as U+FFFD. All else reads back equal.
template <class Record>
QByteArray toJson(const Record& record);

/// The same text in pieces of about a megabyte as they come about, which is faster for a large
/// record than to hold it whole. False once `take` was: the rest is not written then.
template <class Record>
bool writeJson(const Record& record, const std::function<bool(QByteArrayView)>& take);

/// The record that the text holds, or nothing where it is not JSON in UTF-8, or a value is not of
/// its key's type, an integer is not whole or leaves 64 bits, a string is no UUID or no case of its
/// enumeration, a required key is missing, a known one stands twice, or objects nest deeper
/// than 64. A whole number such as 3.0 is an integer. null means absent, for optional values only.
/// Unknown keys are ignored. Safe for any bytes. Fastest where the caller gives its array away.
template <class Record>
std::optional<Record> fromJson(QByteArray json);

} // namespace quorel
