#pragma once

#include <QJsonObject>
#include <QString>
#include <QStringList>

#include <optional>

/// How the program and a document of a page talk: the scripts that go in, and the messages that
/// come out through the document's console, marked with a key that the page doesn't know.
namespace Bralto::WebBridge {

/// What only the program and its own scripts in a page know.
[[nodiscard]] QString newKey();

struct Keys {
    QString bridge = newKey(); ///< Marks messages and opens the door.
    QString ask = newKey();    ///< Lets a document ask the user; a page can find it out.
};

/// Runs in every frame before any script of the page; `Late` in a document that has none yet.
enum class Arrival { First, Late };
[[nodiscard]] QString documentScript(const Keys& keys, Arrival arrival = Arrival::First);

/// Whether `name` can name a parameter, reserved words apart.
[[nodiscard]] bool isArgumentName(const QString& name);

/// For a world without the page's rules: gives "" or name, line feed and message of the error.
[[nodiscard]] QString syntaxCheck(const QStringList& names, const QString& body);

/// Starts the function `body`; gives whether the document could.
[[nodiscard]] QString start(const QString& key, quint64 id, const QString& body,
                            const QJsonObject& arguments);

/// Asks for a message once what the document shows now was drawn; gives whether it could.
[[nodiscard]] QString nextFrame(const QString& key, quint64 id);

struct Message {
    enum class Kind {
        Hello, ///< A new document in the main frame; `text` is its address.
        Value, ///< `text` is JSON.
        Undefined,
        Unserialisable,
        Exception, ///< `text` is a JSON list of name and message.
        Log,       ///< `level` and `text`.
        Muted,     ///< An error of which the document may know nothing; the engine tells it next.
    };

    Kind kind = Kind::Hello;
    quint64 id = 0; ///< Of a call's end.
    QString level = {};
    QString text = {};
};

/// Absent for what the page itself wrote.
[[nodiscard]] std::optional<Message> read(const QString& key, const QString& consoleText);

} // namespace Bralto::WebBridge
