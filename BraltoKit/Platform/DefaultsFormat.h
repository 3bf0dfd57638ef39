#pragma once

#include <QByteArray>
#include <QVariantMap>

#include <optional>

/// How a domain of defaults is written: one JSON object, types kept apart.
///
///     {"$data": base64}        bytes
///     {"$date": ISO 8601}      a time in UTC, in milliseconds
///     {"$dictionary": {…}}     a dictionary whose one key could be taken for one of these
///
/// A double always has a point or an exponent, an integer never. Any thread.
namespace Bralto::DefaultsFormat {

/// Indented by two blanks, keys ascending. Every value is one that a `DefaultsStore` can hold.
[[nodiscard]] QByteArray encode(const QVariantMap& values);

/// Absent if `text` is no JSON object. A value that can't be understood is left out, with the
/// array or dictionary that it stands in.
[[nodiscard]] std::optional<QVariantMap> decode(const QByteArray& text);

} // namespace Bralto::DefaultsFormat
