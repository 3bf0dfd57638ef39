#pragma once

#include "Browser/BrowserTab.h"
#include "Views/Kit/Field.h"

namespace Bralto {

/// Where a page's address is read and written. While one only looks, the host stands out from the
/// rest; while one writes, it is a field like any other.
class AddressField final : public Field {
    Q_OBJECT

public:
    AddressField(Theme& theme, BrowserTab& tab, QWidget* parent);

signals:
    void submitted(); ///< Return: the tab was told.
    void left();      ///< Escape: the text is the page's address again.

protected:
    void paintEvent(QPaintEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void paintAddress();

    BrowserTab& m_tab;
    bool m_selectsOnRelease = false;
};

} // namespace Bralto
