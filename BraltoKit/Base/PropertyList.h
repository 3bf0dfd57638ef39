#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QVariant>

#include <optional>
#include <utility>

/// The XML property lists in which an application bundle describes itself.
namespace Bralto::PropertyList {

/// A dictionary in the order in which it is written. A value is a bool, a qlonglong, a QString, a
/// QVariantList or a QVariantMap, whose keys are written in ascending order.
using Entries = QList<std::pair<QString, QVariant>>;

/// The same bytes for the same entries. Characters that XML can't hold become U+FFFD.
[[nodiscard]] QByteArray encode(const Entries& entries);

/// The dictionary in `xml`, with values of the types above; absent if there is none, or if it is
/// cut off or malformed. Values of other types are left out. Nothing outside `xml` is read.
[[nodiscard]] std::optional<QVariantMap> decode(const QByteArray& xml);

} // namespace Bralto::PropertyList
