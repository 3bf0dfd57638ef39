#include "Web/WebPlace.h"

#include <QEvent>
#include <QWidget>

#include <chrono>

namespace Bralto {

namespace {

constexpr QSize FirstSize{1280, 800};
/// Long enough for an agent's next step, so that the page need not be woken for each.
constexpr std::chrono::seconds Linger{8};
constexpr std::chrono::milliseconds WakeLimit{1500};

} // namespace

WebPlace::WebPlace()
    : m_container(new QWidget)
    , m_view(new WebView(m_container))
{
    m_container->resize(FirstSize);
    m_container->setFocusProxy(m_view);
    m_view->setGeometry(m_container->rect());
    m_container->installEventFilter(this);
    m_view->installEventFilter(this);
    m_linger.setSingleShot(true);
    m_linger.setInterval(Linger);
    connect(&m_linger, &QTimer::timeout, this, &WebPlace::settle);
}

WebPlace::~WebPlace()
{
    if (m_container) {
        m_container->removeEventFilter(this);
        m_container->hide();
        m_container->setParent(nullptr);
        m_view->setParent(m_container);
        // This may be the end of an event that the view itself is handling.
        m_container->deleteLater();
    }
    delete m_beside;
}

void WebPlace::hold()
{
    ++m_holds;
    settle();
}

void WebPlace::release()
{
    --m_holds;
    if (m_holds == 0)
        m_linger.start();
}

bool WebPlace::isWaking() const
{
    return m_awake.isValid() && !m_awake.hasExpired(WakeLimit.count());
}

bool WebPlace::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == m_container) {
        if (event->type() == QEvent::Resize) {
            if (QWidget* place = m_view->parentWidget(); place != m_container)
                place->resize(m_container->size());
            m_view->resize(m_container->size());
        } else if (event->type() == QEvent::Show || event->type() == QEvent::Hide) {
            settle();
        }
    }
    if (watched == m_view && event->type() == QEvent::Show)
        m_awake.start();
    return QObject::eventFilter(watched, event);
}

void WebPlace::settle()
{
    if (!m_container)
        return;
    const bool isDriven = m_holds > 0 || m_linger.isActive();
    if (m_container->isVisible() || !isDriven) {
        putInto(*m_container);
        if (m_beside)
            m_beside->hide();
        return;
    }
    if (!m_beside) {
        m_beside = new QWidget(nullptr, Qt::Tool | Qt::FramelessWindowHint);
        m_beside->setAttribute(Qt::WA_DontShowOnScreen);
        m_beside->setAttribute(Qt::WA_ShowWithoutActivating);
        m_beside->setAttribute(Qt::WA_QuitOnClose, false);
    }
    m_beside->resize(m_container->size());
    putInto(*m_beside);
    m_beside->show();
}

void WebPlace::putInto(QWidget& place)
{
    if (m_view->parentWidget() == &place)
        return;
    m_view->setParent(&place);
    m_view->setGeometry(QRect(QPoint(), m_container->size()));
    m_view->show();
}

} // namespace Bralto
