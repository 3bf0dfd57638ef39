#include "DemoAgent/Commands.h"

#include <QDir>
#include <QFile>
#include <QJsonObject>

namespace DemoAgent::Commands {

namespace {

struct BuiltIn {
    const char* name;
    const char* description;
    const char* argumentHint;
};

constexpr BuiltIn Table[] = {
    {"compact", "Shorten the conversation to a summary", "[what to keep]"},
    {"context", "Show what fills the context", ""},
    {"cost", "Show what the conversation has cost", ""},
    {"usage", "Show what has been used", ""},
    {"init", "Describe this project in a file", ""},
    {"memory", "Edit what is remembered", ""},
    {"config", "Open the settings", ""},
    {"doctor", "Check the installation", ""},
};

// The first line that is text, without the marks of a heading; front matter is left out.
QString firstLine(const QString& path)
{
    QFile file(path);
    if (!file.open(QFile::ReadOnly | QFile::Text))
        return {};
    bool isFrontMatter = false;
    while (!file.atEnd()) {
        const QString line = QString::fromUtf8(file.readLine(4096)).trimmed();
        if (line == u"---") {
            isFrontMatter = !isFrontMatter;
            continue;
        }
        if (isFrontMatter && line.startsWith(u"description:"))
            return line.mid(12).trimmed();
        if (!isFrontMatter && !line.isEmpty())
            return QString(line).remove(u'#').trimmed().left(100);
    }
    return {};
}

void appendFiles(const QString& folder, const QString& origin, QJsonArray& commands)
{
    const QDir directory(folder + u"/.claude/commands");
    for (const QFileInfo& file : directory.entryInfoList({"*.md"}, QDir::Files, QDir::Name)) {
        commands.append(QJsonObject{
            {"name", file.completeBaseName()},
            {"description", QString(firstLine(file.filePath()) + u" (" + origin + u')').trimmed()},
            {"argumentHint", ""},
        });
    }
}

} // namespace

QJsonArray list(const QString& home, const QString& folder)
{
    QJsonArray commands;
    for (const BuiltIn& command : Table) {
        commands.append(QJsonObject{
            {"name", command.name},
            {"description", command.description},
            {"argumentHint", command.argumentHint},
            {"builtin", true},
        });
    }
    appendFiles(folder, "project", commands);
    if (home != folder)
        appendFiles(home, "user", commands);
    return commands;
}

} // namespace DemoAgent::Commands
