// The stored form of a theme: JSON with its keys in a fixed order.
#include "Projects/SpaceTheme.h"

#include "Base/JsonWriter.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <array>

namespace Bralto {

namespace {

constexpr std::array ColorNames{"harbour",   "pebble", "rose", "plum", "coral",
                                "tangerine", "lemon",  "mint", "sky",  "slate"};
constexpr std::array AppearanceNames{"system", "light", "dark"};

// Writing

struct IconWriter {
    JsonWriter& out;

    void operator()(const SpaceTheme::Symbol& symbol) const { write("symbol", symbol.name); }
    void operator()(const SpaceTheme::Emoji& emoji) const { write("emoji", emoji.text); }
    void operator()(SpaceTheme::Mark) const { write("mark", std::nullopt); }
    void operator()(SpaceTheme::Monogram) const { write("monogram", std::nullopt); }

    /// An object with one key that names the case.
    void write(std::string_view name, const std::optional<QString>& payload) const
    {
        out.beginObject();
        out.key(name);
        out.beginObject();
        out.member("_0", payload);
        out.endObject();
        out.endObject();
    }
};

// Reading. Each function fills in what is there and returns false for what is something else.

bool isAbsent(const QJsonValue& value)
{
    return value.isUndefined() || value.isNull();
}

template <std::size_t Count, typename Enum>
bool readName(const QJsonValue& value, const std::array<const char*, Count>& names, Enum& result)
{
    if (isAbsent(value))
        return true;
    const QString name = value.toString();
    const auto found = std::ranges::find_if(
        names, [&name](const char* known) { return name == QLatin1String(known); });
    if (found == names.end())
        return false;
    result = Enum(found - names.begin());
    return true;
}

bool readShare(const QJsonValue& value, double& result)
{
    if (isAbsent(value))
        return true;
    result = std::clamp(value.toDouble(), 0.0, 1.0);
    return value.isDouble();
}

/// A number that has to be there.
bool readPart(const QJsonValue& value, double& result)
{
    return !isAbsent(value) && readShare(value, result);
}

std::optional<SpaceTheme::Icon> icon(const QJsonObject& object)
{
    if (object.size() != 1 || !object.begin()->isObject())
        return std::nullopt;
    const QString name = object.begin().key();
    const QJsonValue payload = object.begin()->toObject().value(QLatin1String("_0"));
    if (name == QLatin1String("mark"))
        return SpaceTheme::Mark{};
    if (name == QLatin1String("monogram"))
        return SpaceTheme::Monogram{};
    if (name == QLatin1String("symbol") && payload.isString())
        return SpaceTheme::Symbol{payload.toString()};
    if (name == QLatin1String("emoji") && payload.isString())
        return SpaceTheme::Emoji{payload.toString()};
    return std::nullopt;
}

bool readIcon(const QJsonValue& value, SpaceTheme::Icon& result)
{
    if (isAbsent(value))
        return true;
    const auto read = icon(value.toObject());
    if (read)
        result = *read;
    return read.has_value();
}

bool readCustomColor(const QJsonValue& value, std::optional<SpaceTheme::CustomColor>& result)
{
    if (isAbsent(value))
        return true;
    const QJsonObject parts = value.toObject();
    SpaceTheme::CustomColor color;
    const bool isComplete = readPart(parts.value(QLatin1String("hue")), color.hue) &&
                            readPart(parts.value(QLatin1String("saturation")), color.saturation) &&
                            readPart(parts.value(QLatin1String("brightness")), color.brightness);
    if (isComplete)
        result = color;
    return isComplete;
}

bool readText(const QJsonValue& value, std::optional<QString>& result)
{
    if (isAbsent(value))
        return true;
    if (value.isString())
        result = value.toString();
    return value.isString();
}

} // namespace

QByteArray SpaceTheme::encode() const
{
    JsonWriter out;
    out.beginObject();
    out.member("name", name);
    out.key("icon");
    std::visit(IconWriter{out}, icon);
    out.member("color", ColorNames[std::size_t(color)]);
    out.member("appearance", AppearanceNames[std::size_t(appearance)]);
    out.member("intensity", intensity);
    out.member("grain", grain);
    if (customColor) {
        out.key("customColor");
        out.beginObject();
        out.member("hue", customColor->hue);
        out.member("saturation", customColor->saturation);
        out.member("brightness", customColor->brightness);
        out.endObject();
    }
    out.endObject();
    return out.take();
}

std::optional<SpaceTheme> SpaceTheme::decode(const QByteArray& json)
{
    const QJsonDocument document = QJsonDocument::fromJson(json);
    if (!document.isObject())
        return std::nullopt;
    const auto value = [object = document.object()](const char* key) {
        return object.value(QLatin1String(key));
    };
    SpaceTheme theme;
    const bool isTheme =
        readText(value("name"), theme.name) && readIcon(value("icon"), theme.icon) &&
        readName(value("color"), ColorNames, theme.color) &&
        readName(value("appearance"), AppearanceNames, theme.appearance) &&
        readShare(value("intensity"), theme.intensity) && readShare(value("grain"), theme.grain) &&
        readCustomColor(value("customColor"), theme.customColor);
    return isTheme ? std::optional(theme) : std::nullopt;
}

} // namespace Bralto
