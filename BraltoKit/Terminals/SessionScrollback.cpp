#include "Terminals/SessionScrollback.h"

#include <QRegularExpression>
#include <QStringDecoder>
#include <QStringList>

#include <algorithm>

namespace Bralto::SessionScrollback {

namespace {

constexpr qsizetype MostLines = 1500;
const QString Banner = QStringLiteral("── restored ");

bool looksLikeAPrompt(const QString& line)
{
    constexpr QStringView Marks = u"%$#>";
    const QString trimmed = line.trimmed();
    return !trimmed.isEmpty() && Marks.contains(trimmed.back());
}

} // namespace

QString kept(std::string_view screen)
{
    QStringDecoder decoder(QStringDecoder::Utf8);
    const QString text = decoder.decode(QByteArrayView(screen.data(), qsizetype(screen.size())));
    if (decoder.hasError())
        return {};
    QStringList lines = text.split(u'\n');
    lines.removeIf([](const QString& line) { return line.startsWith(Banner); });
    while (!lines.isEmpty() && lines.back().trimmed().isEmpty())
        lines.removeLast();
    if (!lines.isEmpty() && looksLikeAPrompt(lines.back()))
        lines.removeLast();
    if (lines.size() > MostLines)
        lines.remove(0, lines.size() - MostLines);
    return lines.join(u'\n');
}

QString replayed(const QString& kept, const QString& now)
{
    QString text = kept;
    text.replace(QStringLiteral("\n"), QStringLiteral("\r\n"));
    return text + QStringLiteral("\r\n\x1b[2m") + Banner + now + QStringLiteral(" ──\x1b[0m\r\n");
}

QString stamp(const QLocale& locale, const QDateTime& at)
{
    // There is a long form and a numeric one; what lies between is the long one made shorter.
    static const QRegularExpression dayOfTheWeek(QStringLiteral("[,\\s]*dddd[,\\s]*"));
    QString format = locale.dateFormat(QLocale::LongFormat);
    format.replace(dayOfTheWeek, QString());
    format.replace(QStringLiteral("MMMM"), QStringLiteral("MMM"));
    return locale.toString(at.date(), format) + QStringLiteral(", ") +
           locale.toString(at.time(), QLocale::ShortFormat);
}

} // namespace Bralto::SessionScrollback
