#include "Views/Kit/Field.h"

#include "Views/Kit/Fonts.h"
#include "Views/Kit/Icon.h"
#include "Views/Kit/Shape.h"
#include "Views/Kit/TextLine.h"

#include <QPainter>

namespace Bralto {
namespace {

constexpr int Padding = 8; // the line edit adds two of its own
constexpr int SymbolColumn = Measure::RowIcon + 8;

} // namespace

Field::Field(Theme& theme, QWidget* parent)
    : QLineEdit(parent)
    , m_theme(theme)
{
    setFrame(false);
    setFont(Bralto::font(TextRole::Body));
    setFixedHeight(Measure::Field);
    setAttribute(Qt::WA_MacShowFocusRect, false);
    connect(&theme, &Theme::changed, this, &Field::applyTheme);
    applyTheme();
    applyMargins();
}

void Field::setSymbol(const QString& symbol)
{
    m_symbol = symbol;
    applyMargins();
}

void Field::setHint(const QString& hint)
{
    m_hint = hint;
    update();
}

QSize Field::sizeHint() const
{
    return {Measure::PromptField, Measure::Field};
}

void Field::applyMargins()
{
    setTextMargins(m_symbol.isEmpty() ? Padding : Padding + SymbolColumn, 0, Padding, 0);
}

void Field::applyTheme()
{
    const Tokens& tokens = m_theme.tokens();
    QPalette colors = palette();
    colors.setColor(QPalette::Base, Qt::transparent);
    colors.setColor(QPalette::Text, tokens.label);
    colors.setColor(QPalette::PlaceholderText, tokens.ink3);
    colors.setColor(QPalette::Highlight, tokens.selection);
    colors.setColor(QPalette::HighlightedText, tokens.label);
    setPalette(colors);
}

void Field::paintEvent(QPaintEvent* event)
{
    const Tokens& tokens = m_theme.tokens();
    {
        QPainter painter(this);
        Shape::fill(painter, rect(), Measure::ControlRadius, tokens.field);
        if (hasFocus())
            Shape::ring(painter, rect(), Measure::ControlRadius, Measure::FocusRing,
                        tokens.accentInk);
        else
            Shape::edgeInside(painter, rect(), Measure::ControlRadius, tokens.separator);
        if (!m_symbol.isEmpty())
            Icon::draw(painter,
                       QRectF(Padding + 2, (height() - Measure::RowIcon) / 2.0, Measure::RowIcon,
                              Measure::RowIcon),
                       m_symbol, tokens.ink3);
        const double words = TextLine::width(TextRole::Body, placeholderText()) +
                             TextLine::width(TextRole::Caption, m_hint);
        const bool hasRoom = words < width() - 2.0 * SymbolColumn - 2.0 * Padding;
        if (hasRoom && text().isEmpty() && !hasFocus())
            TextLine::draw(painter, QRectF(rect()).adjusted(0, 0, -Padding - 2, 0),
                           TextRole::Caption, tokens.ink3, m_hint, Qt::ElideNone, Qt::AlignRight);
    }
    QLineEdit::paintEvent(event);
}

} // namespace Bralto
