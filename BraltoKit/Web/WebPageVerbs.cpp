// What the program asks of a page.

#include "Web/WebContents.h"
#include "Web/WebPage.h"

#include <QWebEngineFindTextResult>

#include <csignal>

namespace Bralto {

namespace {

constexpr QColor DarkPaper{0x1e, 0x1e, 0x1e};

QWebEnginePage::WebAction actionFor(PageAction action)
{
    switch (action) {
    case PageAction::Undo:
        return QWebEnginePage::Undo;
    case PageAction::Redo:
        return QWebEnginePage::Redo;
    case PageAction::Cut:
        return QWebEnginePage::Cut;
    case PageAction::Copy:
        return QWebEnginePage::Copy;
    case PageAction::Paste:
        return QWebEnginePage::Paste;
    case PageAction::PasteAsPlainText:
        return QWebEnginePage::PasteAndMatchStyle;
    case PageAction::SelectAll:
        return QWebEnginePage::SelectAll;
    case PageAction::CopyImage:
        return QWebEnginePage::CopyImageToClipboard;
    }
    return QWebEnginePage::NoWebAction;
}

} // namespace

void WebPage::load(const QUrl& url)
{
    const QPointer<WebPage> self(this);
    m_questions.withdrawAll();
    if (self)
        m_navigation.load(url);
}

void WebPage::call(const PageScript& script, std::chrono::milliseconds timeout,
                   std::function<void(PageScriptResult)> done)
{
    if (m_isEnding)
        done(Unexpected{PageScriptError{PageScriptError::Kind::Ended}});
    else if (m_navigation.hasEnded())
        m_calls.refuse({PageScriptError::Kind::Ended}, std::move(done));
    else if (const PageQuestion* blocking = m_questions.blocking())
        m_calls.refuse({PageScriptError::Kind::Asking, {}, blocking->text}, std::move(done));
    else
        m_calls.call(script, timeout, std::move(done));
}

void WebPage::picture(PageExtent extent, std::function<void(PagePictureResult)> done)
{
    if (m_isEnding)
        done(Unexpected{PagePictureError::NothingDrawn});
    else
        m_pictures.take(extent, m_questions.blocking() != nullptr, std::move(done));
}

void WebPage::setZoomFactor(double factor)
{
    m_zoom = factor;
    m_contents.setZoomFactor(factor);
}

void WebPage::setDark(bool dark)
{
    m_isDark = dark;
    layPaper();
}

void WebPage::layPaper()
{
    // Documents reckon with white paper; before the first one nothing should flash.
    m_contents.setBackgroundColor(m_isDark && !m_hasDocument ? DarkPaper : QColor(Qt::white));
}

void WebPage::find(const QString& text, FindDirection direction,
                   std::function<void(int active, int count)> done)
{
    if (m_isEnding) {
        done(0, 0);
        return;
    }
    // The engine forgets a search for the next one.
    if (const auto found = std::exchange(m_found, std::move(done)))
        found(0, 0);
    const auto flags = direction == FindDirection::Backward
                           ? QWebEnginePage::FindFlags(QWebEnginePage::FindBackward)
                           : QWebEnginePage::FindFlags();
    m_contents.findText(text, flags,
                        [self = QPointer(this)](const QWebEngineFindTextResult& result) {
                            if (!self)
                                return;
                            if (const auto found = std::exchange(self->m_found, nullptr))
                                found(result.activeMatch(), result.numberOfMatches());
                        });
}

void WebPage::perform(PageAction action)
{
    m_contents.triggerAction(actionFor(action));
}

void WebPage::leaveFullScreen()
{
    if (m_isFullScreen)
        m_contents.triggerAction(QWebEnginePage::ExitFullScreen);
}

void WebPage::answer(quint64 question, const PageAnswer& answer)
{
    m_questions.answer(question, answer);
}

void WebPage::terminate()
{
    const auto process = m_contents.renderProcessPid();
    if (process > 0)
        ::kill(pid_t(process), SIGKILL);
}

void WebPage::inspect()
{
    if (!m_inspector) {
        m_pictures.giveUpLink();
        m_inspector = new WebInspector(m_contents);
    }
    m_inspector->show();
    m_inspector->raise();
    m_inspector->activateWindow();
}

// --- place

QSize WebPage::size() const
{
    const QWidget* widget = m_place.widget();
    return widget ? widget->size() : QSize();
}

void WebPage::resize(QSize size)
{
    if (QWidget* widget = m_place.widget())
        widget->resize(size);
}

bool WebPage::isPlaced() const
{
    const QWidget* widget = m_place.widget();
    return widget && widget->parentWidget();
}

} // namespace Bralto
