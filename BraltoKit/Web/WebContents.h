#pragma once

#include "Web/WebQuestions.h"

#include <QPointer>
#include <QWebEnginePage>

namespace Bralto {

/// The toolkit's page. Hands on what it is asked by being called, and outlives its engine until
/// nothing of it is on the stack any more.
class WebContents final : public QWebEnginePage {
    Q_OBJECT

public:
    WebContents(QWebEngineProfile* profile, WebQuestions& questions);

    /// Says no to everything from now on, and goes as soon as it can.
    void retire();

    /// "http://localhost:3000", or the address of a document that has no such origin.
    [[nodiscard]] static QString originText(const QUrl& url);

signals:
    void consoleMessage(int level, const QString& text, int line, const QString& source);
    void retired();

protected:
    void javaScriptAlert(const QUrl& origin, const QString& text) override;
    bool javaScriptConfirm(const QUrl& origin, const QString& text) override;
    bool javaScriptPrompt(const QUrl& origin, const QString& text, const QString& suggestion,
                          QString* result) override;
    void javaScriptConsoleMessage(JavaScriptConsoleMessageLevel level, const QString& text,
                                  int line, const QString& source) override;
    QStringList chooseFiles(FileSelectionMode mode, const QStringList& oldFiles,
                            const QStringList& types) override;

private:
    [[nodiscard]] PageAnswer ask(PageQuestion::Kind kind, const QUrl& origin, const QString& text,
                                 const QString& suggestion = {});
    class Nesting;

    QPointer<WebQuestions> m_questions;
    int m_nesting = 0; ///< Calls of this page that wait in an event loop.
    bool m_isRetired = false;
};

} // namespace Bralto
