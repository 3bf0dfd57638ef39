#pragma once

#include "Web/WebQuestions.h"

#include <QUrl>

#include <map>
#include <tuple>

class QAuthenticator;
class QWebEnginePage;

namespace Bralto {

/// Names and passwords that servers ask for. The server's refusal is the page until the user has
/// answered, and then it is loaded again: the engine would stop all of its pages to wait.
class WebLogins final : public QObject {
    Q_OBJECT

public:
    WebLogins(QWebEnginePage& page, WebQuestions& questions, QObject* parent);

    /// Another page was asked for.
    void withdraw();

signals:
    void reloadRequested();

private:
    using Place = std::tuple<QString, QString, QString>; ///< Scheme, authority, realm.

    void logIn(const Place& place, const QUrl& url, QAuthenticator& authenticator);

    WebQuestions& m_questions;
    std::map<Place, PageAnswer> m_answers; ///< Given, and not tried yet.
    std::map<Place, quint64> m_open;
};

} // namespace Bralto
