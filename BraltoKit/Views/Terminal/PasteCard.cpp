#include "Views/Terminal/PasteCard.h"

#include "Views/Kit/FloatShadow.h"
#include "Views/Kit/Fonts.h"
#include "Views/Kit/Icon.h"
#include "Views/Kit/TextButton.h"
#include "Views/Kit/TextLine.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QPainter>
#include <QVBoxLayout>

#include <algorithm>

namespace Bralto {

namespace {

constexpr int PreviewLines = 5;
constexpr int LongestPreviewLine = 400;
constexpr int Width = 460;
constexpr int Edge = 1;
constexpr int Padding = 14;
constexpr int HeadHeight = 24;

/// Where the lines of a text end: at a line feed, a return, or both.
template <typename Take>
void forEachLine(const QString& text, Take take)
{
    qsizetype begin = 0;
    while (begin < text.size()) {
        qsizetype end = begin;
        while (end < text.size() && text[end] != u'\n' && text[end] != u'\r')
            ++end;
        take(QStringView(text).mid(begin, end - begin));
        const bool isPair = end + 1 < text.size() && text[end] == u'\r' && text[end + 1] == u'\n';
        begin = end + (isPair ? 2 : 1);
    }
}

} // namespace

int PasteCard::lineCount(const QString& text)
{
    int count = 0;
    forEachLine(text, [&count](QStringView) { ++count; });
    return std::max(1, count);
}

QStringList PasteCard::preview(const QString& text)
{
    QStringList lines;
    int count = 0;
    forEachLine(text, [&](QStringView line) {
        if (++count <= PreviewLines)
            lines.append(TextLine::flattened(line.left(LongestPreviewLine).toString()));
    });
    if (count > PreviewLines) {
        lines.removeLast();
        lines.append(count - PreviewLines + 1 == 1
                         ? tr("and 1 more line")
                         : tr("and %1 more lines").arg(count - PreviewLines + 1));
    }
    return lines;
}

PasteCard::PasteCard(Theme& theme, const QString& text, QWidget& view)
    : ThemedWidget(theme, &view)
    , m_view(view)
    , m_preview(preview(text))
{
    const int count = lineCount(text);
    m_title =
        count == 1 ? tr("Paste 1 line and run it?") : tr("Paste %1 lines and run them?").arg(count);
    setAccessibleName(m_title);
    setFocusPolicy(Qt::StrongFocus);
    setCursor(Qt::ArrowCursor);

    auto* const column = new QVBoxLayout(this);
    const int top = Edge + Padding + HeadHeight + Measure::Space2 +
                    int(m_preview.size()) * lineHeight(TextRole::CodeCommand) + Measure::Space3;
    column->setContentsMargins(Edge + Padding, top, Edge + Padding, Edge + Padding);
    auto* const row = new QHBoxLayout;
    row->setSpacing(Measure::Space2);
    auto* const refuse = new TextButton(theme, TextButton::Kind::Plain, tr("Cancel"), this);
    auto* const accept = new TextButton(theme, TextButton::Kind::Primary, tr("Paste"), this);
    accept->setDefault(true);
    row->addStretch();
    row->addWidget(refuse);
    row->addWidget(accept);
    column->addLayout(row);
    connect(refuse, &TextButton::clicked, this, &PasteCard::refused);
    connect(accept, &TextButton::clicked, this, &PasteCard::accepted);

    view.installEventFilter(this);
    place();
    show();
    setFocus(Qt::PopupFocusReason);
}

void PasteCard::place()
{
    const int width = std::min(Width, m_view.width() - 2 * Measure::Space2);
    const int height = sizeHint().height();
    setGeometry((m_view.width() - width) / 2,
                std::max(0, m_view.height() - height - Measure::Space4), width, height);
    raise();
}

bool PasteCard::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == &m_view && event->type() == QEvent::Resize)
        place();
    return ThemedWidget::eventFilter(watched, event);
}

bool PasteCard::event(QEvent* event)
{
    switch (event->type()) {
    case QEvent::ShortcutOverride:
        event->accept();
        return true;
    case QEvent::KeyPress: {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (key == Qt::Key_Escape)
            emit refused();
        else if (key == Qt::Key_Return || key == Qt::Key_Enter)
            emit accepted();
        else
            break;
        return true;
    }
    // Nothing that lies below gets what is meant for the card.
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
    case QEvent::Wheel:
    case QEvent::ContextMenu:
        return true;
    default:
        break;
    }
    return ThemedWidget::event(event);
}

void PasteCard::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF panel = QRectF(rect()).adjusted(Edge, Edge, -Edge, -Edge);
    Float::drawPanel(painter, panel, Measure::CardRadius, tokens());

    QRectF line = panel.adjusted(Padding, Padding, -Padding, 0);
    line.setHeight(HeadHeight);
    const QRectF symbol(line.left(), line.center().y() - Measure::RowIcon / 2.0, Measure::RowIcon,
                        Measure::RowIcon);
    Icon::draw(painter, symbol, QStringLiteral("exclamationmark.triangle.fill"), tokens().waiting);
    TextLine::draw(painter, line.adjusted(Measure::RowIcon + Measure::Space2, 0, 0, 0),
                   TextRole::CardTitle, tokens().label, m_title);
    line.moveTop(line.bottom() + Measure::Space2);
    line.setHeight(lineHeight(TextRole::CodeCommand));
    for (const QString& text : m_preview) {
        TextLine::draw(painter, line, TextRole::CodeCommand, tokens().ink2, text);
        line.moveTop(line.bottom());
    }
}

} // namespace Bralto
