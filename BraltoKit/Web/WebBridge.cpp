#include "Web/WebBridge.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QRandomGenerator>

#include <algorithm>

static void initialiseScripts()
{
    Q_INIT_RESOURCE(Scripts);
}

namespace Bralto::WebBridge {

namespace {

constexpr QChar Mark(1);

QString resource(const char* name)
{
    initialiseScripts();
    QFile file(QStringLiteral(":/bralto/web/") + QLatin1String(name));
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

/// A literal of the page's language.
QString quoted(const QString& text)
{
    const QString list =
        QString::fromUtf8(QJsonDocument(QJsonArray{text}).toJson(QJsonDocument::Compact));
    return list.mid(1, list.size() - 2);
}

/// An expression for what bridge.js laid down, which is undefined where it didn't run.
QString door(const QString& key)
{
    return QStringLiteral("globalThis[Symbol.for('bralto')]?.(%1)").arg(quoted(key));
}

std::optional<Message::Kind> kindOf(QChar letter)
{
    switch (letter.unicode()) {
    case 'h':
        return Message::Kind::Hello;
    case 'v':
        return Message::Kind::Value;
    case 'u':
        return Message::Kind::Undefined;
    case 'x':
        return Message::Kind::Unserialisable;
    case 'e':
        return Message::Kind::Exception;
    case 'c':
        return Message::Kind::Log;
    case 'm':
        return Message::Kind::Muted;
    default:
        return std::nullopt;
    }
}

} // namespace

QString newKey()
{
    quint32 words[4];
    QRandomGenerator::system()->fillRange(words);
    return QString::fromLatin1(
        QByteArray(reinterpret_cast<const char*>(words), sizeof words).toHex());
}

QString documentScript(const Keys& keys, Arrival arrival)
{
    static const QString scripts =
        resource("bridge.js") + resource("console.js") + resource("dialogs.js");
    return QStringLiteral("(() => {\n\"use strict\";\nconst braltoKey = ") + quoted(keys.bridge) +
           QStringLiteral(";\nconst braltoAskKey = ") + quoted(keys.ask) +
           QStringLiteral(";\nconst braltoIsFirst = ") +
           (arrival == Arrival::First ? QStringLiteral("true;\n") : QStringLiteral("false;\n")) +
           scripts + QStringLiteral("})();");
}

bool isArgumentName(const QString& name)
{
    const auto isLetter = [](QChar each) {
        return (each >= u'a' && each <= u'z') || (each >= u'A' && each <= u'Z') || each == u'_' ||
               each == u'$';
    };
    return !name.isEmpty() && isLetter(name.front()) &&
           std::all_of(name.begin(), name.end(), [&isLetter](QChar each) {
               return isLetter(each) || (each >= u'0' && each <= u'9');
           });
}

QString syntaxCheck(const QStringList& names, const QString& body)
{
    QString parameters;
    for (const QString& name : names)
        parameters += quoted(name) + u',';
    return QStringLiteral(
               "(()=>{try{new (Object.getPrototypeOf(async function(){}).constructor)(") +
           parameters + quoted(body) +
           QStringLiteral(");return ''}catch(e){return e.name+'\\n'+e.message}})()");
}

QString start(const QString& key, quint64 id, const QString& body, const QJsonObject& arguments)
{
    QJsonArray values;
    for (const QJsonValue value : arguments)
        values.append(value);
    const QString number = QString::number(id);
    // The first line names the script, so that its own errors can be told from the page's.
    return QStringLiteral("//# sourceURL=bralto-eval-") + number +
           QStringLiteral("\n(()=>{const d=") + door(key) + QStringLiteral(";d?.run(") + number +
           QStringLiteral(",async function(") + arguments.keys().join(u',') +
           QStringLiteral("){\n") + body + QStringLiteral("\n},") +
           quoted(QString::fromUtf8(QJsonDocument(values).toJson(QJsonDocument::Compact))) +
           QStringLiteral(");return !!d})()");
}

QString nextFrame(const QString& key, quint64 id)
{
    return QStringLiteral("(()=>{const d=") + door(key) + QStringLiteral(";d?.frame(") +
           QString::number(id) + QStringLiteral(");return !!d})()");
}

std::optional<Message> read(const QString& key, const QString& consoleText)
{
    const auto tagLength = key.size() + 1;
    if (consoleText.size() <= tagLength || consoleText.front() != Mark ||
        QStringView(consoleText).mid(1, key.size()) != key)
        return std::nullopt;
    const auto kind = kindOf(consoleText.at(tagLength));
    const auto end = consoleText.indexOf(u'\n', tagLength);
    if (!kind || end < 0)
        return std::nullopt;
    Message message{*kind};
    const QStringView head = QStringView(consoleText).mid(tagLength + 1, end - tagLength - 1);
    if (*kind == Message::Kind::Log)
        message.level = head.toString();
    else
        message.id = head.toULongLong();
    message.text = consoleText.mid(end + 1);
    return message;
}

} // namespace Bralto::WebBridge
