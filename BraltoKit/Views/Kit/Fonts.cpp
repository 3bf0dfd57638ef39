#include "Views/Kit/Fonts.h"

#include <QFontDatabase>
#include <QFontMetricsF>
#include <QGuiApplication>
#include <QHash>
#include <QPainter>
#include <QScreen>

namespace Bralto {
namespace {

/// Families in the order in which they are tried. The emoji family stands last, so that letters
/// and digits never come from it.
QStringList families(TypeStyle::Face face)
{
    const QStringList installed = QFontDatabase::families();
    const auto firstOf = [&installed](const QStringList& wanted, const QFont& fallback) {
        for (const QString& family : wanted) {
            if (installed.contains(family))
                return family;
        }
        return fallback.family();
    };
    const QString emoji = QStringLiteral("Noto Color Emoji");
    if (face == TypeStyle::Face::Interface)
        return {firstOf({QStringLiteral("Inter")},
                        QFontDatabase::systemFont(QFontDatabase::GeneralFont)),
                emoji};
    // The second cut is the same face without ligatures.
    return {firstOf({QStringLiteral("JetBrains Mono NL"), QStringLiteral("JetBrains Mono")},
                    QFontDatabase::systemFont(QFontDatabase::FixedFont)),
            emoji};
}

QFont makeFont(TextRole role, double zoom)
{
    static const QStringList interface = families(TypeStyle::Face::Interface);
    static const QStringList code = families(TypeStyle::Face::Code);
    const TypeStyle style = typeStyle(role);

    QFont result;
    result.setFamilies(style.face == TypeStyle::Face::Code ? code : interface);
    if (style.face == TypeStyle::Face::Code) {
        result.setFixedPitch(true);
        result.setStyleHint(QFont::Monospace);
        // No ligatures: a pair of dashes is two dashes. Scripts that need shaping still get it.
        result.setStyleStrategy(QFont::PreferNoShaping);
    }
    // Only point sizes can be fractional; at the screen's own resolution they give the pixels.
    const QScreen* screen = QGuiApplication::primaryScreen();
    const double dpi = screen ? screen->logicalDotsPerInchY() : 96;
    result.setPointSizeF(style.size * zoom * 72 / dpi);
    result.setWeight(QFont::Weight(style.weight));
    if (style.spacing != 0)
        result.setLetterSpacing(QFont::AbsoluteSpacing, style.size * zoom * style.spacing);
    result.setHintingPreference(QFont::PreferNoHinting);
    return result;
}

} // namespace

QFont font(TextRole role, double zoom)
{
    static QHash<std::pair<int, double>, QFont> cache;
    const auto key = std::pair(int(role), zoom);
    const auto known = cache.constFind(key);
    if (known != cache.constEnd())
        return *known;
    return *cache.insert(key, makeFont(role, zoom));
}

int lineHeight(TextRole role, double zoom)
{
    return qRound(typeStyle(role).lineHeight * zoom);
}

namespace Tabular {

double width(const QFont& font, const QString& text)
{
    const QFontMetricsF metrics(font);
    const double digit = metrics.horizontalAdvance(u'0');
    double result = 0;
    for (const QChar character : text)
        result += character.isDigit() ? digit : metrics.horizontalAdvance(character);
    return result;
}

void draw(QPainter& painter, const QRectF& rect, int flags, const QString& text)
{
    const QFontMetricsF metrics(painter.font());
    const double digit = metrics.horizontalAdvance(u'0');
    const double whole = width(painter.font(), text);
    double x = rect.left();
    if (flags & Qt::AlignRight)
        x = rect.right() - whole;
    else if (flags & Qt::AlignHCenter)
        x = rect.center().x() - whole / 2;
    double y = rect.top() + metrics.ascent();
    if (flags & Qt::AlignVCenter)
        y = rect.center().y() + (metrics.ascent() - metrics.descent()) / 2;
    else if (flags & Qt::AlignBottom)
        y = rect.bottom() - metrics.descent();

    for (const QChar character : text) {
        const double advance = metrics.horizontalAdvance(character);
        const double cell = character.isDigit() ? digit : advance;
        painter.drawText(QPointF(x + (cell - advance) / 2, y), QString(character));
        x += cell;
    }
}

} // namespace Tabular

} // namespace Bralto
