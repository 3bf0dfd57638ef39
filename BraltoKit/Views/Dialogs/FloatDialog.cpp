#include "Views/Dialogs/FloatDialog.h"

#include "Views/Kit/FloatShadow.h"
#include "Views/Kit/FloatWindow.h"

#include <QMouseEvent>
#include <QPainter>
#include <QVBoxLayout>
#include <QWindow>

namespace Bralto {
namespace {

constexpr int Padding = 20;
constexpr int Bottom = 16;
constexpr int Margin = Float::ShadowMargin;

} // namespace

FloatDialog::FloatDialog(Theme& theme, QWidget* window)
    : QDialog(window)
    , m_theme(theme)
    , m_column(new QVBoxLayout(this))
{
    setWindowFlags(Qt::Dialog | Qt::FramelessWindowHint | Qt::NoDropShadowWindowHint);
    Float::makeWindow(*this, theme, Margin, Measure::CardRadius);
    setModal(true);
    m_column->setContentsMargins(Margin + Padding, Margin + Padding, Margin + Padding,
                                 Margin + Bottom);
    m_column->setSpacing(0);
    m_column->setSizeConstraint(QLayout::SetFixedSize);
}

void FloatDialog::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    const QRectF card = QRectF(rect()).adjusted(Margin, Margin, -Margin, -Margin);
    Float::drawShadow(painter, card, Measure::CardRadius, m_theme.tokens());
    Float::drawPanel(painter, card, Measure::CardRadius, m_theme.tokens());
}

void FloatDialog::showEvent(QShowEvent* event)
{
    QDialog::showEvent(event);
    if (const QWidget* window = parentWidget() ? parentWidget()->window() : nullptr)
        move(window->mapToGlobal(window->rect().center()) - rect().center());
}

void FloatDialog::mousePressEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton && windowHandle())
        windowHandle()->startSystemMove();
}

} // namespace Bralto
