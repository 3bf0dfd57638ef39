#include "DemoAgent/Ledger.h"

#include "DemoAgent/Models.h"

#include <algorithm>

namespace DemoAgent {

namespace {

// What the real agent's own prompt and tools take up before the first word.
constexpr qint64 BaseTokens = 9000;
constexpr qint64 CharactersPerToken = 4;

qint64 tokens(qint64 characters)
{
    return characters <= 0 ? 0 : 1 + (characters - 1) / CharactersPerToken;
}

} // namespace

Usage& Usage::operator+=(const Usage& other)
{
    input += other.input;
    cacheCreation += other.cacheCreation;
    cacheRead += other.cacheRead;
    output += other.output;
    return *this;
}

double Usage::cost() const
{
    constexpr double PerMillion = 1e-6;
    return PerMillion *
           (5.0 * static_cast<double>(input) + 6.25 * static_cast<double>(cacheCreation) +
            0.5 * static_cast<double>(cacheRead) + 25.0 * static_cast<double>(output));
}

QJsonObject Usage::asJson() const
{
    return {
        {"input_tokens", input},
        {"cache_creation_input_tokens", cacheCreation},
        {"cache_read_input_tokens", cacheRead},
        {"output_tokens", output},
        {"service_tier", "standard"},
    };
}

Ledger::Ledger()
    : m_context(BaseTokens)
{
}

void Ledger::hear(qint64 characters)
{
    m_context += tokens(characters);
}

void Ledger::beginTurn()
{
    m_turn = {};
}

Usage Ledger::beginCall(const QString& model)
{
    m_model = model;
    m_call = {
        .input = 4, .cacheCreation = m_context - m_cached, .cacheRead = m_cached, .output = 1};
    m_cached = m_context;
    return m_call;
}

Usage Ledger::endCall(qint64 spokenCharacters)
{
    m_call.output = std::max<qint64>(1, tokens(spokenCharacters));
    m_context += m_call.output;
    m_turn += m_call;
    m_models[m_model] += m_call;
    return m_call;
}

double Ledger::totalCost() const
{
    double total = 0;
    for (const auto& [model, usage] : m_models)
        total += usage.cost();
    return total;
}

QJsonObject Ledger::modelUsage() const
{
    QJsonObject result;
    for (const auto& [model, usage] : m_models) {
        result.insert(model, QJsonObject{
                                 {"inputTokens", usage.input},
                                 {"outputTokens", usage.output},
                                 {"cacheReadInputTokens", usage.cacheRead},
                                 {"cacheCreationInputTokens", usage.cacheCreation},
                                 {"webSearchRequests", 0},
                                 {"costUSD", usage.cost()},
                                 {"contextWindow", Models::contextWindow(model)},
                                 {"maxOutputTokens", 32000},
                             });
    }
    return result;
}

} // namespace DemoAgent
