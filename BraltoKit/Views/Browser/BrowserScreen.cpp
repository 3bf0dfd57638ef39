#include "Views/Browser/BrowserScreen.h"

#include "Base/Shortcuts.h"
#include "Views/Browser/AddressField.h"
#include "Views/Browser/BrowserBar.h"
#include "Views/Browser/LinkPill.h"
#include "Views/Browser/PageFindBar.h"
#include "Views/Browser/PageMenuView.h"
#include "Views/Browser/PageQuestionCard.h"
#include "Views/Browser/StartPage.h"
#include "Views/Browser/StuckStrip.h"
#include "Views/Kit/Place.h"
#include "Views/Kit/PopupMenu.h"
#include "Views/Kit/TextButton.h"

#include <QKeyEvent>
#include <QShortcut>

namespace Bralto {

BrowserScreen::BrowserScreen(const ViewServices& services, const WorkspaceTab& tab, QWidget* parent)
    : ThemedWidget(services.theme, parent)
    , m_services(services)
    , m_tab(tab)
    , m_bar(new BrowserBar(services, *tab.browser(), this))
    , m_find(new PageFindBar(services.theme, *tab.browser(), this))
    , m_stuck(new StuckStrip(services.theme, this))
    , m_start(new StartPage(services.theme, services.servers, this))
    , m_question(new PageQuestionCard(services.theme, *tab.browser(), this))
    , m_link(new LinkPill(services.theme, this))
{
    BrowserTab& page = this->tab();
    connect(&page, &BrowserTab::pageMade, this, &BrowserScreen::adoptPage);
    connect(&page, &BrowserTab::pageGoing, this, &BrowserScreen::releasePage);
    connect(&page, &BrowserTab::statusChanged, this, &BrowserScreen::refresh);
    connect(&page, &BrowserTab::urlChanged, this, &BrowserScreen::refresh);
    connect(&page, &BrowserTab::fullScreenChanged, this, &BrowserScreen::refresh);
    connect(&page, &BrowserTab::addressFocusRequested, this, &BrowserScreen::focusAddress);
    connect(&page, &BrowserTab::hoveredLinkChanged, m_link,
            [this](const QUrl& link) { m_link->setText(link.toDisplayString()); });
    connect(&page, &BrowserTab::menuRequested, this,
            [this](const PageContext& context, const QPoint& position) {
                PopupMenu::popUp(makeMenu(context), position);
            });
    connect(m_start, &StartPage::addressChosen, &page, &BrowserTab::load);
    connect(m_stuck, &StuckStrip::stopRequested, &page, &BrowserTab::stopPage);
    connect(m_find, &PageFindBar::opened, this, &BrowserScreen::place);
    connect(m_find, &PageFindBar::closed, this, [this] {
        place();
        setFocus(Qt::OtherFocusReason);
    });
    for (const auto signal : {&AddressField::submitted, &AddressField::left})
        connect(&m_bar->address(), signal, this, [this] { setFocus(Qt::OtherFocusReason); });
    connect(m_question, &PageQuestionCard::questionShown, this, &BrowserScreen::showQuestion);
    connect(m_question, &PageQuestionCard::answered, this,
            [this] { setFocus(Qt::OtherFocusReason); });
    m_link->setText(page.hoveredLink().toDisplayString());
    addShortcuts();
    adoptPage();
}

BrowserScreen::~BrowserScreen()
{
    releasePage();
}

void BrowserScreen::addShortcuts()
{
    const auto on = [this](const QString& keys, auto work) {
        auto* shortcut = new QShortcut(QKeySequence(keys), this);
        shortcut->setContext(Qt::WidgetWithChildrenShortcut);
        connect(shortcut, &QShortcut::activated, this, work);
    };
    on(Shortcuts::keys(Shortcuts::Command::Find), [this] {
        if (body() == m_page)
            m_find->open();
    });
    on(QStringLiteral("Alt+Left"), [this] { tab().goBack(); });
    on(QStringLiteral("Alt+Right"), [this] { tab().goForward(); });
    on(QStringLiteral("F5"), [this] { tab().reload(); });
    on(QStringLiteral("F12"), [this] {
        if (PageEngine* page = tab().pageIfMade())
            page->inspect();
    });
}

// --- the page

void BrowserScreen::adoptPage()
{
    if (const PageEngine* engine = tab().pageIfMade()) {
        m_page = engine->widget();
        if (m_page) {
            m_page->setParent(this);
            // What floats over the page stays there.
            m_page->lower();
        }
        applyTheme();
    }
    refresh();
}

void BrowserScreen::releasePage()
{
    if (!m_page)
        return;
    m_page->setParent(nullptr);
    m_page = nullptr;
}

void BrowserScreen::applyTheme()
{
    if (PageEngine* page = tab().pageIfMade())
        page->setDark(tokens().dark);
    update();
}

QWidget* BrowserScreen::body() const
{
    if (tab().url().isEmpty())
        return m_start;
    return m_place ? static_cast<QWidget*>(m_place) : m_page.data();
}

bool BrowserScreen::hasKeyboard() const
{
    const QWidget* focused = window()->focusWidget();
    return focused && (focused == this || isAncestorOf(focused));
}

void BrowserScreen::refresh()
{
    const bool hadKeyboard = hasKeyboard() && !m_bar->isAncestorOf(window()->focusWidget());
    rebuildPlace();
    QWidget* shown = body();
    for (QWidget* each :
         {static_cast<QWidget*>(m_start), static_cast<QWidget*>(m_place), m_page.data()}) {
        if (each)
            each->setVisible(each == shown);
    }
    m_stuck->setVisible(!tab().responds());
    m_bar->setVisible(!tab().isFullScreen());
    setFocusProxy(shown == m_start || !shown ? &m_bar->address() : shown);
    place();
    if (hadKeyboard)
        setFocus(Qt::OtherFocusReason);
}

void BrowserScreen::rebuildPlace()
{
    if (m_place) {
        // Its button may be what was pressed.
        m_place->hide();
        m_place->deleteLater();
        m_place = nullptr;
    }
    const BrowserTab& page = tab();
    if (page.url().isEmpty() || !page.errorMessage())
        return;
    m_place = new Place(theme(), this);
    m_place->setSymbol(QStringLiteral("globe"));
    m_place->setTitle(*page.errorMessage(), TextRole::CardTitle);
    m_place->setText(page.url().toDisplayString());
    auto* again = new TextButton(theme(), TextButton::Kind::Plain,
                                 page.hasEnded() ? tr("Reload") : tr("Try Again"), m_place);
    again->setSymbol(QStringLiteral("arrow.clockwise"));
    connect(again, &TextButton::clicked, &page, [this] { tab().reload(); });
    m_place->addButton(again);
    m_place->setFocusProxy(again);
    if (page.canVisitAnyway()) {
        auto* anyway =
            new TextButton(theme(), TextButton::Kind::Harmful, tr("Visit Anyway"), m_place);
        connect(anyway, &TextButton::clicked, &page, [this] { tab().visitAnyway(); });
        m_place->addButton(anyway);
    }
}

void BrowserScreen::showQuestion()
{
    // Only who is at the page is led to its question; others are not interrupted in their typing.
    QWidget* target = m_question->focusTarget();
    if (target && hasKeyboard())
        target->setFocus(Qt::OtherFocusReason);
}

void BrowserScreen::focusAddress()
{
    if (!isVisible())
        return;
    m_addressFocusSeen = tab().addressFocusRequest();
    m_bar->address().setFocus(Qt::ShortcutFocusReason);
    m_bar->address().selectAll();
}

std::unique_ptr<QMenu> BrowserScreen::makeMenu(const PageContext& context)
{
    return PageMenuView::make(context, tab(), m_services, this);
}

// --- place

void BrowserScreen::place()
{
    int top = 0;
    const auto stack = [&](QWidget* strip) {
        if (strip->isHidden())
            return;
        strip->setGeometry(0, top, width(), strip->height());
        top += strip->height();
    };
    stack(m_bar);
    stack(m_find);
    stack(m_stuck);
    const QRect room(0, top, width(), std::max(0, height() - top));
    for (QWidget* each :
         {static_cast<QWidget*>(m_start), static_cast<QWidget*>(m_place), m_page.data()}) {
        if (each)
            each->setGeometry(room);
    }
    m_question->placeIn(room);
    m_link->placeIn(room);
}

void BrowserScreen::showEvent(QShowEvent* /*event*/)
{
    // A restored tab is loaded when it is first looked at.
    if (!tab().url().isEmpty())
        (void)tab().page();
    if (m_addressFocusSeen != tab().addressFocusRequest())
        QMetaObject::invokeMethod(this, &BrowserScreen::focusAddress, Qt::QueuedConnection);
}

void BrowserScreen::resizeEvent(QResizeEvent* /*event*/)
{
    place();
}

void BrowserScreen::keyPressEvent(QKeyEvent* event)
{
    // What the page had no use for.
    if (event->key() == Qt::Key_Escape && tab().isFullScreen())
        tab().leaveFullScreen();
    else if (event->key() == Qt::Key_Escape && tab().isLoading())
        tab().stopLoading();
    else
        QWidget::keyPressEvent(event);
}

} // namespace Bralto
