#include "Terminals/PaneStyle.h"

#include <QJsonDocument>

#include <algorithm>
#include <array>

namespace Bralto {

namespace {

constexpr auto ThemeKey = "theme";
constexpr auto FontFamilyKey = "fontFamily";
constexpr auto FontSizeKey = "fontSize";
constexpr auto NewPaneKey = "paneStyleDefault";

constexpr std::array Catalogue{
    // clang-format off
    PaneTheme{"default",  "Default",  std::nullopt, std::nullopt, std::nullopt},
    PaneTheme{"graphite", "Graphite", 0x2A2C30,     0xE7E7EA,     0xA9B4C4},
    PaneTheme{"midnight", "Midnight", 0x0F1424,     0xDCE3F5,     0x7AA2F7},
    PaneTheme{"forest",   "Forest",   0x13201A,     0xD9EBDD,     0x7FCB95},
    PaneTheme{"clay",     "Clay",     0x2A1C17,     0xF2E3D9,     0xE8956F},
    PaneTheme{"ocean",    "Ocean",    0x0D2229,     0xD3ECF1,     0x5CC4D9},
    PaneTheme{"plum",     "Plum",     0x221729,     0xECDEF3,     0xC69AE8},
    PaneTheme{"paper",    "Paper",    0xFAF7F0,     0x2A2723,     0x9A5B13},
    // clang-format on
};

/// Of an optional key. False if it is there with another type.
template <typename Value>
bool read(const QJsonValue& json, QJsonValue::Type type, std::optional<Value>& value)
{
    if (json.isUndefined() || json.isNull())
        return true;
    if (json.type() != type)
        return false;
    value = json.toVariant().value<Value>();
    return true;
}

} // namespace

QJsonObject PaneStyle::json() const
{
    QJsonObject object{{ThemeKey, theme}};
    if (fontFamily)
        object.insert(QLatin1String(FontFamilyKey), *fontFamily);
    if (fontSize)
        object.insert(QLatin1String(FontSizeKey), *fontSize);
    return object;
}

std::optional<PaneStyle> PaneStyle::from(const QJsonObject& object)
{
    if (!object[ThemeKey].isString())
        return std::nullopt;
    PaneStyle style;
    style.theme = object[ThemeKey].toString();
    if (!read(object[FontFamilyKey], QJsonValue::String, style.fontFamily) ||
        !read(object[FontSizeKey], QJsonValue::Double, style.fontSize))
        return std::nullopt;
    return style;
}

PaneStyle PaneStyle::newPaneDefault(const DefaultsStore& shared)
{
    const auto data = shared.data(QLatin1String(NewPaneKey));
    if (!data)
        return {};
    return from(QJsonDocument::fromJson(*data).object()).value_or(PaneStyle());
}

void PaneStyle::setNewPaneDefault(DefaultsStore& shared, const PaneStyle& style)
{
    if (style.isDefault())
        shared.remove(QLatin1String(NewPaneKey));
    else
        shared.set(QLatin1String(NewPaneKey),
                   QJsonDocument(style.json()).toJson(QJsonDocument::Compact));
}

PaneTheme::Scheme PaneTheme::colorScheme() const
{
    if (!background)
        return Scheme::AsTheAppearance;
    const std::uint32_t light =
        (*background >> 16U & 0xFFU) + (*background >> 8U & 0xFFU) + (*background & 0xFFU);
    return light < 3 * 0x80 ? Scheme::Dark : Scheme::Light;
}

std::span<const PaneTheme> PaneTheme::all()
{
    return Catalogue;
}

const PaneTheme& PaneTheme::named(const QString& id)
{
    const auto found = std::ranges::find_if(
        Catalogue, [&id](const PaneTheme& each) { return id == QLatin1String(each.id); });
    return found != Catalogue.end() ? *found : Catalogue.front();
}

} // namespace Bralto
