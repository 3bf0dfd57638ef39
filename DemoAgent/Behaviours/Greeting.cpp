#include "DemoAgent/Behaviours/Behaviours.h"

#include <QDir>

namespace DemoAgent::Behaviours {

namespace {

constexpr qsizetype MostEntries = 8;

QString kindOf(const QFileInfo& entry)
{
    if (entry.isDir())
        return "folder";
    return entry.suffix().isEmpty() ? "file" : QString(u"." + entry.suffix());
}

QString sizeOf(const QFileInfo& entry)
{
    return entry.isDir() ? "–" : QString(QString::number(entry.size()) + u" bytes");
}

QString inCode(const QString& name)
{
    return u'`' + name + u'`';
}

// Markdown with each of the shapes that a reply can have.
QString describeFolder(const QString& path)
{
    const QFileInfoList entries =
        QDir(path).entryInfoList(QDir::AllEntries | QDir::NoDotAndDotDot, QDir::Name);
    QString text = u"## What I see in " + inCode(QDir(path).dirName()) + u"\n\n";
    if (entries.isEmpty())
        return text + u"The folder is empty. Try `write notes.txt` to put something into it.\n\n";
    for (const QFileInfo& entry : entries.first(qMin(MostEntries, entries.size())))
        text += u"- " + inCode(entry.fileName()) + (entry.isDir() ? u", a folder\n" : u"\n");
    if (entries.size() > MostEntries)
        text += QString("- and %1 more\n").arg(entries.size() - MostEntries);
    text += u"\n| Name | Kind | Size |\n|---|---|---:|\n";
    for (const QFileInfo& entry : entries.first(qMin(MostEntries, entries.size()))) {
        text += u"| " + inCode(entry.fileName()) + u" | " + kindOf(entry) + u" | " + sizeOf(entry) +
                u" |\n";
    }
    return text + u'\n';
}

QString pictures(int count)
{
    if (count == 0)
        return {};
    return count == 1 ? "Thank you for the picture; I can't look at it, but it arrived. "
                      : QString("Thank you for the %1 pictures; I can't look at them, but they "
                                "arrived. ")
                            .arg(count);
}

constexpr const char16_t* WhatToTry = u"## What you can try\n"
                                      u"\n"
                                      u"```sh\n"
                                      u"read README.md    # I read a file\n"
                                      u"write notes.txt   # I ask before I write one\n"
                                      u"run ls -l         # and before I run a command\n"
                                      u"ask me            # two questions with choices\n"
                                      u"think             # thoughts first, then words\n"
                                      u"plan              # a plan to approve\n"
                                      u"count 50          # slow enough to interrupt\n"
                                      u"agents            # a helper at work\n"
                                      u"```\n"
                                      u"\n"
                                      u"There are also `edit FILE`, `search WORD`, `todo`, "
                                      u"`image`, `background`, `limits` and `remember`.";

} // namespace

Task<> greet(Turn& turn, Prompt prompt)
{
    const Conversation& conversation = turn.conversation();
    QString text = conversation.turns > 1 ? "Here I am again. " : "Hello! ";
    text += u"I am the **demo agent**: I have no model behind me, but I work in your folder like "
            u"the real one. ";
    text += pictures(prompt.images) + u"\n\n" + describeFolder(conversation.folder) + WhatToTry;
    co_await turn.say(text);
}

} // namespace DemoAgent::Behaviours
