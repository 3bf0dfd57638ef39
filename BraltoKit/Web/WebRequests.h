#pragma once

#include "Browser/PageEngine.h"

#include <QObject>
#include <QUrl>
#include <QWebEnginePage>

#include <map>

class QWebEngineNewWindowRequest;

namespace Bralto {

class WebQuestions;

/// What a page wants of the browser around it: windows, which become loads in its own tab, and
/// permissions, which the user gives or nobody.
class WebRequests final : public QObject {
    Q_OBJECT

public:
    WebRequests(QWebEnginePage& page, WebQuestions& questions, PageDelegate& delegate,
                QObject* parent);

private:
    void openWindow(QWebEngineNewWindowRequest& request);
    void awaitAddress(QWebEngineNewWindowRequest& request);
    void tellSoon(const QUrl& url);
    void askPermission(const QUrl& origin, QWebEnginePage::Feature feature);
    void forgetPermission(const QUrl& origin, QWebEnginePage::Feature feature);
    void refuseTheRest();

    QWebEnginePage& m_page;
    WebQuestions& m_questions;
    PageDelegate& m_delegate;
    std::map<std::pair<QUrl, int>, quint64> m_permissions; ///< Open questions.
};

} // namespace Bralto
