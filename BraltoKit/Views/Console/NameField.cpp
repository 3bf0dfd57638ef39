#include "Views/Console/NameField.h"

#include "Views/Kit/Fonts.h"
#include "Views/Kit/Ink.h"

#include <QKeyEvent>

#include <utility>

namespace Bralto {
namespace {

constexpr int LongestName = 200;

} // namespace

NameField::NameField(Theme& theme, const QString& name, const QColor& ink, const QRect& place,
                     QWidget* parent)
    : QLineEdit(name, parent)
{
    setFrame(false);
    setMaxLength(LongestName);
    setFont(Bralto::font(TextRole::SecondaryMedium));
    setAccessibleName(tr("Name"));
    // The line edit has two units of its own before the text.
    setTextMargins(-2, 0, 0, 0);
    QPalette colors = palette();
    colors.setColor(QPalette::Base, Qt::transparent);
    colors.setColor(QPalette::Text, ink);
    colors.setColor(QPalette::Highlight,
                    Ink::faded(ink, double(theme.tokens().selection.alphaF())));
    colors.setColor(QPalette::HighlightedText, ink);
    setPalette(colors);
    setGeometry(place);
    show();
    selectAll();
    setFocus(Qt::OtherFocusReason);
}

std::optional<QString> NameField::nameFrom(const QString& text)
{
    const QString name = text.trimmed();
    return name.isEmpty() ? std::nullopt : std::optional(name);
}

void NameField::finish(bool takes)
{
    if (std::exchange(m_isDone, true))
        return;
    hide();
    deleteLater();
    if (takes)
        emit named(nameFrom(text()));
    else
        emit cancelled();
}

bool NameField::event(QEvent* event)
{
    // Escape and Return are for the name, whatever they are shortcuts of.
    if (event->type() == QEvent::ShortcutOverride) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (key == Qt::Key_Escape || key == Qt::Key_Return || key == Qt::Key_Enter) {
            event->accept();
            return true;
        }
    }
    return QLineEdit::event(event);
}

void NameField::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Escape)
        finish(false);
    else if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
        finish(true);
    else
        QLineEdit::keyPressEvent(event);
}

void NameField::focusOutEvent(QFocusEvent* event)
{
    QLineEdit::focusOutEvent(event);
    // A menu of its own takes the keyboard only for a while.
    if (event->reason() != Qt::PopupFocusReason && event->reason() != Qt::ActiveWindowFocusReason)
        finish(true);
}

} // namespace Bralto
