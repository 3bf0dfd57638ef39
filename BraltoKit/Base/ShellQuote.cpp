#include "Base/ShellQuote.h"

namespace Bralto::ShellQuote {

QString quoted(const QString& value)
{
    QString word = value;
    word.replace(u'\'', QStringLiteral("'\\''"));
    return u'\'' + word + u'\'';
}

QString joined(const QStringList& values)
{
    QStringList words;
    words.reserve(values.size());
    for (const QString& value : values)
        words.append(quoted(value));
    return words.join(u' ');
}

} // namespace Bralto::ShellQuote
