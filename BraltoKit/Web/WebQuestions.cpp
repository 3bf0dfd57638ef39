#include "Web/WebQuestions.h"

#include <QEventLoop>
#include <QPointer>

#include <algorithm>

namespace Bralto {

WebQuestions::WebQuestions(PageDelegate& delegate, QObject* parent)
    : QObject(parent)
    , m_delegate(delegate)
{
}

WebQuestions::~WebQuestions()
{
    withdrawAll();
}

std::vector<WebQuestions::Open>::iterator WebQuestions::find(quint64 question)
{
    return std::find_if(m_open.begin(), m_open.end(),
                        [question](const Open& each) { return each.question.id == question; });
}

PageAnswer WebQuestions::ask(PageQuestion question)
{
    PageAnswer result;
    QEventLoop loop;
    bool isOver = false;
    const QPointer<WebQuestions> self(this);
    question.id = ++m_lastId;
    const quint64 id = question.id;
    const auto answered = [&result, &isOver](const PageAnswer& answer) {
        result = answer;
        isOver = true;
    };
    m_open.push_back({question, answered, {}, &loop});
    emit changed();
    m_delegate.pageAsked(question);
    // The delegate may have answered, or have closed the page, at once.
    if (self && !isOver && find(id) != m_open.end())
        loop.exec();
    // The application ends, which ends every loop.
    if (self && find(id) != m_open.end())
        withdraw(id);
    return result;
}

quint64 WebQuestions::ask(PageQuestion question, std::function<void(const PageAnswer&)> answered,
                          std::function<void()> withdrawn)
{
    question.id = ++m_lastId;
    const quint64 id = question.id;
    m_open.push_back({question, std::move(answered), std::move(withdrawn)});
    emit changed();
    m_delegate.pageAsked(question);
    return id;
}

void WebQuestions::answer(quint64 question, const PageAnswer& answer)
{
    const auto found = find(question);
    if (found == m_open.end())
        return;
    const Open open = std::move(*found);
    m_open.erase(found);
    open.answered(answer);
    if (open.loop)
        open.loop->quit();
    emit changed();
}

void WebQuestions::withdraw(quint64 question)
{
    const auto found = find(question);
    if (found == m_open.end())
        return;
    const Open open = std::move(*found);
    m_open.erase(found);
    if (open.withdrawn)
        open.withdrawn();
    if (open.loop)
        open.loop->quit();
    emit changed();
    m_delegate.pageWithdrew(question);
}

void WebQuestions::withdrawAll()
{
    while (!m_open.empty())
        withdraw(m_open.front().question.id);
}

void WebQuestions::withdrawDocuments()
{
    std::vector<quint64> gone;
    for (const Open& each : m_open)
        if (each.question.kind != PageQuestion::Kind::Login)
            gone.push_back(each.question.id);
    const QPointer<WebQuestions> self(this);
    for (const quint64 question : gone)
        if (self)
            withdraw(question);
}

const PageQuestion* WebQuestions::blocking() const
{
    const auto found = std::find_if(m_open.rbegin(), m_open.rend(),
                                    [](const Open& each) { return each.question.blocksPage(); });
    return found == m_open.rend() ? nullptr : &found->question;
}

} // namespace Bralto
