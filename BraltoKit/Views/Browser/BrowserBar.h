#pragma once

#include "Views/Kit/ThemedWidget.h"
#include "Views/ViewServices.h"

#include <QTimer>

namespace Bralto {

class AddressField;
class IconButton;
class Label;

/// The bar over a page: the way back and forth, the address, and how far the page has come. While
/// a tool acts on the page the bar says so.
class BrowserBar final : public ThemedWidget {
    Q_OBJECT

public:
    BrowserBar(const ViewServices& services, BrowserTab& tab, QWidget* parent);

    [[nodiscard]] AddressField& address() const { return *m_address; }

protected:
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    IconButton* addButton(const QString& symbol, const QString& tip, const QString& keys = {});
    void refresh();
    void showActing();
    void place();

    ViewServices m_services;
    BrowserTab& m_tab;
    IconButton* m_back;
    IconButton* m_forward;
    IconButton* m_reload;
    AddressField* m_address;
    Label* m_tool;
    IconButton* m_external;
    IconButton* m_closeSplit;
    QTimer m_lingering; ///< A tool may be too quick for the eye.
};

} // namespace Bralto
