#pragma once

#include <QJsonArray>
#include <QString>

#include <span>

namespace DemoAgent {

/// A model that the agent offers. It has none; the names only have to look right.
struct Model {
    const char* value;
    const char* resolved;
    const char* name;
    const char* description;
    qint64 contextWindow;
};

namespace Models {

[[nodiscard]] std::span<const Model> all();
/// The model's full id for a value of the list, or for anything else the text itself.
[[nodiscard]] QString resolved(const QString& value);
/// Tokens; unknown models have the window of the first one.
[[nodiscard]] qint64 contextWindow(const QString& resolved);
[[nodiscard]] const QStringList& effortLevels();
/// The list as the app gets it in the answer to `initialize`.
[[nodiscard]] QJsonArray asJson();

} // namespace Models

} // namespace DemoAgent
