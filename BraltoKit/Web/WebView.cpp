#include "Web/WebView.h"

#include <QChildEvent>
#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QWebEngineContextMenuRequest>

namespace Bralto {

namespace {

PageContext contextFor(const QWebEngineContextMenuRequest& request)
{
    const auto flags = request.editFlags();
    using Request = QWebEngineContextMenuRequest;
    PageContext context;
    context.link = request.linkUrl();
    if (request.mediaType() == Request::MediaTypeImage)
        context.image = request.mediaUrl();
    context.selection = request.selectedText();
    context.isEditable = request.isContentEditable();
    context.canUndo = flags.testFlag(Request::CanUndo);
    context.canRedo = flags.testFlag(Request::CanRedo);
    context.canCut = flags.testFlag(Request::CanCut);
    context.canCopy = flags.testFlag(Request::CanCopy);
    context.canPaste = flags.testFlag(Request::CanPaste);
    return context;
}

} // namespace

WebView::WebView(QWidget* parent)
    : QWebEngineView(parent)
{
}

void WebView::contextMenuEvent(QContextMenuEvent* event)
{
    if (const auto* request = lastContextMenuRequest())
        emit menuRequested(contextFor(*request), event->globalPos());
    event->accept();
}

bool WebView::event(QEvent* event)
{
    // What the page is drawn on is a child that the toolkit makes, and makes anew after a crash.
    if (event->type() == QEvent::ChildAdded)
        static_cast<QChildEvent*>(event)->child()->installEventFilter(this);
    return QWebEngineView::event(event);
}

bool WebView::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::KeyPress || event->type() == QEvent::MouseButtonPress) {
        emit pressed();
        if (event->type() == QEvent::KeyPress &&
            static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape)
            emit escapePressed();
    }
    const bool isHandled = QWebEngineView::eventFilter(watched, event);
    if (event->type() == QEvent::Paint) {
        ++m_frames;
        emit frameDrawn();
    }
    return isHandled;
}

} // namespace Bralto
