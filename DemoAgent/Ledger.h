#pragma once

#include <QJsonObject>
#include <QString>

#include <map>

namespace DemoAgent {

/// Tokens of one call, of a turn, or of a whole process.
struct Usage {
    qint64 input = 0;
    qint64 cacheCreation = 0;
    qint64 cacheRead = 0;
    qint64 output = 0;

    Usage& operator+=(const Usage& other);
    /// US dollars.
    [[nodiscard]] double cost() const;
    [[nodiscard]] QJsonObject asJson() const;
};

/// What the conversation would have used and cost. Nothing is random: the same turns give the same
/// numbers, so a test can expect them.
class Ledger {
public:
    Ledger();

    /// Text that the next call will read: a prompt, a tool's result, an earlier conversation.
    void hear(qint64 characters);

    void beginTurn();
    /// What the call reads, with the one output token that a call begins with.
    Usage beginCall(const QString& model);
    /// The call's final numbers.
    Usage endCall(qint64 spokenCharacters);

    [[nodiscard]] const Usage& turn() const { return m_turn; }
    /// US dollars since the process began.
    [[nodiscard]] double totalCost() const;
    /// Per model since the process began, as the result line has it.
    [[nodiscard]] QJsonObject modelUsage() const;
    /// Tokens that the next call would read.
    [[nodiscard]] qint64 contextTokens() const { return m_context; }

private:
    qint64 m_context;
    qint64 m_cached = 0;
    QString m_model;
    Usage m_call;
    Usage m_turn;
    std::map<QString, Usage> m_models;
};

} // namespace DemoAgent
