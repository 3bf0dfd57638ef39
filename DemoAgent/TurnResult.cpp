#include "DemoAgent/TurnResult.h"

namespace DemoAgent::TurnResult {

QJsonObject success(const QString& text, int calls)
{
    return {
        {"subtype", "success"},
        {"is_error", false},
        {"result", text},
        {"num_turns", calls},
        {"stop_reason", "end_turn"},
        {"terminal_reason", "completed"},
        {"api_error_status", QJsonValue::Null},
    };
}

QJsonObject aborted(const QString& reason, int calls)
{
    return {
        {"subtype", "error_during_execution"},
        {"is_error", true},
        {"errors", QJsonArray{"[ede_diagnostic] result_type=user last_content_type=n/a "
                              "stop_reason=null"}},
        {"num_turns", calls},
        {"stop_reason", QJsonValue::Null},
        {"terminal_reason", reason},
    };
}

QJsonObject apiError(const QString& text, int status)
{
    return {
        {"subtype", "success"},
        {"is_error", true},
        {"result", text},
        {"num_turns", 1},
        {"stop_reason", "stop_sequence"},
        {"terminal_reason", "api_error"},
        {"api_error_status", status},
    };
}

void send(Conversation& conversation, QJsonObject fields)
{
    fields.insert("type", "result");
    fields.insert("total_cost_usd", conversation.ledger.totalCost());
    fields.insert("usage", conversation.ledger.turn().asJson());
    fields.insert("modelUsage", conversation.ledger.modelUsage());
    fields.insert("queued_turn_count", 0);
    fields.insert("result_index", conversation.results++);
    conversation.lastResultFailed = fields.value("is_error").toBool();
    conversation.out.send(fields);
}

} // namespace DemoAgent::TurnResult
