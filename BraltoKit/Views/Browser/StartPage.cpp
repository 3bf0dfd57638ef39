#include "Views/Browser/StartPage.h"

#include "Base/Paths.h"
#include "Views/Kit/Control.h"
#include "Views/Kit/Ink.h"
#include "Views/Kit/Place.h"
#include "Views/Kit/Shape.h"
#include "Views/Kit/TextLine.h"

#include <QPainter>
#include <QPointer>
#include <QVBoxLayout>

#include <cmath>

namespace Bralto {
namespace {

constexpr int RowWidth = 340;
constexpr int RowHeight = 32;
constexpr int Padding = 10;
constexpr int Dot = 7;
constexpr int DotGap = 10;

/// A server: a dot, where it listens, and whose it is.
class ServerRow final : public Control {
public:
    ServerRow(Theme& theme, const LocalServer& server, QWidget* parent)
        : Control(theme, Ground::Sheet, parent)
        , m_address(QStringLiteral("localhost:%1").arg(server.port))
        , m_project(Paths::lastComponent(server.project))
    {
        setFixedSize(RowWidth, RowHeight);
        setAccessibleName(m_address + QStringLiteral(", ") + m_project);
    }

protected:
    void paintEvent(QPaintEvent* /*event*/) override
    {
        QPainter painter(this);
        if (hoverAmount() > 0)
            Shape::fill(
                painter, rect(), Measure::ControlRadius,
                Ink::faded(tokens().hover, double(tokens().hover.alphaF()) * hoverAmount()));
        Shape::disc(painter, QPointF(Padding + Dot / 2.0, height() / 2.0), Dot, tokens().done);
        const double left = Padding + Dot + DotGap;
        const double words = std::ceil(TextLine::width(TextRole::Body, m_address));
        TextLine::draw(painter, QRectF(left, 0, words + 1, height()), TextRole::Body,
                       tokens().label, m_address);
        const double project = left + words + Padding;
        TextLine::draw(painter, QRectF(project, 0, width() - Padding - project, height()),
                       TextRole::Body, tokens().ink3, m_project, Qt::ElideRight, Qt::AlignRight);
    }

private:
    QString m_address;
    QString m_project;
};

} // namespace

StartPage::StartPage(Theme& theme, LocalServers* servers, QWidget* parent)
    : ThemedWidget(theme, parent)
    , m_servers(servers)
    , m_place(new Place(theme, this))
    , m_list(new QWidget(m_place))
{
    auto* rows = new QVBoxLayout(m_list);
    rows->setContentsMargins(0, 0, 0, 0);
    rows->setSpacing(0);
    m_place->setSymbol(QStringLiteral("globe"));
    m_place->setTitle(tr("New Tab"), TextRole::CardTitle);
    m_place->addBelow(m_list);
    m_rescan.setSingleShot(true);
    m_rescan.setInterval(RescanMilliseconds);
    connect(&m_rescan, &QTimer::timeout, this, &StartPage::scan);
    show({});
}

void StartPage::showEvent(QShowEvent* /*event*/)
{
    scan();
}

void StartPage::hideEvent(QHideEvent* /*event*/)
{
    m_rescan.stop();
}

void StartPage::scan()
{
    if (!m_servers || !isVisible())
        return;
    m_servers->scan([page = QPointer(this)](const std::vector<LocalServer>& found) {
        if (!page)
            return;
        if (found != page->m_found)
            page->show(found);
        if (page->isVisible())
            page->m_rescan.start();
    });
}

void StartPage::show(const std::vector<LocalServer>& found)
{
    m_found = found;
    m_place->setText(found.empty() ? tr("Type an address or a search above.")
                                   : tr("Type an address, or open a server that's running:"));
    while (QLayoutItem* item = m_list->layout()->takeAt(0)) {
        // The row that was pressed may still be in its own click.
        item->widget()->hide();
        item->widget()->deleteLater();
        delete item;
    }
    for (const LocalServer& server : found) {
        auto* row = new ServerRow(theme(), server, m_list);
        connect(row, &Control::clicked, this, [this, port = server.port] {
            emit addressChosen(QUrl(QStringLiteral("http://localhost:%1").arg(port)));
        });
        m_list->layout()->addWidget(row);
    }
    m_list->setVisible(!found.empty());
}

void StartPage::resizeEvent(QResizeEvent* /*event*/)
{
    m_place->setGeometry(rect());
}

} // namespace Bralto
