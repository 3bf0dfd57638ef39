#pragma once

#include "DemoAgent/Later.h"

#include <QJsonObject>
#include <QString>

#include <map>

namespace DemoAgent {

class PendingRequests;

/// A request to the app that waits for its answer: `co_await` gives the `response` object of the
/// `control_response`. Ending its life forgets the request.
class PendingRequest {
public:
    PendingRequest(PendingRequests& requests, QString id);
    ~PendingRequest();
    PendingRequest(const PendingRequest&) = delete;
    PendingRequest& operator=(const PendingRequest&) = delete;

    [[nodiscard]] const QString& id() const { return m_id; }
    [[nodiscard]] bool isAnswered() const { return m_answer.hasValue(); }
    [[nodiscard]] Later<QJsonObject>& answer() { return m_answer; }

private:
    PendingRequests& m_requests;
    QString m_id;
    Later<QJsonObject> m_answer;
};

/// The open requests to the app, by their id.
class PendingRequests {
public:
    /// Brings an answer to its request; an unknown id is ignored.
    void deliver(const QJsonObject& response);
    /// Nobody will answer any more: every request, now and later, is answered with an error.
    void close();

private:
    friend class PendingRequest;

    std::map<QString, PendingRequest*> m_open;
    bool m_isClosed = false;
};

} // namespace DemoAgent
