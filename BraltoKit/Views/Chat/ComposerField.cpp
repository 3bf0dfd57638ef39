#include "Views/Chat/ComposerField.h"

#include "Views/Chat/ChatAttachments.h"
#include "Views/Kit/Fonts.h"
#include "Views/Kit/SlimScrollBar.h"

#include <QAbstractTextDocumentLayout>
#include <QKeyEvent>
#include <QMimeData>
#include <QPainter>
#include <QScopedValueRollback>
#include <QSyntaxHighlighter>
#include <QTextBlock>

#include <cmath>

namespace Bralto {

namespace {

constexpr int MostLines = 8;
constexpr int LeastHeight = 28;
constexpr int TextMargin = 2;

/// The key as cards and lists know it; nothing for one that types.
std::optional<ChatKey> chatKey(const QKeyEvent& event)
{
    constexpr auto Chord = Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier;
    if (event.modifiers() & Chord)
        return std::nullopt;
    const bool shift = event.modifiers().testFlag(Qt::ShiftModifier);
    switch (event.key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
        return ChatKey{ChatKey::Kind::Return, 0, shift};
    case Qt::Key_Escape:
        return ChatKey{ChatKey::Kind::Escape, 0, shift};
    default:
        break;
    }
    if (shift)
        return std::nullopt;
    switch (event.key()) {
    case Qt::Key_Up:
        return ChatKey{ChatKey::Kind::Up, 0, false};
    case Qt::Key_Down:
        return ChatKey{ChatKey::Kind::Down, 0, false};
    case Qt::Key_Tab:
        return ChatKey{ChatKey::Kind::Tab, 0, false};
    default:
        break;
    }
    if (event.key() >= Qt::Key_1 && event.key() <= Qt::Key_9)
        return ChatKey{ChatKey::Kind::Digit, event.key() - Qt::Key_0, false};
    return std::nullopt;
}

/// Shows the words that begin with "@" in the accent.
class MentionInk final : public QSyntaxHighlighter {
public:
    MentionInk(Theme& theme, QTextDocument* document)
        : QSyntaxHighlighter(document)
        , m_theme(theme)
    {
    }

protected:
    void highlightBlock(const QString& text) override
    {
        qsizetype start = 0;
        for (qsizetype i = 0; i <= text.size(); ++i) {
            if (i < text.size() && !text[i].isSpace())
                continue;
            if (i - start > 1 && text[start] == u'@')
                setFormat(int(start), int(i - start), m_theme.tokens().accentInk);
            start = i + 1;
        }
    }

private:
    Theme& m_theme;
};

} // namespace

ComposerField::ComposerField(Theme& theme, ChatDraft& draft, QWidget* parent)
    : QTextEdit(parent)
    , m_theme(theme)
    , m_draft(draft)
{
    setAcceptRichText(false);
    setFrameShape(QFrame::NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setTabChangesFocus(true);
    setAccessibleName(tr("Message to Claude"));
    viewport()->setAutoFillBackground(false);
    document()->setDocumentMargin(TextMargin);
    new SlimScrollBar(theme, Ground::Sheet, *this);
    auto* mentions = new MentionInk(theme, document());
    setPlainText(draft.text());
    applyTheme();

    connect(&theme, &Theme::changed, this, &ComposerField::applyTheme);
    connect(&theme, &Theme::changed, mentions, &QSyntaxHighlighter::rehighlight);
    connect(this, &QTextEdit::textChanged, this, &ComposerField::report);
    connect(this, &QTextEdit::cursorPositionChanged, this, &ComposerField::report);
    connect(document()->documentLayout(), &QAbstractTextDocumentLayout::documentSizeChanged, this,
            &ComposerField::fitHeight);
    connect(&draft, &ChatDraft::textReplaced, this, &ComposerField::replaceText);
    fitHeight();
}

void ComposerField::replaceText(const QString& text, qsizetype position)
{
    const QScopedValueRollback guard(m_isReplacing, true);
    if (toPlainText() != text) {
        setPlainText(text);
        applyLineHeight();
    }
    QTextCursor cursor = textCursor();
    cursor.setPosition(int(position));
    setTextCursor(cursor);
}

void ComposerField::applyTheme()
{
    setFont(Bralto::font(TextRole::Chat, m_zoom));
    QPalette colors = palette();
    const Tokens& tokens = m_theme.tokens();
    colors.setColor(QPalette::Base, Qt::transparent);
    colors.setColor(QPalette::Text, tokens.label);
    colors.setColor(QPalette::Highlight, tokens.selection);
    colors.setColor(QPalette::HighlightedText, tokens.label);
    setPalette(colors);
    applyLineHeight();
    viewport()->update();
}

/// Every line as high as the role wants it; new lines take it over.
void ComposerField::applyLineHeight()
{
    const QScopedValueRollback guard(m_isReplacing, true);
    QTextBlockFormat format;
    format.setLineHeight(lineHeight(TextRole::Chat, m_zoom), QTextBlockFormat::FixedHeight);
    QTextCursor cursor(document());
    cursor.select(QTextCursor::Document);
    cursor.mergeBlockFormat(format);
}

void ComposerField::setZoom(double zoom)
{
    m_zoom = zoom;
    applyTheme();
    fitHeight();
}

int ComposerField::textHeight() const
{
    const int wanted = int(std::ceil(document()->size().height()));
    const int most = MostLines * lineHeight(TextRole::Chat, m_zoom) + 2 * TextMargin;
    return std::clamp(wanted, LeastHeight, std::max(most, LeastHeight));
}

void ComposerField::fitHeight()
{
    if (const int wanted = textHeight(); wanted != minimumHeight())
        setFixedHeight(wanted);
}

void ComposerField::report()
{
    if (!m_isReplacing)
        m_draft.setText(toPlainText(), textCursor().position());
}

bool ComposerField::event(QEvent* event)
{
    // Tab completes while a list is open; else it leaves the field, before it gets to the keys.
    const bool hasList = m_draft.isPaletteOpen() || m_draft.isMentionOpen();
    if (event->type() == QEvent::KeyPress && hasList) {
        auto* key = static_cast<QKeyEvent*>(event);
        if (key->key() == Qt::Key_Tab) {
            keyPressEvent(key);
            return true;
        }
    }
    return QTextEdit::event(event);
}

void ComposerField::keyPressEvent(QKeyEvent* event)
{
    const auto key = chatKey(*event);
    if (key && m_draft.press(*key)) {
        event->accept();
        return;
    }
    if (key && key->kind == ChatKey::Kind::Return) {
        textCursor().insertBlock();
        ensureCursorVisible();
        return;
    }
    QTextEdit::keyPressEvent(event);
}

void ComposerField::focusInEvent(QFocusEvent* event)
{
    QTextEdit::focusInEvent(event);
    emit focusChanged(true);
}

void ComposerField::focusOutEvent(QFocusEvent* event)
{
    QTextEdit::focusOutEvent(event);
    emit focusChanged(false);
}

void ComposerField::paintEvent(QPaintEvent* event)
{
    QTextEdit::paintEvent(event);
    if (!document()->isEmpty())
        return;
    QPainter painter(viewport());
    painter.setFont(font());
    painter.setPen(m_theme.tokens().ink3);
    const QRect line = viewport()->rect().adjusted(TextMargin, 0, -TextMargin, 0);
    painter.drawText(line, Qt::AlignLeft | Qt::AlignVCenter,
                     fontMetrics().elidedText(tr("Ask Claude, / for commands, @ for files"),
                                              Qt::ElideRight, line.width()));
}

bool ComposerField::canInsertFromMimeData(const QMimeData* source) const
{
    return ChatAttachments::canRead(*source) || QTextEdit::canInsertFromMimeData(source);
}

void ComposerField::insertFromMimeData(const QMimeData* source)
{
    // Words that come with a picture of themselves, as from a text processor, stay words.
    const bool isText = source->hasText() && source->urls().isEmpty();
    if (ChatAttachments::canRead(*source) && !isText)
        attach(*source);
    else
        insertPlainText(source->text());
}

void ComposerField::attach(const QMimeData& source)
{
    ChatAttachments::load(ChatAttachments::read(source), this,
                          [this](const QList<ChatAttachment>& all) { m_draft.attach(all); });
}

} // namespace Bralto
