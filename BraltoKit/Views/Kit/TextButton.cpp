#include "Views/Kit/TextButton.h"

#include "Views/Kit/Icon.h"
#include "Views/Kit/Ink.h"
#include "Views/Kit/Shape.h"
#include "Views/Kit/TextLine.h"

#include <QPainter>

#include <cmath>

namespace Bralto {
namespace {

constexpr int Gap = 7;
constexpr int CapPadding = 5;

double capWidth(const QString& text)
{
    return std::max<double>(Measure::KeyCap,
                            TextLine::width(TextRole::CaptionMedium, text) + 2 * CapPadding);
}

} // namespace

TextButton::TextButton(Theme& theme, Kind kind, const QString& text, QWidget* parent)
    : Control(theme, Ground::Sheet, parent)
    , m_kind(kind)
{
    setText(text);
    setAccessibleName(text);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

void TextButton::setExtent(int height)
{
    m_height = height;
    updateGeometry();
}

void TextButton::setSymbol(const QString& symbol)
{
    m_symbol = symbol;
    updateGeometry();
}

void TextButton::setKeyCap(const QString& text)
{
    m_keyCap = text;
    updateGeometry();
}

void TextButton::setDefault(bool isDefault)
{
    m_isDefault = isDefault;
    update();
}

TextRole TextButton::role() const
{
    return m_height < Measure::Button ? TextRole::SecondaryMedium : TextRole::BodyMedium;
}

int TextButton::padding() const
{
    return m_height < Measure::Button ? 10 : 12;
}

int TextButton::symbolSize() const
{
    return m_height < Measure::Button ? Measure::TabIcon : Measure::RowIcon;
}

QSize TextButton::sizeHint() const
{
    double width = TextLine::width(role(), text()) + 2 * padding();
    if (!m_symbol.isEmpty())
        width += symbolSize() + Gap;
    if (!m_keyCap.isEmpty())
        width += capWidth(m_keyCap) + Gap - 4;
    return {int(std::ceil(width)), m_height};
}

QColor TextButton::fill() const
{
    if (!isEnabled())
        return m_kind == Kind::Quiet ? QColor(Qt::transparent) : tokens().hover;
    const bool active = isDown() || hoverAmount() > 0.5;
    switch (m_kind) {
    case Kind::Primary:
        return active ? Ink::mixed(tokens().accent,
                                   tokens().dark ? QColor(Qt::white) : QColor(Qt::black), 0.08)
                      : tokens().accent;
    case Kind::Plain:
        return active ? Ink::faded(tokens().label, 0.16) : tokens().pressed;
    case Kind::Quiet:
    case Kind::Harmful:
        return active ? tokens().hover : QColor(Qt::transparent);
    }
    return {};
}

QColor TextButton::ink() const
{
    if (!isEnabled())
        return tokens().ink4;
    switch (m_kind) {
    case Kind::Primary:
        return tokens().onAccent;
    case Kind::Plain:
        return tokens().label;
    case Kind::Quiet:
        return hoverAmount() > 0.5 ? tokens().label : tokens().ink2;
    case Kind::Harmful:
        return tokens().failed;
    }
    return {};
}

void TextButton::paintKeyCap(QPainter& painter, const QRectF& cap) const
{
    const QColor edge =
        m_kind == Kind::Primary ? Ink::faded(tokens().onAccent, 0.22) : tokens().separator;
    const QColor letters = m_kind == Kind::Primary ? tokens().onAccent : tokens().ink2;
    if (m_kind == Kind::Primary)
        Shape::fill(painter, cap, 4, Ink::faded(tokens().onAccent, 0.14));
    Shape::edgeInside(painter, cap, 4, edge);
    TextLine::draw(painter, cap, TextRole::CaptionMedium, letters, m_keyCap, Qt::ElideNone,
                   Qt::AlignHCenter);
}

void TextButton::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    Shape::fill(painter, rect(), Measure::ControlRadius, fill());
    if (m_kind == Kind::Harmful)
        Shape::edgeInside(painter, rect(), Measure::ControlRadius, tokens().separator);
    if (m_isDefault && m_kind != Kind::Primary)
        Shape::ring(painter, rect(), Measure::ControlRadius, Measure::FocusRing,
                    tokens().accentInk);

    double content = TextLine::width(role(), text());
    if (!m_symbol.isEmpty())
        content += symbolSize() + Gap;
    if (!m_keyCap.isEmpty())
        content += capWidth(m_keyCap) + Gap;
    double x = std::max<double>(padding(), (width() - content) / 2.0);
    if (!m_symbol.isEmpty()) {
        const double top = (height() - symbolSize()) / 2.0;
        Icon::draw(painter, QRectF(x, top, symbolSize(), symbolSize()), m_symbol, ink());
        x += symbolSize() + Gap;
    }
    const double words = TextLine::width(role(), text());
    const double room = width() - x - (m_keyCap.isEmpty() ? padding() : 0);
    TextLine::draw(painter, QRectF(x, 0, std::min(words, room), height()), role(), ink(), text());
    if (!m_keyCap.isEmpty()) {
        const double top = (height() - Measure::KeyCap) / 2.0;
        paintKeyCap(painter, QRectF(x + words + Gap, top, capWidth(m_keyCap), Measure::KeyCap));
    }
}

} // namespace Bralto
