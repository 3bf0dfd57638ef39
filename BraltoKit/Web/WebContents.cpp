#include "Web/WebContents.h"

#include "Web/WebFileDialog.h"

#include <QCoreApplication>

namespace Bralto {

/// While one lives, the page is not deleted.
class WebContents::Nesting {
public:
    explicit Nesting(WebContents& page)
        : m_page(page)
    {
        ++page.m_nesting;
    }
    ~Nesting()
    {
        // Deleted once the loop is back that this call came from, after the toolkit's own frames.
        if (--m_page.m_nesting == 0 && m_page.m_isRetired)
            m_page.deleteLater();
    }
    Nesting(const Nesting&) = delete;
    Nesting& operator=(const Nesting&) = delete;

private:
    WebContents& m_page;
};

WebContents::WebContents(QWebEngineProfile* profile, WebQuestions& questions)
    : QWebEnginePage(profile)
    , m_questions(&questions)
{
}

void WebContents::retire()
{
    m_isRetired = true;
    m_questions = nullptr;
    emit retired();
    if (m_nesting == 0)
        deleteLater();
}

QString WebContents::originText(const QUrl& url)
{
    if (url.host().isEmpty())
        return url.toString(QUrl::RemoveUserInfo | QUrl::RemoveQuery | QUrl::RemoveFragment);
    return url.toString(QUrl::RemoveUserInfo | QUrl::RemovePath | QUrl::RemoveQuery |
                        QUrl::RemoveFragment);
}

PageAnswer WebContents::ask(PageQuestion::Kind kind, const QUrl& origin, const QString& text,
                            const QString& suggestion)
{
    if (!m_questions)
        return {};
    const Nesting nesting(*this);
    return m_questions->ask({0, kind, originText(origin), text, suggestion});
}

void WebContents::javaScriptAlert(const QUrl& origin, const QString& text)
{
    (void)ask(PageQuestion::Kind::Alert, origin, text);
}

bool WebContents::javaScriptConfirm(const QUrl& origin, const QString& text)
{
    // The toolkit asks with these words whether the page may be left.
    const bool leaves =
        text == QCoreApplication::translate("QWebEnginePage",
                                            "Are you sure you want to leave this page? Changes "
                                            "that you made may not be saved.");
    return ask(leaves ? PageQuestion::Kind::LeavePage : PageQuestion::Kind::Confirm, origin, text)
        .isAccepted;
}

bool WebContents::javaScriptPrompt(const QUrl& origin, const QString& text,
                                   const QString& suggestion, QString* result)
{
    const PageAnswer answer = ask(PageQuestion::Kind::Prompt, origin, text, suggestion);
    if (answer.isAccepted && result)
        *result = answer.text;
    return answer.isAccepted;
}

void WebContents::javaScriptConsoleMessage(JavaScriptConsoleMessageLevel level, const QString& text,
                                           int line, const QString& source)
{
    emit consoleMessage(int(level), text, line, source);
}

QStringList WebContents::chooseFiles(FileSelectionMode mode, const QStringList& /*oldFiles*/,
                                     const QStringList& types)
{
    if (m_isRetired)
        return {};
    const Nesting nesting(*this);
    return WebFileDialog::choose(*this, mode, types);
}

} // namespace Bralto
