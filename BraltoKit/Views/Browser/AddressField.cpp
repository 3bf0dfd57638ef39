#include "Views/Browser/AddressField.h"

#include "Browser/PageAddress.h"
#include "Views/Kit/Fonts.h"
#include "Views/Kit/Icon.h"
#include "Views/Kit/Shape.h"
#include "Views/Kit/TextLine.h"

#include <QKeyEvent>
#include <QPainter>

#include <algorithm>
#include <array>

namespace Bralto {
namespace {

constexpr int Height = 26;
constexpr int Padding = 10;
constexpr int LockGap = 5;

} // namespace

AddressField::AddressField(Theme& theme, BrowserTab& tab, QWidget* parent)
    : Field(theme, parent)
    , m_tab(tab)
{
    setFont(Bralto::font(TextRole::Tab));
    setFixedHeight(Height);
    setPlaceholderText(tr("Search or enter address"));
    setAccessibleName(tr("Address"));
    setText(tab.addressText());
    connect(&tab, &BrowserTab::addressTextChanged, this, [this](const QString& text) {
        if (this->text() != text)
            setText(text);
    });
    connect(this, &QLineEdit::textEdited, this, [this](const QString& text) {
        m_tab.setEditingAddress(true);
        m_tab.setAddressText(text);
    });
}

void AddressField::keyPressEvent(QKeyEvent* event)
{
    switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
        m_tab.submit();
        if (!m_tab.isEditingAddress())
            emit submitted();
        return;
    case Qt::Key_Escape:
        m_tab.setEditingAddress(false);
        emit left();
        return;
    default:
        QLineEdit::keyPressEvent(event);
    }
}

void AddressField::focusInEvent(QFocusEvent* event)
{
    QLineEdit::focusInEvent(event);
    // A click selects when the button comes up, or it would put the cursor there again.
    if (event->reason() != Qt::MouseFocusReason)
        selectAll();
}

void AddressField::focusOutEvent(QFocusEvent* event)
{
    QLineEdit::focusOutEvent(event);
    // A menu or another window only borrows the keyboard.
    if (event->reason() == Qt::PopupFocusReason || event->reason() == Qt::ActiveWindowFocusReason)
        return;
    deselect();
    m_tab.setEditingAddress(false);
}

void AddressField::mousePressEvent(QMouseEvent* event)
{
    m_selectsOnRelease = !hasFocus();
    QLineEdit::mousePressEvent(event);
}

void AddressField::mouseReleaseEvent(QMouseEvent* event)
{
    QLineEdit::mouseReleaseEvent(event);
    if (m_selectsOnRelease && !hasSelectedText())
        selectAll();
    m_selectsOnRelease = false;
}

void AddressField::paintEvent(QPaintEvent* event)
{
    if (hasFocus())
        Field::paintEvent(event);
    else
        paintAddress();
}

void AddressField::paintAddress()
{
    const Tokens& tokens = theme().tokens();
    QPainter painter(this);
    Shape::fill(painter, rect(), Measure::ControlRadius, tokens.hover);
    const double room = width() - 2.0 * Padding;
    if (text().isEmpty()) {
        TextLine::draw(painter, QRectF(Padding, 0, room, height()), TextRole::Tab, tokens.ink3,
                       placeholderText(), Qt::ElideRight, Qt::AlignHCenter);
        return;
    }

    struct Piece {
        QString text;
        QColor ink;
        double width = 0;
    };
    const PageAddress::Parts parts = PageAddress::parts(m_tab.url());
    std::array pieces{Piece{parts.before, tokens.ink3}, Piece{parts.host, tokens.label},
                      Piece{parts.after, parts.host.isEmpty() ? tokens.label : tokens.ink3}};
    const bool isSecure = PageAddress::isSecure(m_tab.url());
    const double lock = isSecure ? Measure::CaptionIcon + LockGap : 0;
    double whole = lock;
    for (Piece& piece : pieces) {
        piece.width = TextLine::width(TextRole::Tab, piece.text);
        whole += piece.width;
    }
    double x = Padding + std::max(0.0, (room - whole) / 2);
    const double right = width() - Padding;
    if (isSecure) {
        Icon::draw(painter,
                   QRectF(x, (height() - Measure::CaptionIcon) / 2.0, Measure::CaptionIcon,
                          Measure::CaptionIcon),
                   QStringLiteral("lock"), tokens.ink3);
        x += lock;
    }
    for (const Piece& piece : pieces) {
        if (x >= right)
            break;
        // Half a unit more, so that rounding elides nothing.
        const double width = std::min(piece.width + 0.5, right - x);
        TextLine::draw(painter, QRectF(x, 0, width, height()), TextRole::Tab, piece.ink,
                       piece.text);
        x += piece.width;
    }
}

} // namespace Bralto
