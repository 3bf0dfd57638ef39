#include "Web/WebInspector.h"

#include <QWebEnginePage>
#include <QWebEngineView>

namespace Bralto {

namespace {

constexpr QSize FirstSize{1000, 700};

} // namespace

WebInspector::WebInspector(QWebEnginePage& inspected)
    : m_inspected(&inspected)
    , m_page(new QWebEnginePage(inspected.profile(), &inspected))
    , m_view(new QWebEngineView(m_page, this))
{
    setAttribute(Qt::WA_DeleteOnClose);
    setAttribute(Qt::WA_QuitOnClose, false);
    setWindowTitle(QStringLiteral("Developer Tools"));
    setCentralWidget(m_view);
    resize(FirstSize);
    connect(m_page, &QWebEnginePage::windowCloseRequested, this, &QWidget::close);
    inspected.setDevToolsPage(m_page);
}

WebInspector::~WebInspector()
{
    if (m_inspected)
        m_inspected->setDevToolsPage(nullptr);
    delete m_view;
    delete m_page;
}

} // namespace Bralto
