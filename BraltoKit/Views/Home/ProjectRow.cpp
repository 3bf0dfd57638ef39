#include "Views/Home/ProjectRow.h"

#include "Base/Paths.h"
#include "Views/Kit/IconButton.h"
#include "Views/Kit/Ink.h"
#include "Views/Kit/PopupMenu.h"
#include "Views/Kit/RelativeTime.h"
#include "Views/Kit/Shape.h"
#include "Views/Kit/SpaceIcon.h"
#include "Views/Kit/TextButton.h"
#include "Views/Kit/TextLine.h"

#include <QContextMenuEvent>
#include <QDir>
#include <QLocale>
#include <QPainter>

namespace Bralto {
namespace {

constexpr int Beyond = 12; // the row reaches this far beyond its column on both sides
constexpr int Gap = 12;
constexpr int SmallRow = 34;
constexpr int SmallIcon = 22;

} // namespace

ProjectRow::ProjectRow(const ViewServices& services, const ProjectEntry& entry, Size size,
                       QWidget* parent)
    : Control(services.theme, Ground::Sheet, parent)
    , m_services(services)
    , m_entry(entry)
    , m_size(size)
    , m_open(new TextButton(services.theme, TextButton::Kind::Plain, tr("Open"), this))
    , m_more(new IconButton(services.theme, Ground::Sheet, QStringLiteral("ellipsis"), this))
{
    setAccessibleName(entry.name);
    setAccessibleDescription(entry.folder);
    setToolTip(entry.lastUsed
                   ? QLocale().toString(entry.lastUsed->toLocalTime(), QLocale::LongFormat)
                   : entry.folder);
    setFixedHeight(size == Size::Large ? Measure::ProjectRow : SmallRow);
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    m_open->setExtent(Measure::SmallButton);
    m_more->setTip(tr("More"));
    // Return opens the row itself, and the menu key has its menu.
    m_open->setFocusPolicy(Qt::NoFocus);
    m_more->setFocusPolicy(Qt::NoFocus);
    m_open->hide();
    m_more->hide();
    connect(m_open, &TextButton::clicked, this, &ProjectRow::open);
    connect(this, &ProjectRow::clicked, this, &ProjectRow::open);
    connect(m_more, &IconButton::clicked, this, [this] {
        makeMenu()->exec(m_more->mapToGlobal(QPoint(0, m_more->height() + Measure::Space1)));
        showActions();
    });
}

QSize ProjectRow::sizeHint() const
{
    return {Measure::ProseColumn, height()};
}

QString ProjectRow::when() const
{
    return m_entry.lastUsed ? relativeTime(*m_entry.lastUsed, m_services.clock.now()) : QString();
}

void ProjectRow::open()
{
    m_services.workspace.openFolder(m_entry.folder, {});
}

std::unique_ptr<QMenu> ProjectRow::makeMenu()
{
    auto menu = std::make_unique<PopupMenu>(theme(), this);
    Workspace& workspace = m_services.workspace;
    Desktop& desktop = m_services.desktop;
    const QString folder = m_entry.folder;
    const auto add = [&menu, &workspace](const QString& title, auto work) {
        connect(menu->addAction(title), &QAction::triggered, &workspace, work,
                Qt::QueuedConnection);
    };
    add(tr("Open"), [&workspace, folder] { workspace.openFolder(folder, {}); });
    menu->addSeparator();
    add(tr("Reveal in Finder"), [&desktop, folder] { desktop.reveal(folder); });
    add(tr("Copy Path"), [&desktop, folder] { desktop.copyText(folder); });
    return menu;
}

void ProjectRow::showActions()
{
    const bool shown = m_size == Size::Large && (underMouse() || hasFocus());
    m_open->setVisible(shown);
    m_more->setVisible(shown);
    update();
}

void ProjectRow::enterEvent(QEnterEvent* event)
{
    Control::enterEvent(event);
    showActions();
}

void ProjectRow::leaveEvent(QEvent* event)
{
    Control::leaveEvent(event);
    m_open->setVisible(m_size == Size::Large && hasFocus());
    m_more->setVisible(m_size == Size::Large && hasFocus());
    update();
}

void ProjectRow::focusInEvent(QFocusEvent* event)
{
    // A row has its ring inside, so the one that buttons have outside is not wanted.
    QAbstractButton::focusInEvent(event);
    showActions();
}

void ProjectRow::focusOutEvent(QFocusEvent* event)
{
    QAbstractButton::focusOutEvent(event);
    showActions();
}

void ProjectRow::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Down)
        focusNextChild();
    else if (event->key() == Qt::Key_Up)
        focusPreviousChild();
    else
        Control::keyPressEvent(event);
}

void ProjectRow::contextMenuEvent(QContextMenuEvent* event)
{
    makeMenu()->exec(event->globalPos());
}

void ProjectRow::resizeEvent(QResizeEvent* event)
{
    const int right = width() - Beyond;
    m_more->move(right - m_more->width(), (height() - m_more->height()) / 2);
    m_open->resize(m_open->sizeHint());
    m_open->move(m_more->x() - Measure::Space2 - m_open->width(),
                 (height() - m_open->height()) / 2);
    Control::resizeEvent(event);
}

void ProjectRow::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    if (isDown())
        Shape::fill(painter, rect(), Measure::PaneRadius, tokens().pressed);
    else if (hoverAmount() > 0)
        Shape::fill(painter, rect(), Measure::PaneRadius,
                    Ink::faded(tokens().hover, double(tokens().hover.alphaF()) * hoverAmount()));
    if (hasFocus())
        Shape::ring(painter, rect(), Measure::PaneRadius, Measure::FocusRing, tokens().accentInk);

    const int side = m_size == Size::Large ? Measure::ProjectRowIcon : SmallIcon;
    const QRectF icon(Beyond, (height() - side) / 2.0, side, side);
    SpaceIcon::draw(painter, icon, m_entry.space, m_entry.name);

    double right = width() - Beyond;
    if (!m_open->isHidden()) {
        right = m_open->x() - Gap;
    } else if (const QString time = when(); !time.isEmpty()) {
        TextLine::draw(painter, QRectF(0, 0, right, height()), TextRole::Secondary, tokens().ink3,
                       time, Qt::ElideNone, Qt::AlignRight);
        right -= TextLine::width(TextRole::Secondary, time) + Gap;
    }
    double x = icon.right() + Gap;
    const double name =
        std::min(TextLine::width(TextRole::BodyMedium, m_entry.name) + 1, right - x);
    TextLine::draw(painter, QRectF(x, 0, name, height()), TextRole::BodyMedium, tokens().label,
                   m_entry.name);
    x += name + Gap;
    if (m_size == Size::Large && right - x > 2 * Measure::ProjectRow)
        TextLine::draw(painter, QRectF(x, 0, right - x, height()), TextRole::Secondary,
                       tokens().ink3, Paths::abbreviatingHome(m_entry.folder, QDir::homePath()),
                       Qt::ElideMiddle);
}

} // namespace Bralto
