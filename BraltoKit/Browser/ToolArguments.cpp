#include "Browser/ToolArguments.h"

#include <QJsonValue>
#include <QVariant>

#include <algorithm>
#include <cmath>

namespace Bralto {

std::optional<QString> ToolArguments::string(const char* key) const
{
    const QJsonValue value = this->value(key);
    if (value.isDouble())
        return value.toVariant().toString();
    const QString text = value.toString();
    return text.isEmpty() ? std::nullopt : std::optional(text);
}

std::optional<bool> ToolArguments::boolean(const char* key) const
{
    const QJsonValue value = this->value(key);
    if (value.isBool())
        return value.toBool();
    if (value.isDouble())
        return value.toDouble() != 0;
    if (!value.isString())
        return std::nullopt;
    const QString text = value.toString().toLower();
    return text == QLatin1String("true") || text == QLatin1String("yes") ||
           text == QLatin1String("1");
}

std::optional<double> ToolArguments::number(const char* key) const
{
    const QJsonValue value = this->value(key);
    if (value.isDouble())
        return value.toDouble();
    bool isNumber = false;
    const double number = value.toString().toDouble(&isNumber);
    return isNumber && std::isfinite(number) ? std::optional(number) : std::nullopt;
}

int ToolArguments::integer(const char* key, int absent, int least, int most) const
{
    return int(std::clamp(number(key).value_or(absent), double(least), double(most)));
}

std::chrono::milliseconds ToolArguments::seconds(const char* key, double absent, double least,
                                                 double most) const
{
    return std::chrono::milliseconds(
        std::llround(std::clamp(number(key).value_or(absent), least, most) * 1000));
}

} // namespace Bralto
