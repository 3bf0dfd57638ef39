#pragma once

#include "Base/DefaultsStore.h"

#include <QByteArray>
#include <QString>

#include <optional>
#include <variant>

namespace Bralto {

/// A colour in sRGB, each part from 0 to 1.
struct Rgb {
    double red = 0;
    double green = 0;
    double blue = 0;

    bool operator==(const Rgb&) const = default;
};

/// Luminance of the contrast formula, 0 to 1.
[[nodiscard]] double relativeLuminance(const Rgb& color);
/// "#RRGGBB" in capitals.
[[nodiscard]] QString hexString(const Rgb& color);
/// White or near-black (grey level 0.1137), whichever reads better on `background`.
[[nodiscard]] Rgb markInk(const Rgb& background);

enum class SpaceColor { Harbour, Pebble, Rose, Plum, Coral, Tangerine, Lemon, Mint, Sky, Slate };
enum class SpaceAppearance { System, Light, Dark };

/// How a project looks: its name, icon, colour, appearance and frame.
struct SpaceTheme {
    struct Symbol {
        QString name;
        bool operator==(const Symbol&) const = default;
    };
    struct Emoji {
        QString text;
        bool operator==(const Emoji&) const = default;
    };
    struct Mark {
        bool operator==(const Mark&) const = default;
    };
    struct Monogram {
        bool operator==(const Monogram&) const = default;
    };
    using Icon = std::variant<Symbol, Emoji, Mark, Monogram>;

    struct CustomColor {
        double hue = 0; ///< All from 0 to 1.
        double saturation = 0;
        double brightness = 0;

        [[nodiscard]] static CustomColor of(const Rgb& color);

        bool operator==(const CustomColor&) const = default;
    };

    std::optional<QString> name; ///< Blank means the folder's name.
    Icon icon = Mark{};
    SpaceColor color = SpaceColor::Harbour;
    SpaceAppearance appearance = SpaceAppearance::Dark;
    double intensity = 0.5;                 ///< Colour strength of the frame, 0 to 1.
    double grain = 0.4;                     ///< Texture strength, 0 to 1.
    std::optional<CustomColor> customColor; ///< Wins over `color`.

    /// The look of a project that nobody has styled: a colour from the folder's name.
    [[nodiscard]] static SpaceTheme automatic(const QString& folder);
    /// The first letters of at most two words, in capitals.
    [[nodiscard]] static QString monogram(const QString& name);

    [[nodiscard]] QString displayName(const QString& folder) const;
    [[nodiscard]] Rgb accent() const;
    /// The frame's colour; `lift` is added to its brightness.
    [[nodiscard]] Rgb frameColor(bool dark, double lift) const;

    [[nodiscard]] QByteArray encode() const;
    /// Absent if `json` is no theme; a missing key is the default.
    [[nodiscard]] static std::optional<SpaceTheme> decode(const QByteArray& json);

    bool operator==(const SpaceTheme&) const = default;
};

namespace SpaceStore {

/// The stored theme of `folder`, else its automatic one. Writes nothing.
[[nodiscard]] SpaceTheme load(const DefaultsStore& shared, const QString& folder);
void save(DefaultsStore& shared, const SpaceTheme& theme, const QString& folder);

} // namespace SpaceStore

} // namespace Bralto
