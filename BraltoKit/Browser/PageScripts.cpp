#include "Browser/PageScripts.h"

#include <QFile>
#include <QJsonValue>
#include <QStringList>

// A static library's resources are linked only where someone asks for them; the macro wants to
// stand outside of all namespaces.
static void initializePageScripts()
{
    Q_INIT_RESOURCE(PageScripts);
}

namespace Bralto::PageScripts {

namespace {

QString source(const QString& name)
{
    static const bool isInitialized = (initializePageScripts(), true);
    QFile file(QStringLiteral(":/Bralto/Browser/Scripts/%1.js").arg(name));
    const bool isOpen = file.open(QIODevice::ReadOnly);
    Q_ASSERT(isInitialized && isOpen);
    return isOpen ? QString::fromUtf8(file.readAll()) : QString();
}

QJsonValue stringOrNull(const std::optional<QString>& text)
{
    return text ? QJsonValue(*text) : QJsonValue(QJsonValue::Null);
}

} // namespace

PageScript call(const QString& name, const QJsonObject& arguments)
{
    const QString parameters = QStringList(arguments.keys()).join(QStringLiteral(", "));
    // Awaited here: a promise that is returned goes through the page's own `then`.
    return {source(QStringLiteral("prelude")) + source(name) +
                QStringLiteral("return await %1({ %2 });\n").arg(name, parameters),
            arguments};
}

PageScript callOnElement(const QString& name, const ToolArguments& arguments,
                         const QJsonObject& extra)
{
    QJsonObject all{{QStringLiteral("ref"), stringOrNull(arguments.string("ref"))},
                    {QStringLiteral("selector"), stringOrNull(arguments.string("selector"))}};
    for (auto argument = extra.begin(); argument != extra.end(); ++argument)
        all.insert(argument.key(), argument.value());
    return call(name, all);
}

PageScript evaluate(const QString& code)
{
    // The functions that spell the value stand in a scope of their own: `code` must not see them.
    return {QStringLiteral("const __braltoValue = await (async () => {\n") + code +
                QStringLiteral("\n})();\nreturn (() => {\n") + source(QStringLiteral("evaluate")) +
                QStringLiteral("return spell(__braltoValue);\n})();\n"),
            {}};
}

} // namespace Bralto::PageScripts
