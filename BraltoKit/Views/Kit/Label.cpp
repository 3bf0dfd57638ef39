#include "Views/Kit/Label.h"

#include "Views/Kit/Fonts.h"

namespace Bralto {

Label::Label(Theme& theme, TextRole role, QColor Tokens::*ink, const QString& text, QWidget* parent)
    : QLabel(parent)
    , m_theme(theme)
    , m_ink(ink)
{
    setTextFormat(Qt::PlainText);
    setFont(Bralto::font(role));
    setMinimumHeight(lineHeight(role));
    setText(text);
    connect(&theme, &Theme::changed, this, &Label::applyTheme);
    applyTheme();
}

void Label::applyTheme()
{
    QPalette colors = palette();
    colors.setColor(QPalette::WindowText, m_theme.tokens().*m_ink);
    setPalette(colors);
}

} // namespace Bralto
