#pragma once

#include <QString>
#include <QUuid>

#include <optional>

namespace Bralto {

/// The UUID that `text` spells in its canonical form of 36 characters, in either case. Nothing
/// else is one: no braces, no missing hyphens, and not the empty UUID either.
[[nodiscard]] inline std::optional<QUuid> parsedUuid(const QString& text)
{
    const QUuid uuid = QUuid::fromString(text);
    if (text.size() != 36 || uuid.isNull())
        return std::nullopt;
    return uuid;
}

/// A fresh UUID in lower case.
[[nodiscard]] inline QString newUuid()
{
    return QUuid::createUuid().toString(QUuid::WithoutBraces);
}

} // namespace Bralto
