#pragma once

#include "Views/Kit/ThemedWidget.h"
#include "Views/ViewServices.h"

#include <QMenu>
#include <QPointer>

#include <memory>

namespace Bralto {

class BrowserBar;
class LinkPill;
class PageFindBar;
class PageQuestionCard;
class Place;
class StartPage;
class StuckStrip;

/// One browser tab: its bar and its page. Where there is no page it says why and what can be done.
class BrowserScreen final : public ThemedWidget {
    Q_OBJECT

public:
    BrowserScreen(const ViewServices& services, const WorkspaceTab& tab, QWidget* parent);
    ~BrowserScreen() override;

    [[nodiscard]] BrowserBar& bar() const { return *m_bar; }
    [[nodiscard]] PageFindBar& findBar() const { return *m_find; }
    [[nodiscard]] std::unique_ptr<QMenu> makeMenu(const PageContext& context);

protected:
    void applyTheme() override;
    void showEvent(QShowEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    [[nodiscard]] BrowserTab& tab() const { return *m_tab.browser(); }
    void addShortcuts();
    void adoptPage();
    void releasePage();
    void focusAddress();
    void refresh();
    void rebuildPlace();
    void showQuestion();
    void place();
    [[nodiscard]] QWidget* body() const;
    [[nodiscard]] bool hasKeyboard() const;

    ViewServices m_services;
    WorkspaceTab m_tab; ///< Keeps the page while this view shows it.
    BrowserBar* m_bar;
    PageFindBar* m_find;
    StuckStrip* m_stuck;
    StartPage* m_start;
    Place* m_place = nullptr; ///< Why there is no page; null if there is one.
    PageQuestionCard* m_question;
    LinkPill* m_link;
    QPointer<QWidget> m_page; ///< The engine's.
    int m_addressFocusSeen = 0;
};

} // namespace Bralto
