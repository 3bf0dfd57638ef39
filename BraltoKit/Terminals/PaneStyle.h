#pragma once

#include "Base/DefaultsStore.h"

#include <QJsonObject>
#include <QString>

#include <cstdint>
#include <optional>
#include <span>

namespace Bralto {

/// How a pane looks, as the user chose it.
struct PaneStyle {
    QString theme = QStringLiteral("default"); ///< The id of a `PaneTheme`, known or not.
    std::optional<QString> fontFamily;
    std::optional<double> fontSize; ///< Points at zoom 1.

    [[nodiscard]] bool isDefault() const
    {
        return theme == QStringLiteral("default") && !fontFamily && !fontSize;
    }
    [[nodiscard]] QJsonObject json() const;
    /// Absent without a theme, or if a key has another type.
    [[nodiscard]] static std::optional<PaneStyle> from(const QJsonObject& object);

    /// What a new pane looks like. What can't be read is the default style.
    [[nodiscard]] static PaneStyle newPaneDefault(const DefaultsStore& shared);
    /// The default style leaves no key behind.
    static void setNewPaneDefault(DefaultsStore& shared, const PaneStyle& style);

    bool operator==(const PaneStyle&) const = default;
};

/// A row of the catalogue of looks. A colour that is absent is the appearance's.
struct PaneTheme {
    enum class Scheme { AsTheAppearance, Dark, Light };

    const char* id;
    const char* name;
    std::optional<std::uint32_t> background; ///< 0xRRGGBB.
    std::optional<std::uint32_t> foreground;
    std::optional<std::uint32_t> accent;

    [[nodiscard]] Scheme colorScheme() const;

    [[nodiscard]] static std::span<const PaneTheme> all();
    /// The row of that id; the first one for an id that isn't there.
    [[nodiscard]] static const PaneTheme& named(const QString& id);
};

} // namespace Bralto
