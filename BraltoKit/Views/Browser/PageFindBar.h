#pragma once

#include "Browser/BrowserTab.h"
#include "Views/Kit/ThemedWidget.h"

namespace Bralto {

class Field;
class Label;

/// Finds text in a page while one writes what to look for. A strip above the page.
class PageFindBar final : public ThemedWidget {
    Q_OBJECT

public:
    static constexpr int Height = 40;

    /// Hidden until `open`.
    PageFindBar(Theme& theme, BrowserTab& tab, QWidget* parent);

    void open(); ///< Shows the bar and takes the keyboard.
    void close();
    void next();
    void previous();

signals:
    void opened();
    /// The keyboard goes back to the page.
    void closed();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void search(PageEngine::FindDirection direction);

    BrowserTab& m_tab;
    Field* m_field;
    Label* m_status;
};

} // namespace Bralto
