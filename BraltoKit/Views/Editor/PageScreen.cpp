#include "Views/Editor/PageScreen.h"

#include "Views/Kit/Place.h"
#include "Views/Kit/TextButton.h"

namespace Bralto {

PageScreen::PageScreen(const ViewServices& services, const WorkspaceTab& tab, QWidget* parent)
    : ThemedWidget(services.theme, parent)
    , m_services(services)
    , m_tab(tab)
    , m_place(new Place(services.theme, this))
{
    m_place->setSymbol(QStringLiteral("globe"));
    auto* button = new TextButton(services.theme, TextButton::Kind::Plain,
                                  tr("Open in Default Browser"), m_place);
    connect(button, &TextButton::clicked, this,
            [this] { m_services.desktop.open(m_tab.browser()->url()); });
    m_place->addButton(button);
    setFocusProxy(button);
    connect(tab.browser(), &BrowserTab::titleChanged, this, &PageScreen::refresh);
    connect(tab.browser(), &BrowserTab::urlChanged, this, &PageScreen::refresh);
    refresh();
}

void PageScreen::refresh()
{
    m_place->setTitle(m_tab.title(), TextRole::CardTitle);
    m_place->setText(m_tab.browser()->url().toDisplayString());
}

void PageScreen::resizeEvent(QResizeEvent* /*event*/)
{
    m_place->setGeometry(rect());
}

} // namespace Bralto
