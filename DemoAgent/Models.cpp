#include "DemoAgent/Models.h"

#include <QJsonObject>
#include <QStringList>

#include <algorithm>

namespace DemoAgent::Models {

namespace {

constexpr Model Table[] = {
    {"default", "claude-opus-5-5", "Default (recommended)", "The demo agent's usual voice", 200000},
    {"opus", "claude-opus-5-5", "Opus", "Opus 5.5 · Plays the careful one", 200000},
    {"sonnet", "claude-sonnet-5-5", "Sonnet", "Sonnet 5.5 · Plays the quick one", 200000},
    {"haiku", "claude-haiku-5-5", "Haiku", "Haiku 5.5 · Plays the short one", 100000},
};

} // namespace

std::span<const Model> all()
{
    return Table;
}

QString resolved(const QString& value)
{
    const auto* const found = std::ranges::find_if(
        Table, [&](const Model& model) { return value == QLatin1StringView(model.value); });
    return found == std::end(Table) ? value : QString::fromUtf8(found->resolved);
}

qint64 contextWindow(const QString& id)
{
    const auto* const found = std::ranges::find_if(
        Table, [&](const Model& model) { return id == QLatin1StringView(model.resolved); });
    return found == std::end(Table) ? Table[0].contextWindow : found->contextWindow;
}

const QStringList& effortLevels()
{
    static const QStringList levels{"low", "medium", "high", "xhigh", "max"};
    return levels;
}

QJsonArray asJson()
{
    QJsonArray models;
    for (const Model& model : Table) {
        const bool hasEffort = QLatin1StringView(model.value) != "haiku";
        QJsonObject entry{
            {"value", model.value},        {"resolvedModel", model.resolved},
            {"displayName", model.name},   {"description", QString::fromUtf8(model.description)},
            {"supportsEffort", hasEffort},
        };
        if (hasEffort)
            entry.insert("supportedEffortLevels", QJsonArray::fromStringList(effortLevels()));
        models.append(entry);
    }
    return models;
}

} // namespace DemoAgent::Models
