#pragma once

#include "Browser/PageEngine.h"
#include "Browser/ToolArguments.h"

#include <QJsonObject>
#include <QString>

namespace Bralto::PageScripts {

/// A call of the function `name` in Scripts/<name>.js with `arguments` as one object.
[[nodiscard]] PageScript call(const QString& name, const QJsonObject& arguments);
/// The same with the element that `arguments` name: `ref` and `selector`, each a string or null.
/// What is in `extra` wins.
[[nodiscard]] PageScript callOnElement(const QString& name, const ToolArguments& arguments,
                                       const QJsonObject& extra = {});
/// `code` as a function's body of its own; what it returns comes back as JSON text, or as the word
/// "undefined".
[[nodiscard]] PageScript evaluate(const QString& code);

} // namespace Bralto::PageScripts
