#include "Views/Browser/BrowserBar.h"

#include "Base/Shortcuts.h"
#include "Views/Browser/AddressField.h"
#include "Views/Kit/IconButton.h"
#include "Views/Kit/Label.h"
#include "Views/Kit/Shape.h"

#include <QPainter>

#include <algorithm>

namespace Bralto {
namespace {

constexpr int Padding = 8;
constexpr int Gap = 4;
constexpr int AddressGap = 8;
constexpr int ProgressHeight = 2;
constexpr int LargestTool = 110;
constexpr int RoomForTool = 420; ///< In a narrower bar the line alone tells of a tool.
constexpr int LingerMilliseconds = 900;

} // namespace

BrowserBar::BrowserBar(const ViewServices& services, BrowserTab& tab, QWidget* parent)
    : ThemedWidget(services.theme, parent)
    , m_services(services)
    , m_tab(tab)
    , m_back(addButton(QStringLiteral("arrow.left"), tr("Back"), QStringLiteral("Alt+Left")))
    , m_forward(
          addButton(QStringLiteral("arrow.right"), tr("Forward"), QStringLiteral("Alt+Right")))
    , m_reload(addButton(QStringLiteral("arrow.clockwise"), tr("Reload")))
    , m_address(new AddressField(services.theme, tab, this))
    , m_tool(new Label(services.theme, TextRole::CaptionMedium, &Tokens::accentInk, {}, this))
    , m_external(
          addButton(QStringLiteral("arrow.up.forward.square"), tr("Open in Default Browser")))
    , m_closeSplit(addButton(QStringLiteral("xmark"), tr("Close Split View"),
                             Shortcuts::keys(Shortcuts::Command::ToggleSplit)))
{
    setFixedHeight(Measure::TabBar);
    connect(m_back, &IconButton::clicked, &tab, &BrowserTab::goBack);
    connect(m_forward, &IconButton::clicked, &tab, &BrowserTab::goForward);
    connect(m_reload, &IconButton::clicked, &tab,
            [this] { m_tab.isLoading() ? m_tab.stopLoading() : m_tab.reload(); });
    connect(m_external, &IconButton::clicked, &tab, &BrowserTab::openInDefaultBrowser);
    connect(m_closeSplit, &IconButton::clicked, &services.workspace, &Workspace::toggleSplit,
            Qt::QueuedConnection);
    connect(&tab, &BrowserTab::historyChanged, this, &BrowserBar::refresh);
    connect(&tab, &BrowserTab::isLoadingChanged, this, &BrowserBar::refresh);
    connect(&tab, &BrowserTab::urlChanged, this, &BrowserBar::refresh);
    connect(&tab, &BrowserTab::progressChanged, this, qOverload<>(&QWidget::update));
    connect(&tab, &BrowserTab::actingToolChanged, this, &BrowserBar::showActing);
    connect(&services.workspace, &Workspace::splitTabChanged, this, &BrowserBar::refresh);
    m_lingering.setSingleShot(true);
    connect(&m_lingering, &QTimer::timeout, this, &BrowserBar::showActing);
    m_tool->hide();
    refresh();
    showActing();
}

IconButton* BrowserBar::addButton(const QString& symbol, const QString& tip, const QString& keys)
{
    auto* button = new IconButton(theme(), Ground::Sheet, symbol, this);
    button->setExtent(Measure::IconButton, Measure::RowIcon);
    button->setTip(tip, keys);
    return button;
}

void BrowserBar::refresh()
{
    m_back->setEnabled(m_tab.canGoBack());
    m_forward->setEnabled(m_tab.canGoForward());
    const bool hasAddress = !m_tab.url().isEmpty();
    m_external->setEnabled(hasAddress);
    m_reload->setEnabled(hasAddress);
    m_reload->setSymbol(m_tab.isLoading() ? QStringLiteral("xmark")
                                          : QStringLiteral("arrow.clockwise"));
    m_reload->setTip(m_tab.isLoading() ? tr("Stop") : tr("Reload"),
                     Shortcuts::keys(Shortcuts::Command::ReloadPage));
    m_closeSplit->setVisible(m_services.workspace.splitTabId() == m_tab.id());
    m_address->update();
    place();
    update();
}

void BrowserBar::showActing()
{
    if (const QString tool = m_tab.actingTool(); !tool.isEmpty()) {
        m_tool->setText(tool);
        m_lingering.start(LingerMilliseconds);
    } else if (!m_lingering.isActive()) {
        m_tool->setText({});
    }
    place();
    update();
}

void BrowserBar::place()
{
    const int side = Measure::IconButton;
    const int top = (height() - side) / 2;
    int left = Padding;
    for (IconButton* button : {m_back, m_forward, m_reload}) {
        button->move(left, top);
        left += side + Gap;
    }
    int right = width() - Padding;
    for (IconButton* button : {m_closeSplit, m_external}) {
        if (button->isHidden())
            continue;
        right -= side;
        button->move(right, top);
        right -= Gap;
    }
    const bool hasTool = !m_tool->text().isEmpty() && width() >= RoomForTool;
    m_tool->setVisible(hasTool);
    if (hasTool) {
        const int wide = std::min(m_tool->sizeHint().width(), LargestTool);
        right -= wide;
        m_tool->setGeometry(right, 0, wide, height());
        right -= AddressGap;
    }
    left += AddressGap - Gap;
    right -= AddressGap - Gap;
    m_address->setGeometry(left, (height() - m_address->height()) / 2, std::max(0, right - left),
                           m_address->height());
}

void BrowserBar::resizeEvent(QResizeEvent* /*event*/)
{
    place();
}

void BrowserBar::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    const double line = Shape::hairline(painter);
    painter.fillRect(QRectF(0, height() - line, width(), line), tokens().separator);
    const bool isActing = !m_tool->text().isEmpty();
    const double share = isActing ? 1.0 : m_tab.isLoading() ? m_tab.progress() : 0.0;
    painter.fillRect(QRectF(0, height() - ProgressHeight, width() * share, ProgressHeight),
                     tokens().accentInk);
}

} // namespace Bralto
