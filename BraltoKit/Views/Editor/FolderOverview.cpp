#include "Views/Editor/FolderOverview.h"

#include "Base/Shortcuts.h"
#include "Views/Kit/Place.h"
#include "Views/Kit/SpaceTile.h"
#include "Views/Kit/TextButton.h"

namespace Bralto {
namespace {

constexpr int TileSide = 56;

} // namespace

FolderOverview::FolderOverview(const ViewServices& services, QWidget* parent)
    : ThemedWidget(services.theme, parent)
    , m_services(services)
    , m_place(new Place(services.theme, this))
    , m_tile(new SpaceTile(services.theme, {}, {}, TileSide, m_place))
{
    m_place->setPicture(m_tile);
    m_place->setText(tr("Choose a file from the sidebar, or start a new one."));
    Workspace& workspace = services.workspace;
    auto* newFile = new TextButton(theme(), TextButton::Kind::Primary, tr("New File"), m_place);
    newFile->setKeyCap(Shortcuts::keys(Shortcuts::Command::New));
    connect(newFile, &TextButton::clicked, &workspace,
            [&workspace] { workspace.createFile(std::nullopt); });
    m_place->addButton(newFile);
    auto* terminal = new TextButton(theme(), TextButton::Kind::Plain, tr("Show Terminal"), m_place);
    terminal->setSymbol(QStringLiteral("terminal"));
    terminal->setTip(tr("Show Terminal"), Shortcuts::keys(Shortcuts::Command::ToggleTerminal));
    connect(terminal, &TextButton::clicked, &workspace,
            [&workspace] { workspace.terminal().show(); });
    m_place->addButton(terminal);
    connect(&workspace, &Workspace::rootChanged, this, &FolderOverview::refresh);
    connect(&workspace, &Workspace::spaceChanged, this, &FolderOverview::refresh);
    refresh();
}

void FolderOverview::refresh()
{
    const FileNode* root = m_services.workspace.root();
    if (!root)
        return;
    const SpaceTheme& space = m_services.workspace.space();
    const QString name = space.displayName(root->path());
    m_tile->setSpace(space, name);
    m_place->setTitle(name);
}

void FolderOverview::resizeEvent(QResizeEvent* /*event*/)
{
    m_place->setGeometry(rect());
}

} // namespace Bralto
