#include "Views/Window/WindowEdges.h"

#include "Views/Kit/Tokens.h"

#include <QMouseEvent>
#include <QWidget>
#include <QWindow>

namespace Bralto {
namespace {

Qt::CursorShape cursorFor(Qt::Edges edges)
{
    if (edges == (Qt::LeftEdge | Qt::TopEdge) || edges == (Qt::RightEdge | Qt::BottomEdge))
        return Qt::SizeFDiagCursor;
    if (edges == (Qt::RightEdge | Qt::TopEdge) || edges == (Qt::LeftEdge | Qt::BottomEdge))
        return Qt::SizeBDiagCursor;
    return edges & (Qt::LeftEdge | Qt::RightEdge) ? Qt::SizeHorCursor : Qt::SizeVerCursor;
}

/// One edge or corner: unseen, and on top of everything else.
class Grip final : public QWidget {
public:
    Grip(QWidget& window, Qt::Edges edges)
        : QWidget(&window)
        , m_edges(edges)
    {
        setCursor(cursorFor(edges));
    }

protected:
    void mousePressEvent(QMouseEvent* event) override
    {
        QWindow* handle = window()->windowHandle();
        if (event->button() == Qt::LeftButton && handle)
            handle->startSystemResize(m_edges);
    }

private:
    Qt::Edges m_edges;
};

} // namespace

WindowEdges::WindowEdges(QWidget& window)
    : QObject(&window)
    , m_window(window)
{
    for (const Qt::Edges edges :
         {Qt::Edges(Qt::LeftEdge), Qt::Edges(Qt::RightEdge), Qt::Edges(Qt::TopEdge),
          Qt::Edges(Qt::BottomEdge), Qt::LeftEdge | Qt::TopEdge, Qt::RightEdge | Qt::TopEdge,
          Qt::LeftEdge | Qt::BottomEdge, Qt::RightEdge | Qt::BottomEdge})
        m_grips.append({edges, new Grip(window, edges)});
    window.installEventFilter(this);
    place();
}

void WindowEdges::place()
{
    constexpr int Side = Measure::ResizeEdge;
    const QRect all = m_window.rect();
    const bool fixed = m_window.isMaximized() || m_window.isFullScreen();
    for (const auto& [edges, grip] : std::as_const(m_grips)) {
        QRect area = all;
        if (edges & Qt::LeftEdge)
            area.setWidth(Side);
        if (edges & Qt::RightEdge)
            area.setLeft(all.right() + 1 - Side);
        if (edges & Qt::TopEdge)
            area.setHeight(Side);
        if (edges & Qt::BottomEdge)
            area.setTop(all.bottom() + 1 - Side);
        grip->setGeometry(area);
        grip->setVisible(!fixed);
        grip->raise();
    }
}

bool WindowEdges::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::Resize || event->type() == QEvent::WindowStateChange ||
        event->type() == QEvent::ChildAdded)
        place();
    return QObject::eventFilter(watched, event);
}

} // namespace Bralto
