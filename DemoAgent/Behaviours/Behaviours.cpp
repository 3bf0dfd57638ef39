#include "DemoAgent/Behaviours/Behaviours.h"

#include <algorithm>

namespace DemoAgent::Behaviours {

namespace {

struct Entry {
    const char* word;
    Task<> (*behaviour)(Turn&, QString);
};

constexpr Entry Table[] = {
    {"read", readFile},
    {"write", writeFile},
    {"edit", editFile},
    {"run", runCommand},
    {"ask", askQuestions},
    {"think", think},
    {"plan", plan},
    {"count", count},
    {"agents", runForegroundAgent},
    {"agent", runForegroundAgent},
    {"background", runBackgroundAgent},
    {"search", search},
    {"todo", keepTodos},
    {"image", showImage},
    {"limits", tellLimits},
    {"remember", remember},
    {"/context", slashCommand},
    {"/cost", slashCommand},
    {"/usage", slashCommand},
    {"/help", slashCommand},
    {"/compact", slashCommand},
};

// The app puts the mentions of files in a paragraph before the typed text.
QString withoutMentions(const QString& text)
{
    const qsizetype end = text.indexOf(u"\n\n");
    return text.startsWith(u'@') && end >= 0 ? text.mid(end + 2).trimmed() : text.trimmed();
}

qsizetype firstSpace(const QString& text)
{
    const auto* const found =
        std::ranges::find_if(text, [](QChar character) { return character.isSpace(); });
    return found - text.cbegin();
}

} // namespace

Task<> answer(Turn& turn, Prompt prompt)
{
    const QString text = withoutMentions(prompt.text);
    const qsizetype end = firstSpace(text);
    QString word = text.left(end).toLower();
    const bool isSlash = word.startsWith(u'/');
    while (!isSlash && !word.isEmpty() && word.back().isPunct())
        word.chop(1);
    const auto* const found = std::ranges::find_if(
        Table, [&](const Entry& entry) { return word == QLatin1StringView(entry.word); });
    if (found == std::end(Table)) {
        co_await greet(turn, prompt);
        co_return;
    }
    QString words = isSlash ? word : text.mid(end).trimmed();
    co_await found->behaviour(turn, words);
}

} // namespace DemoAgent::Behaviours
