#include "Views/Editor/ProseText.h"

#include "Views/Kit/Fonts.h"
#include "Views/Kit/PopupMenu.h"
#include "Views/Kit/SlimScrollBar.h"

#include <QContextMenuEvent>
#include <QScrollBar>
#include <QTextBlock>

namespace Bralto {

ProseText::ProseText(Theme& theme, QWidget* parent)
    : QTextEdit(parent)
    , m_theme(theme)
{
    setReadOnly(true);
    setAcceptRichText(false);
    setFrameShape(QFrame::NoFrame);
    setAccessibleName(tr("Text"));
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    setAcceptDrops(false);
    document()->setDocumentMargin(0);
    document()->setDefaultFont(Bralto::font(TextRole::Prose));
    setCursorWidth(qRound(Measure::Caret));
    viewport()->setAutoFillBackground(false);
    new SlimScrollBar(theme, Ground::Sheet, *this);
    connect(&theme, &Theme::changed, this, &ProseText::applyTheme);
    applyTheme();
}

void ProseText::applyTheme()
{
    const Tokens& tokens = m_theme.tokens();
    QPalette colors = palette();
    colors.setColor(QPalette::Base, Qt::transparent);
    colors.setColor(QPalette::Text, tokens.label);
    colors.setColor(QPalette::Highlight, tokens.selection);
    colors.setColor(QPalette::HighlightedText, tokens.label);
    setPalette(colors);
}

void ProseText::setProse(const QString& text)
{
    const int position = textCursor().position();
    const int scrolled = verticalScrollBar()->value();
    setPlainText(text);
    setLines();
    QTextCursor cursor = textCursor();
    cursor.setPosition(std::min<int>(position, int(document()->characterCount()) - 1));
    setTextCursor(cursor);
    // Moving the cursor scrolled to it in a view that has no size yet.
    verticalScrollBar()->setValue(scrolled);
}

void ProseText::setZoom(double zoom)
{
    if (m_zoom == zoom)
        return;
    m_zoom = zoom;
    document()->setDefaultFont(Bralto::font(TextRole::Prose, zoom));
    setLines();
    applyMargins();
}

void ProseText::setLines()
{
    QTextBlockFormat lines;
    lines.setLineHeight(lineHeight(TextRole::Prose, m_zoom), QTextBlockFormat::FixedHeight);
    QTextCursor all(document());
    all.select(QTextCursor::Document);
    all.setBlockFormat(lines);
    QTextFrameFormat frame = document()->rootFrame()->frameFormat();
    frame.setTopMargin(Measure::ProseTop);
    frame.setBottomMargin(Measure::TextBottom);
    document()->rootFrame()->setFrameFormat(frame);
}

int ProseText::cursorLine() const
{
    return textCursor().blockNumber() + 1;
}

int ProseText::cursorColumn() const
{
    return textCursor().positionInBlock() + 1;
}

void ProseText::applyMargins()
{
    const int side = std::max(Measure::ProseSide, int(width() - Measure::ProseColumn * m_zoom) / 2);
    setViewportMargins(side, 0, side, 0);
}

void ProseText::resizeEvent(QResizeEvent* event)
{
    applyMargins();
    QTextEdit::resizeEvent(event);
}

void ProseText::contextMenuEvent(QContextMenuEvent* event)
{
    PopupMenu menu(m_theme, this);
    QAction* copyAction =
        menu.addAction(tr("Copy\t%1").arg(QKeySequence(QKeySequence::Copy).toString()));
    copyAction->setEnabled(textCursor().hasSelection());
    connect(copyAction, &QAction::triggered, this, &QTextEdit::copy);
    connect(
        menu.addAction(tr("Select All\t%1").arg(QKeySequence(QKeySequence::SelectAll).toString())),
        &QAction::triggered, this, &QTextEdit::selectAll);
    menu.exec(event->globalPos());
}

} // namespace Bralto
