#pragma once

#include <QString>

#include <optional>

namespace Bralto::PaneName {

/// The name that the user gave, as it shows; absent if it would show nothing.
[[nodiscard]] inline std::optional<QString> shown(const std::optional<QString>& name)
{
    const QString trimmed = name.value_or(QString()).trimmed();
    return trimmed.isEmpty() ? std::nullopt : std::optional(trimmed);
}

} // namespace Bralto::PaneName
