#include "Web/WebAsking.h"

#include "Web/WebContents.h"

#include <QBuffer>
#include <QJsonArray>
#include <QJsonDocument>
#include <QWebEngineUrlRequestJob>
#include <QWebEngineUrlScheme>

namespace Bralto {

namespace {

std::optional<PageQuestion::Kind> kindFor(const QString& name)
{
    if (name == QStringLiteral("alert"))
        return PageQuestion::Kind::Alert;
    if (name == QStringLiteral("confirm"))
        return PageQuestion::Kind::Confirm;
    if (name == QStringLiteral("prompt"))
        return PageQuestion::Kind::Prompt;
    return std::nullopt;
}

void reply(QWebEngineUrlRequestJob& job, const PageAnswer& answer)
{
    auto* body = new QBuffer(&job);
    body->setData(
        QJsonDocument(QJsonArray{answer.isAccepted, answer.text}).toJson(QJsonDocument::Compact));
    body->open(QIODevice::ReadOnly);
    job.reply("application/json", body);
}

} // namespace

void WebAsking::registerScheme()
{
    if (!QWebEngineUrlScheme::schemeByName(Scheme).name().isEmpty())
        return;
    QWebEngineUrlScheme scheme(Scheme);
    scheme.setSyntax(QWebEngineUrlScheme::Syntax::Path);
    scheme.setFlags(QWebEngineUrlScheme::SecureScheme | QWebEngineUrlScheme::CorsEnabled |
                    QWebEngineUrlScheme::ContentSecurityPolicyIgnored);
    QWebEngineUrlScheme::registerScheme(scheme);
}

void WebAsking::add(const QString& key, WebQuestions& questions)
{
    std::erase_if(m_questions, [](const auto& each) { return each.second.isNull(); });
    m_questions[key] = &questions;
}

std::optional<PageQuestion> WebAsking::questionFrom(const QUrl& address)
{
    const QStringList parts = address.query(QUrl::FullyEncoded).split(u'&');
    const auto kind = kindFor(parts.front());
    if (!kind || parts.size() != 3)
        return std::nullopt;
    const auto decoded = [](const QString& part) {
        return QUrl::fromPercentEncoding(part.toLatin1());
    };
    return PageQuestion{0, *kind, {}, decoded(parts[1]), decoded(parts[2])};
}

void WebAsking::requestStarted(QWebEngineUrlRequestJob* job)
{
    const auto found = m_questions.find(job->requestUrl().path());
    auto question = questionFrom(job->requestUrl());
    if (!question || found == m_questions.end() || !found->second) {
        job->fail(QWebEngineUrlRequestJob::RequestDenied);
        return;
    }
    question->origin = WebContents::originText(job->initiator());
    WebQuestions& questions = *found->second;
    const QPointer<QWebEngineUrlRequestJob> open(job);
    const auto end = [open](const PageAnswer& answer) {
        if (open)
            reply(*open, answer);
    };
    const QPointer<WebQuestions> asked(&questions);
    const quint64 id = questions.ask(*question, end, [end] { end({}); });
    // The document, or its process, may go before the answer.
    if (asked && open)
        connect(job, &QObject::destroyed, &questions, [asked, id] {
            if (asked)
                asked->withdraw(id);
        });
}

} // namespace Bralto
