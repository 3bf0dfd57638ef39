#include "Views/Home/ProjectsHome.h"

#include "Base/Shortcuts.h"
#include "Views/Home/ProjectRow.h"
#include "Views/Kit/Field.h"
#include "Views/Kit/IconButton.h"
#include "Views/Kit/Label.h"
#include "Views/Kit/Place.h"
#include "Views/Kit/PopupMenu.h"
#include "Views/Kit/SlimScrollBar.h"
#include "Views/Kit/TextButton.h"
#include "Views/Window/Sheet.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QScrollArea>
#include <QVBoxLayout>

namespace Bralto {
namespace {

using Shortcuts::Command;

constexpr int RowBeyond = 12;
constexpr int SectionGap = 22;

TextButton* headButton(Theme& theme, TextButton::Kind kind, const QString& text)
{
    auto* button = new TextButton(theme, kind, text);
    button->setExtent(Measure::LargeButton);
    return button;
}

} // namespace

ProjectsHome::ProjectsHome(const ViewServices& services, QWidget* parent)
    : ThemedWidget(services.theme, parent)
    , m_services(services)
    , m_sheet(new Sheet(services.theme, Sheet::On::Frame, this))
    , m_content(new QWidget)
    , m_column(new QWidget(m_content))
    , m_search(new Field(services.theme))
    , m_list(new QWidget)
    , m_listColumn(new QVBoxLayout(m_list))
    , m_heading(new Label(services.theme, TextRole::BodyStrong, &Tokens::label, tr("Recent")))
    , m_count(new Label(services.theme, TextRole::Body, &Tokens::ink3))
    , m_noMatch(new Label(services.theme, TextRole::Body, &Tokens::ink2))
    , m_empty(new Place(services.theme, m_content))
{
    m_sheet->setContent(m_content);
    setFocusPolicy(Qt::StrongFocus);
    auto* column = new QVBoxLayout(m_column);
    column->setContentsMargins(0, Measure::HomeTop, 0, 0);
    column->setSpacing(0);
    column->addWidget(makeHead());
    column->addSpacing(SectionGap);
    auto* section = new QHBoxLayout;
    section->setContentsMargins(RowBeyond, 0, RowBeyond, Measure::Space2);
    section->setSpacing(Measure::Space2);
    section->addWidget(m_heading);
    section->addWidget(m_count);
    section->addStretch(1);
    column->addLayout(section);
    m_noMatch->setContentsMargins(RowBeyond, Measure::Space3, RowBeyond, 0);
    column->addWidget(m_noMatch);

    auto* scroll = new QScrollArea;
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setWidgetResizable(true);
    scroll->setFocusPolicy(Qt::NoFocus);
    scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    scroll->viewport()->setAutoFillBackground(false);
    m_listColumn->setContentsMargins(0, 0, 0, Measure::Space6);
    m_listColumn->setSpacing(0);
    scroll->setWidget(m_list);
    m_list->setAutoFillBackground(false);
    new SlimScrollBar(theme(), Ground::Sheet, *scroll);
    column->addWidget(scroll, 1);

    m_empty->setSymbol(QStringLiteral("folder"));
    m_empty->setTitle(tr("No projects yet"), TextRole::CardTitle);
    m_empty->setText(tr("A project is a folder. Open one that you have, or make a new one."));
    connect(m_search, &QLineEdit::textChanged, this, &ProjectsHome::filter);
    connect(&services.workspace, &Workspace::recentFoldersChanged, this, &ProjectsHome::reload);
    reload();
}

QWidget* ProjectsHome::makeHead()
{
    Workspace& workspace = m_services.workspace;
    auto* head = new QWidget;
    head->setFixedHeight(Measure::HomeHead);
    auto* row = new QHBoxLayout(head);
    row->setContentsMargins(RowBeyond, 0, RowBeyond, 0);
    row->setSpacing(Measure::Space2);
    row->addWidget(new Label(theme(), TextRole::Title, &Tokens::label, tr("Projects")));
    row->addStretch(1);

    m_search->setSymbol(QStringLiteral("magnifyingglass"));
    m_search->setPlaceholderText(tr("Search projects"));
    m_search->setHint(Shortcuts::keys(Command::Find));
    m_search->setAccessibleName(tr("Search projects"));
    m_search->setMaximumWidth(Measure::SearchWidth);
    m_search->setMinimumWidth(Measure::ProjectRow);
    row->addWidget(m_search, 4);
    row->addSpacing(Measure::Space1);

    auto* create = headButton(theme(), TextButton::Kind::Primary, tr("New Project"));
    create->setSymbol(QStringLiteral("plus"));
    create->setTip(tr("New Project"), Shortcuts::keys(Command::New));
    connect(create, &TextButton::clicked, &workspace, &Workspace::newInFocusedArea);
    row->addWidget(create);
    auto* open = headButton(theme(), TextButton::Kind::Plain, tr("Open Folder"));
    open->setTip(tr("Open Folder"), Shortcuts::keys(Command::Open));
    connect(open, &TextButton::clicked, &workspace, &Workspace::presentOpenPanel);
    row->addWidget(open);
    m_more = new IconButton(theme(), Ground::Sheet, QStringLiteral("ellipsis"));
    m_more->setExtent(Measure::LargeButton, Measure::RowIcon);
    m_more->setFilled(true);
    m_more->setTip(tr("More"));
    connect(m_more, &IconButton::clicked, this, [this] {
        const std::unique_ptr<QMenu> menu = makeMenu();
        menu->exec(m_more->mapToGlobal(QPoint(m_more->width() - menu->sizeHint().width(),
                                              m_more->height() + Measure::Space1)));
    });
    row->addWidget(m_more);
    return head;
}

std::unique_ptr<QMenu> ProjectsHome::makeMenu()
{
    auto menu = std::make_unique<PopupMenu>(theme(), this);
    QAction* clear = menu->addAction(tr("Clear Recents"));
    clear->setEnabled(!m_services.workspace.recentFolders().isEmpty());
    connect(clear, &QAction::triggered, &m_services.workspace, &Workspace::clearRecents);
    return menu;
}

void ProjectsHome::reload()
{
    m_entries = RecentProjects::entries(m_services);
    filter();
}

void ProjectsHome::filter()
{
    for (ProjectRow* row : m_rows) {
        // A row may be what was pressed.
        row->hide();
        row->deleteLater();
    }
    m_rows.clear();
    while (QLayoutItem* item = m_listColumn->takeAt(0))
        delete item;

    const std::vector<ProjectEntry> found = RecentProjects::matching(m_entries, m_search->text());
    for (const ProjectEntry& entry : found) {
        auto* row = new ProjectRow(m_services, entry, ProjectRow::Size::Large, m_list);
        m_listColumn->addWidget(row);
        row->show();
        m_rows.push_back(row);
    }
    m_listColumn->addStretch(1);

    m_count->setText(QString::number(found.size()));
    m_heading->setVisible(!m_entries.empty());
    m_count->setVisible(!m_entries.empty());
    m_more->setVisible(!m_entries.empty());
    m_search->setVisible(!m_entries.empty());
    m_noMatch->setText(tr("Nothing matches “%1”").arg(m_search->text().trimmed()));
    m_noMatch->setVisible(!m_entries.empty() && found.empty());
    m_empty->setVisible(m_entries.empty());
    m_empty->raise();
}

void ProjectsHome::place()
{
    const int inset = Measure::FrameInset;
    m_sheet->setSheetGeometry(rect().adjusted(inset, 0, -inset, -inset));
    const QRect content = m_content->rect();
    const int side = std::max(Measure::HomeSide, (content.width() - Measure::HomeColumn) / 2);
    m_column->setGeometry(content.adjusted(side - RowBeyond, 0, -(side - RowBeyond), 0));
    m_empty->setGeometry(content.adjusted(0, Measure::HomeTop + Measure::HomeHead, 0, 0));
}

void ProjectsHome::resizeEvent(QResizeEvent* /*event*/)
{
    place();
}

void ProjectsHome::keyPressEvent(QKeyEvent* event)
{
    const QKeySequence keys(event->keyCombination());
    if (keys == QKeySequence(Shortcuts::keys(Command::Find)) && !m_entries.empty())
        m_search->setFocus(Qt::ShortcutFocusReason);
    else if (event->key() == Qt::Key_Escape && !m_search->text().isEmpty())
        m_search->clear();
    else if (event->key() == Qt::Key_Down && !m_rows.empty())
        m_rows.front()->setFocus(Qt::TabFocusReason);
    else if (event->key() == Qt::Key_Return && m_search->hasFocus() && !m_rows.empty())
        m_rows.front()->click();
    else
        ThemedWidget::keyPressEvent(event);
}

void ProjectsHome::showEvent(QShowEvent* event)
{
    // Times and looks may have changed while the screen was away.
    reload();
    // The keys of this screen reach it from the start.
    if (window()->focusWidget() == nullptr || window()->focusWidget() == window())
        setFocus(Qt::OtherFocusReason);
    ThemedWidget::showEvent(event);
}

} // namespace Bralto
