#include "Views/Terminal/TerminalPaste.h"

#include "Base/Background.h"
#include "Views/Terminal/TerminalClipboard.h"
#include "Views/Terminal/TerminalView.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>

#include <optional>
#include <variant>

namespace Bralto {

TerminalPaste::TerminalPaste(Theme& theme, TerminalView& view)
    : QObject(&view)
    , m_theme(theme)
    , m_view(view)
{
}

TerminalPaste::~TerminalPaste() = default;

bool TerminalPaste::canTake(const QMimeData& data) const
{
    return TerminalClipboard::content(data, m_view.session().kind()).has_value();
}

void TerminalPaste::take(const QMimeData& data)
{
    const auto content = TerminalClipboard::content(data, m_view.session().kind());
    if (!content)
        return;
    if (const auto* const text = std::get_if<QString>(&*content)) {
        takeText(*text);
        return;
    }
    inBackground(
        this,
        [picture = std::get<QImage>(*content)] { return TerminalClipboard::savePicture(picture); },
        [this](const std::optional<QString>& path) {
            if (path)
                send(*path + u' ');
        });
}

void TerminalPaste::takeText(const QString& text)
{
    if (text.isEmpty())
        return;
    closeCard();
    if (!TerminalClipboard::needsWarning(text, m_view.session().terminal())) {
        send(text);
        return;
    }
    m_card = new PasteCard(m_theme, text, m_view);
    connect(m_card, &PasteCard::accepted, this, [this, text] {
        closeCard();
        send(text);
    });
    connect(m_card, &PasteCard::refused, this, &TerminalPaste::closeCard);
}

void TerminalPaste::send(const QString& text)
{
    m_view.session().paste(text);
    emit pasted();
}

void TerminalPaste::closeCard()
{
    if (!m_card)
        return;
    PasteCard* const card = m_card;
    m_card.clear();
    // The button that was pressed is still in its own event.
    card->hide();
    card->deleteLater();
    m_view.setFocus(Qt::PopupFocusReason);
}

void TerminalPaste::putOnClipboard(const QString& text)
{
    QGuiApplication::clipboard()->setText(text);
}

} // namespace Bralto
