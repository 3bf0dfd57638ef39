#include "Web/WebLogins.h"

#include "Web/WebContents.h"

#include <QAuthenticator>
#include <QPointer>

namespace Bralto {

WebLogins::WebLogins(QWebEnginePage& page, WebQuestions& questions, QObject* parent)
    : QObject(parent)
    , m_questions(questions)
{
    connect(&page, &QWebEnginePage::authenticationRequired, this,
            [this](const QUrl& url, QAuthenticator* authenticator) {
                logIn({url.scheme(), url.authority(), authenticator->realm()}, url, *authenticator);
            });
    connect(&page, &QWebEnginePage::proxyAuthenticationRequired, this,
            [this](const QUrl&, QAuthenticator* authenticator, const QString& proxy) {
                logIn({QStringLiteral("proxy"), proxy, authenticator->realm()},
                      QUrl(QStringLiteral("http://") + proxy), *authenticator);
            });
}

void WebLogins::logIn(const Place& place, const QUrl& url, QAuthenticator& authenticator)
{
    const QString realm = std::get<2>(place);
    if (const auto found = m_answers.find(place); found != m_answers.end()) {
        authenticator.setUser(found->second.text);
        authenticator.setPassword(found->second.password);
        // The engine keeps what is right; what is wrong is asked for again.
        m_answers.erase(found);
        return;
    }
    // With nothing in it the server is told that nobody answers.
    authenticator = QAuthenticator();
    if (m_open.contains(place))
        return;
    const auto answered = [this, place](const PageAnswer& answer) {
        m_open.erase(place);
        if (!answer.isAccepted)
            return;
        m_answers[place] = answer;
        emit reloadRequested();
    };
    m_open[place] = 0;
    const QPointer<WebLogins> self(this);
    const quint64 id =
        m_questions.ask({0, PageQuestion::Kind::Login, WebContents::originText(url), realm},
                        answered, [this, place] { m_open.erase(place); });
    if (self && m_open.contains(place))
        m_open[place] = id;
}

void WebLogins::withdraw()
{
    while (!m_open.empty()) {
        const quint64 id = m_open.begin()->second;
        m_open.erase(m_open.begin());
        m_questions.withdraw(id);
    }
}

} // namespace Bralto
