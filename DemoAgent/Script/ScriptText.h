#pragma once

#include <QByteArray>
#include <QHash>
#include <QSet>
#include <QString>

#include <variant>
#include <vector>

namespace DemoAgent {

/// One step of a script. README.md has the list of them.
struct ScriptStep {
    int line = 0;
    QString verb;
    /// The rest of the line, as written.
    QString words;
    /// The steps up to `else` or `end`, for `if` and `repeat`.
    std::vector<ScriptStep> body;
    std::vector<ScriptStep> otherwise;
};

/// What was wrong with a script, with the number of the line.
struct ScriptError {
    QString message;
};

namespace ScriptText {

/// Lines into steps; `verbs` are those that are known beside `if`, `else`, `repeat` and `end`.
[[nodiscard]] std::variant<std::vector<ScriptStep>, ScriptError> parse(const QString& text,
                                                                       const QSet<QString>& verbs);

/// `${name}` replaced by its value; a name that has none stays as it is.
[[nodiscard]] QString filled(const QString& words, const QHash<QString, QString>& values);

/// `\n`, `\t`, `\\` and `\xNN` as the bytes that they mean, the rest in UTF-8.
[[nodiscard]] QByteArray unescaped(const QString& words);

} // namespace ScriptText

} // namespace DemoAgent
