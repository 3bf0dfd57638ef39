#include "Views/Home/WelcomeView.h"

#include "Base/Shortcuts.h"
#include "Views/Home/ProjectRow.h"
#include "Views/Kit/Icon.h"
#include "Views/Kit/Place.h"
#include "Views/Kit/TextButton.h"
#include "Views/Window/Sheet.h"

#include <QVBoxLayout>

namespace Bralto {
namespace {

constexpr int ListWidth = 344;
constexpr std::size_t LongestList = 6;

} // namespace

WelcomeView::WelcomeView(const ViewServices& services, QWidget* parent)
    : ThemedWidget(services.theme, parent)
    , m_services(services)
    , m_sheet(new Sheet(services.theme, Sheet::On::Frame, this))
    , m_place(new Place(services.theme))
    , m_list(new QWidget)
    , m_listColumn(new QVBoxLayout(m_list))
{
    m_sheet->setContent(m_place);
    m_place->setSymbol(QString::fromLatin1(Icon::Mark));
    m_place->setTitle(tr("Open a folder to start writing."));
    m_place->setText(tr("You can also drop a folder anywhere on this window."));
    auto* open = new TextButton(theme(), TextButton::Kind::Primary, tr("Open Folder"), m_place);
    open->setTip(tr("Open Folder"), Shortcuts::keys(Shortcuts::Command::Open));
    connect(open, &TextButton::clicked, &services.workspace, &Workspace::presentOpenPanel);
    m_place->addButton(open);
    m_list->setFixedWidth(ListWidth);
    m_listColumn->setContentsMargins(0, 0, 0, 0);
    m_listColumn->setSpacing(0);
    m_place->addBelow(m_list);
    connect(&services.workspace, &Workspace::recentFoldersChanged, this, &WelcomeView::reload);
    reload();
}

void WelcomeView::reload()
{
    for (ProjectRow* row : m_rows) {
        m_listColumn->removeWidget(row);
        row->hide();
        row->deleteLater();
    }
    m_rows.clear();
    std::vector<ProjectEntry> entries = RecentProjects::entries(m_services);
    if (entries.size() > LongestList)
        entries.resize(LongestList);
    for (const ProjectEntry& entry : entries) {
        auto* row = new ProjectRow(m_services, entry, ProjectRow::Size::Small, m_list);
        m_listColumn->addWidget(row);
        row->show();
        m_rows.push_back(row);
    }
    m_list->setVisible(!m_rows.empty());
}

void WelcomeView::resizeEvent(QResizeEvent* /*event*/)
{
    const int inset = Measure::FrameInset;
    m_sheet->setSheetGeometry(rect().adjusted(inset, 0, -inset, -inset));
}

} // namespace Bralto
