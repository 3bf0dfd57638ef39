#include "Terminals/PanelSnapshot.h"

#include "Base/Uuid.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <cmath>
#include <limits>

namespace Bralto {

namespace {

// Keys of the file.
constexpr auto IsVisible = "isVisible";
constexpr auto EditorFraction = "editorFraction";
constexpr auto ActiveGroupIndex = "activeGroupIndex";
constexpr auto Groups = "groups";
constexpr auto Panes = "panes";
constexpr auto FocusedIndex = "focusedIndex";
constexpr auto Name = "name";
constexpr auto Kind = "kind";
constexpr auto ClaudeSessionId = "claudeSessionID";
constexpr auto Directory = "directory";
constexpr auto Scrollback = "scrollback";
constexpr auto Style = "style";

QString kindName(PaneKind kind)
{
    switch (kind) {
    case PaneKind::Shell:
        return QStringLiteral("shell");
    case PaneKind::Claude:
        return QStringLiteral("claude");
    case PaneKind::Chat:
        break;
    }
    return QStringLiteral("chat");
}

std::optional<PaneKind> kindFrom(const QJsonValue& value)
{
    const QString name = value.toString();
    for (const PaneKind kind : {PaneKind::Shell, PaneKind::Claude, PaneKind::Chat}) {
        if (name == kindName(kind))
            return kind;
    }
    return std::nullopt;
}

/// A whole number, held within what an `int` can carry.
std::optional<int> integerFrom(const QJsonValue& value)
{
    const double number = value.toDouble(std::numeric_limits<double>::quiet_NaN());
    if (!(number == std::trunc(number)))
        return std::nullopt;
    constexpr double Least = std::numeric_limits<int>::min();
    constexpr double Most = std::numeric_limits<int>::max();
    return int(std::clamp(number, Least, Most));
}

/// Reads keys that may be absent. One that is there with another type spoils the whole.
class OptionalKeys {
public:
    explicit OptionalKeys(const QJsonObject& object)
        : m_object(object)
    {
    }

    std::optional<QString> string(const char* key)
    {
        const QJsonValue value = m_object.value(QLatin1String(key));
        if (value.isString())
            return value.toString();
        m_areValid = m_areValid && (value.isUndefined() || value.isNull());
        return std::nullopt;
    }

    std::optional<QString> uuid(const char* key)
    {
        const auto text = string(key);
        if (!text)
            return std::nullopt;
        const auto uuid = parsedUuid(*text);
        m_areValid = m_areValid && uuid;
        return uuid ? std::optional(uuid->toString(QUuid::WithoutBraces)) : std::nullopt;
    }

    std::optional<PaneStyle> style(const char* key)
    {
        const QJsonValue value = m_object.value(QLatin1String(key));
        if (value.isUndefined() || value.isNull())
            return std::nullopt;
        auto style = PaneStyle::from(value.toObject());
        m_areValid = m_areValid && style;
        return style;
    }

    [[nodiscard]] bool areValid() const { return m_areValid; }

private:
    const QJsonObject& m_object;
    bool m_areValid = true;
};

std::optional<PaneSnapshot> paneFrom(const QJsonValue& value)
{
    const QJsonObject object = value.toObject();
    const auto kind = kindFrom(object[Kind]);
    if (!kind || !object[Directory].isString())
        return std::nullopt;

    OptionalKeys keys(object);
    PaneSnapshot pane;
    pane.kind = *kind;
    pane.claudeSessionId = keys.uuid(ClaudeSessionId);
    pane.directory = object[Directory].toString();
    pane.scrollback = keys.string(Scrollback);
    pane.name = keys.string(Name);
    pane.style = keys.style(Style);
    return keys.areValid() ? std::optional(pane) : std::nullopt;
}

std::optional<GroupSnapshot> groupFrom(const QJsonValue& value)
{
    const QJsonObject object = value.toObject();
    const auto focusedIndex = integerFrom(object[FocusedIndex]);
    if (!focusedIndex || !object[Panes].isArray())
        return std::nullopt;

    OptionalKeys keys(object);
    GroupSnapshot group;
    group.focusedIndex = *focusedIndex;
    group.name = keys.string(Name);
    for (const auto& entry : object[Panes].toArray()) {
        auto pane = paneFrom(entry);
        if (!pane)
            return std::nullopt;
        group.panes.push_back(std::move(*pane));
    }
    return keys.areValid() ? std::optional(std::move(group)) : std::nullopt;
}

void insertIfAny(QJsonObject& object, const char* key, const std::optional<QString>& text)
{
    if (text)
        object.insert(QLatin1String(key), *text);
}

QJsonObject json(const PaneSnapshot& pane)
{
    QJsonObject object{{Kind, kindName(pane.kind)}, {Directory, pane.directory}};
    if (pane.claudeSessionId)
        object.insert(QLatin1String(ClaudeSessionId), pane.claudeSessionId->toUpper());
    insertIfAny(object, Scrollback, pane.scrollback);
    insertIfAny(object, Name, pane.name);
    if (pane.style)
        object.insert(QLatin1String(Style), pane.style->json());
    return object;
}

QJsonObject json(const GroupSnapshot& group)
{
    QJsonArray panes;
    for (const PaneSnapshot& pane : group.panes)
        panes.append(json(pane));
    QJsonObject object{{Panes, panes}, {FocusedIndex, group.focusedIndex}};
    insertIfAny(object, Name, group.name);
    return object;
}

} // namespace

QByteArray PanelSnapshot::encode() const
{
    QJsonArray array;
    for (const GroupSnapshot& group : groups)
        array.append(json(group));
    const QJsonObject object{{IsVisible, isVisible},
                             {EditorFraction, editorFraction},
                             {ActiveGroupIndex, activeGroupIndex},
                             {Groups, array}};
    return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

std::optional<PanelSnapshot> PanelSnapshot::decode(const QByteArray& json)
{
    const QJsonObject object = QJsonDocument::fromJson(json).object();
    const auto activeGroupIndex = integerFrom(object[ActiveGroupIndex]);
    if (!object[IsVisible].isBool() || !object[EditorFraction].isDouble() || !activeGroupIndex ||
        !object[Groups].isArray())
        return std::nullopt;

    PanelSnapshot panel;
    panel.isVisible = object[IsVisible].toBool();
    panel.editorFraction = object[EditorFraction].toDouble();
    panel.activeGroupIndex = *activeGroupIndex;
    for (const auto& entry : object[Groups].toArray()) {
        auto group = groupFrom(entry);
        if (!group)
            return std::nullopt;
        panel.groups.push_back(std::move(*group));
    }
    return panel;
}

} // namespace Bralto
