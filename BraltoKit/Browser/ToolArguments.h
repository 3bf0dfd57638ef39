#pragma once

#include <QJsonObject>
#include <QLatin1String>
#include <QString>

#include <chrono>
#include <optional>

namespace Bralto {

/// The arguments that an agent passed to a tool. Agents are careless with types, so each reader
/// takes whatever can be meant; what it can't read is absent.
class ToolArguments {
public:
    ToolArguments() = default;
    explicit ToolArguments(QJsonObject object)
        : m_object(std::move(object))
    {
    }

    /// A string that isn't empty, or a number's text.
    [[nodiscard]] std::optional<QString> string(const char* key) const;
    /// A boolean; a number that isn't 0; or whether a string says "true", "yes" or "1".
    [[nodiscard]] std::optional<bool> boolean(const char* key) const;
    /// A finite number, or a string that spells one.
    [[nodiscard]] std::optional<double> number(const char* key) const;

    [[nodiscard]] bool isTrue(const char* key) const { return boolean(key).value_or(false); }
    /// `number` within `least` and `most`, without its fraction.
    [[nodiscard]] int integer(const char* key, int absent, int least, int most) const;
    /// `number` in seconds, within `least` and `most`.
    [[nodiscard]] std::chrono::milliseconds seconds(const char* key, double absent, double least,
                                                    double most) const;

private:
    [[nodiscard]] QJsonValue value(const char* key) const
    {
        return m_object.value(QLatin1String(key));
    }

    QJsonObject m_object;
};

} // namespace Bralto
