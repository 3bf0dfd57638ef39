#include "Chat/ChatNotice.h"

#include <QLatin1String>

#include <array>

namespace Bralto::ChatNotice {

namespace {

constexpr std::array Wrappers{
    QLatin1String("local-command-stdout"), QLatin1String("local-command-stderr"),
    QLatin1String("local-command-caveat"), QLatin1String("command-name"),
    QLatin1String("command-message"),      QLatin1String("command-args"),
    QLatin1String("bash-input"),           QLatin1String("bash-stdout"),
    QLatin1String("bash-stderr"),          QLatin1String("system-reminder"),
};

/// How long the wrapper tag at the beginning of `text` is, 0 if there is none.
qsizetype wrapperLength(QStringView text)
{
    const qsizetype opening = text.startsWith(u"</") ? 2 : 1;
    for (const QLatin1String name : Wrappers) {
        const QStringView rest = text.sliced(std::min(opening, text.size()));
        if (rest.startsWith(name) && rest.sliced(name.size()).startsWith(u'>'))
            return opening + name.size() + 1;
    }
    return 0;
}

QString withoutWrappers(QStringView text)
{
    QString result;
    result.reserve(text.size());
    for (qsizetype at = 0; at < text.size();) {
        const qsizetype length = text[at] == u'<' ? wrapperLength(text.sliced(at)) : 0;
        if (length == 0)
            result.append(text[at]);
        at += std::max<qsizetype>(length, 1);
    }
    return result;
}

/// Where the first `count` lines of `text` end, its size if it has no more.
qsizetype endOfLines(const QString& text, qsizetype count)
{
    qsizetype end = -1;
    for (; count > 0; --count) {
        end = text.indexOf(u'\n', end + 1);
        if (end < 0)
            return text.size();
    }
    return end;
}

} // namespace

Shown shown(const QString& text, Extent extent)
{
    Shown result{withoutWrappers(text).trimmed(), 0};
    if (extent == Extent::Whole)
        return result;
    const qsizetype end = endOfLines(result.text, MostLines);
    result.foldedLines = result.text.sliced(end).count(u'\n');
    result.text.truncate(end);
    return result;
}

} // namespace Bralto::ChatNotice
