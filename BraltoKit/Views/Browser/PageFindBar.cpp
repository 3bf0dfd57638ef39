#include "Views/Browser/PageFindBar.h"

#include "Views/Kit/Field.h"
#include "Views/Kit/IconButton.h"
#include "Views/Kit/Label.h"
#include "Views/Kit/Shape.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QPainter>
#include <QPointer>

namespace Bralto {
namespace {

constexpr int FieldWidth = 320;
constexpr int FieldHeight = 28;
constexpr int StatusWidth = 86;

QString statusOf(const QString& text, int active, int count)
{
    if (text.isEmpty())
        return {};
    if (count == 0)
        return PageFindBar::tr("No matches");
    return PageFindBar::tr("%1 of %2").arg(active).arg(count);
}

} // namespace

PageFindBar::PageFindBar(Theme& theme, BrowserTab& tab, QWidget* parent)
    : ThemedWidget(theme, parent)
    , m_tab(tab)
    , m_field(new Field(theme, this))
    , m_status(new Label(theme, TextRole::Secondary, &Tokens::ink2, {}, this))
{
    setFixedHeight(Height);
    m_field->setPlaceholderText(tr("Find"));
    m_field->setAccessibleName(tr("Find"));
    m_field->setFixedHeight(FieldHeight);
    m_field->setMaximumWidth(FieldWidth);
    m_field->installEventFilter(this);
    m_status->setFixedWidth(StatusWidth);

    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(Measure::Space2, 0, Measure::Space2, 0);
    row->setSpacing(2);
    row->addWidget(m_field, 1);
    row->addSpacing(Measure::Space2);
    row->addWidget(m_status);
    row->addStretch(0);
    const auto button = [&](const QString& symbol, const QString& tip, const QString& keys,
                            void (PageFindBar::*press)()) {
        auto* made = new IconButton(theme, Ground::Sheet, symbol, this);
        made->setExtent(Measure::IconButton, Measure::TabIcon);
        made->setTip(tip, keys);
        connect(made, &IconButton::clicked, this, press);
        row->addWidget(made);
    };
    button(QStringLiteral("arrow.up"), tr("Previous Match"), QStringLiteral("Shift+Return"),
           &PageFindBar::previous);
    button(QStringLiteral("arrow.down"), tr("Next Match"), QStringLiteral("Return"),
           &PageFindBar::next);
    button(QStringLiteral("xmark"), tr("Close"), QStringLiteral("Esc"), &PageFindBar::close);

    connect(m_field, &Field::textChanged, this, &PageFindBar::next);
    hide();
}

void PageFindBar::open()
{
    show();
    emit opened();
    m_field->setFocus(Qt::ShortcutFocusReason);
    m_field->selectAll();
    next();
}

void PageFindBar::close()
{
    if (isHidden())
        return;
    if (PageEngine* page = m_tab.pageIfMade())
        page->find({}, PageEngine::FindDirection::Forward, [](int, int) {});
    hide();
    emit closed();
}

void PageFindBar::next()
{
    search(PageEngine::FindDirection::Forward);
}

void PageFindBar::previous()
{
    search(PageEngine::FindDirection::Backward);
}

void PageFindBar::search(PageEngine::FindDirection direction)
{
    PageEngine* page = m_tab.pageIfMade();
    if (!page || isHidden())
        return;
    const QString text = m_field->text();
    page->find(text, direction, [bar = QPointer(this), text](int active, int count) {
        // Whoever goes on writing has asked anew.
        if (bar && bar->m_field->text() == text)
            bar->m_status->setText(statusOf(text, active, count));
    });
}

bool PageFindBar::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == m_field && event->type() == QEvent::KeyPress) {
        const auto* key = static_cast<QKeyEvent*>(event);
        const bool isReturn = key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter;
        if (isReturn) {
            key->modifiers() & Qt::ShiftModifier ? previous() : next();
            return true;
        }
        if (key->key() == Qt::Key_Escape) {
            close();
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}

void PageFindBar::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    painter.fillRect(rect(), tokens().sheet);
    const double line = Shape::hairline(painter);
    painter.fillRect(QRectF(0, height() - line, width(), line), tokens().separator);
}

} // namespace Bralto
