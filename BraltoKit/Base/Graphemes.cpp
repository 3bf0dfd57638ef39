#include "Base/Graphemes.h"

#include <QTextBoundaryFinder>

namespace Bralto::Graphemes {

QString prefix(const QString& text, qsizetype count)
{
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text);
    qsizetype end = 0;
    for (qsizetype passed = 0; passed < count && end >= 0 && end < text.size(); ++passed)
        end = finder.toNextBoundary();
    return end < 0 ? text : text.first(end);
}

QString prefixInBytes(const QString& text, qsizetype bytes)
{
    if (text.toUtf8().size() <= bytes)
        return text;
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text);
    qsizetype end = 0;
    for (qsizetype next = 0; next >= 0 && text.first(next).toUtf8().size() <= bytes;
         next = finder.toNextBoundary())
        end = next;
    return text.first(end);
}

} // namespace Bralto::Graphemes
