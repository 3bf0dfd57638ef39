#include "Chat/ChatEffort.h"

#include "Base/Json.h"

#include <QStringList>

namespace Bralto::ChatEffort {

namespace {

std::optional<QString> fromCommand(const QString& command)
{
    const QString flag = QStringLiteral("--effort");
    const QStringList words = command.split(QLatin1Char(' '), Qt::SkipEmptyParts);
    for (qsizetype index = 0; index < words.size(); ++index) {
        if (words[index] == flag && index + 1 < words.size())
            return words[index + 1];
        if (words[index].startsWith(flag + QLatin1Char('=')))
            return words[index].mid(flag.size() + 1);
    }
    return std::nullopt;
}

} // namespace

std::optional<QString> effort(const QString& command, const QString& folder, const QString& home,
                              const ReadFile& readFile)
{
    if (auto level = fromCommand(command))
        return level;
    JsonReader reader;
    for (const QString& path : {folder + QStringLiteral("/.claude/settings.local.json"),
                                folder + QStringLiteral("/.claude/settings.json"),
                                home + QStringLiteral("/.claude/settings.json")}) {
        const auto contents = readFile(path);
        const auto settings = contents ? reader.object(*contents) : std::nullopt;
        if (settings) {
            if (auto level = settings->string("effortLevel"))
                return level;
        }
    }
    return std::nullopt;
}

} // namespace Bralto::ChatEffort
