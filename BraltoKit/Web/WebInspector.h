#pragma once

#include <QMainWindow>
#include <QPointer>

class QWebEnginePage;
class QWebEngineView;

namespace Bralto {

/// The developer tools of one page in a window of their own. Goes when it is closed, or with the
/// page.
class WebInspector final : public QMainWindow {
    Q_OBJECT

public:
    explicit WebInspector(QWebEnginePage& inspected);
    ~WebInspector() override;

private:
    QPointer<QWebEnginePage> m_inspected;
    QPointer<QWebEnginePage> m_page; ///< A child of the inspected one.
    QWebEngineView* m_view;
};

} // namespace Bralto
