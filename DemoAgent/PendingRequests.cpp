#include "DemoAgent/PendingRequests.h"

namespace DemoAgent {

namespace {

QJsonObject nobodyAnswers()
{
    return {{"subtype", "error"}, {"error", "The app has closed the connection."}};
}

} // namespace

PendingRequest::PendingRequest(PendingRequests& requests, QString id)
    : m_requests(requests)
    , m_id(std::move(id))
{
    m_requests.m_open.emplace(m_id, this);
    if (m_requests.m_isClosed)
        m_answer.bring(nobodyAnswers());
}

PendingRequest::~PendingRequest()
{
    m_requests.m_open.erase(m_id);
}

void PendingRequests::deliver(const QJsonObject& response)
{
    const auto found = m_open.find(response.value("request_id").toString());
    if (found != m_open.end())
        found->second->answer().bring(response);
}

void PendingRequests::close()
{
    m_isClosed = true;
    for (const auto& [id, request] : m_open)
        request->answer().bring(nobodyAnswers());
}

} // namespace DemoAgent
