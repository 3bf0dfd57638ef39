#include "Views/Browser/PageMenuView.h"

#include "Browser/PageMenu.h"
#include "Views/Kit/PopupMenu.h"

namespace Bralto::PageMenuView {

namespace {

using PageMenu::Entry;

void perform(PageAction action, BrowserTab& tab)
{
    if (PageEngine* page = tab.pageIfMade())
        page->perform(action);
}

void choose(Entry entry, const PageContext& context, BrowserTab& tab, Workspace& workspace,
            Desktop& desktop)
{
    switch (entry) {
    case Entry::OpenLink:
        return tab.load(context.link);
    case Entry::OpenLinkInNewTab:
        return workspace.insertPage(context.link);
    case Entry::CopyLink:
        return desktop.copyText(context.link.toString(QUrl::FullyEncoded));
    case Entry::OpenImageInNewTab:
        return workspace.insertPage(context.image);
    case Entry::CopyImage:
        return perform(PageAction::CopyImage, tab);
    case Entry::CopyImageAddress:
        return desktop.copyText(context.image.toString(QUrl::FullyEncoded));
    case Entry::Undo:
        return perform(PageAction::Undo, tab);
    case Entry::Redo:
        return perform(PageAction::Redo, tab);
    case Entry::Cut:
        return perform(PageAction::Cut, tab);
    case Entry::Copy:
        return perform(PageAction::Copy, tab);
    case Entry::Paste:
        return perform(PageAction::Paste, tab);
    case Entry::PasteAsPlainText:
        return perform(PageAction::PasteAsPlainText, tab);
    case Entry::SelectAll:
        return perform(PageAction::SelectAll, tab);
    case Entry::Back:
        return tab.goBack();
    case Entry::Forward:
        return tab.goForward();
    case Entry::Reload:
        return tab.reload();
    case Entry::OpenInDefaultBrowser:
        return tab.openInDefaultBrowser();
    case Entry::Inspect:
        if (PageEngine* page = tab.pageIfMade())
            page->inspect();
        return;
    }
}

} // namespace

std::unique_ptr<QMenu> make(const PageContext& context, BrowserTab& tab,
                            const ViewServices& services, QWidget* parent)
{
    auto menu = std::make_unique<PopupMenu>(services.theme, parent);
    const auto sections = PageMenu::sections(context, {tab.canGoBack(), tab.canGoForward()});
    for (const auto& section : sections) {
        if (!menu->isEmpty())
            menu->addSeparator();
        for (const PageMenu::Item& item : section) {
            QAction* action = menu->addAction(QString::fromUtf8(item.title));
            action->setEnabled(item.isEnabled);
            QObject::connect(
                action, &QAction::triggered, &tab,
                [entry = item.entry, context, &tab, &workspace = services.workspace,
                 &desktop = services.desktop] { choose(entry, context, tab, workspace, desktop); },
                Qt::QueuedConnection);
        }
    }
    return menu;
}

} // namespace Bralto::PageMenuView
