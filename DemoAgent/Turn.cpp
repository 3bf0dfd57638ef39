#include "DemoAgent/Turn.h"

#include "DemoAgent/InitLine.h"
#include "DemoAgent/TurnResult.h"

#include <QJsonDocument>

#include <algorithm>

namespace DemoAgent {

using namespace std::chrono_literals;

namespace {

constexpr qsizetype TextPiece = 16;
constexpr qsizetype InputPiece = 24;
constexpr auto DeltaPause = 25ms;
constexpr auto FirstTokenPause = 150ms;

} // namespace

ToolUse makeToolUse(const QString& name, const QJsonObject& input, const QString& description)
{
    return {makeId(QLatin1StringView("toolu_")), name, input, description};
}

void Turn::begin(const std::vector<Prompt>& prompts)
{
    m_clock.start();
    m_conversation.ledger.beginTurn();
    for (const Prompt& prompt : prompts) {
        m_conversation.ledger.hear(prompt.text.size());
        m_conversation.store.appendUser(
            Wire::userMessage(prompt.content),
            {{"permissionMode", m_conversation.settings.permissionMode}});
    }
}

void Turn::sendInit()
{
    m_conversation.out.send(initLine(m_conversation));
}

Task<> Turn::say(QString text)
{
    co_await openText();
    for (const QString& piece : pieces(text, TextPiece))
        co_await addText(piece, DeltaPause);
    endText();
}

Task<> Turn::openText()
{
    co_await m_conversation.pace.pause(m_message ? 0ms : FirstTokenPause);
    ensureMessage();
    openBlock(Wire::textBlock({}));
}

Task<> Turn::addText(QString piece, std::chrono::milliseconds pause)
{
    m_message->streamed += piece;
    sendDelta({{"type", "text_delta"}, {"text", piece}}, piece.size());
    co_await m_conversation.pace.pause(pause);
}

void Turn::endText()
{
    if (!m_message || m_message->streaming.isEmpty())
        return;
    m_lastText = m_message->streamed;
    closeBlock(streamedBlock());
}

Task<> Turn::think(QString thinking)
{
    co_await m_conversation.pace.pause(m_message ? 0ms : FirstTokenPause);
    ensureMessage();
    openBlock(Wire::thinkingBlock({}));
    for (const QString& piece : pieces(thinking, TextPiece)) {
        m_message->streamed += piece;
        sendDelta({{"type", "thinking_delta"}, {"thinking", piece}}, piece.size());
        co_await m_conversation.pace.pause(DeltaPause);
    }
    const QString signature = QString::fromLatin1(QByteArray("demo").toBase64());
    sendDelta({{"type", "signature_delta"}, {"signature", signature}}, 0);
    QJsonObject block = streamedBlock();
    block.insert("signature", signature);
    closeBlock(block);
}

Task<> Turn::streamTool(ToolUse use, Permission permission, QJsonObject asked)
{
    co_await m_conversation.pace.pause(m_message ? 0ms : FirstTokenPause);
    ensureMessage();
    const QJsonObject block = Wire::toolBlock(use);
    QJsonObject empty = block;
    empty.insert("input", QJsonObject());
    openBlock(empty);
    sendDelta({{"type", "input_json_delta"}, {"partial_json", ""}}, 0);
    const QString json = QString::fromUtf8(QJsonDocument(use.input).toJson(QJsonDocument::Compact));
    for (const QString& piece : pieces(json, InputPiece)) {
        sendDelta({{"type", "input_json_delta"}, {"partial_json", piece}}, piece.size());
        co_await m_conversation.pace.pause(DeltaPause / 5);
    }
    m_openTools.push_back(use);
    sendAssistant(block);
    if (permission == Permission::Interactive)
        ask(use, asked);
    stream(Wire::blockStop(m_message->id, m_message->blocks++));
    m_message->streaming = {};
}

void Turn::endMessageForTools()
{
    if (m_message)
        closeMessage("tool_use");
}

Task<Decision> Turn::decide(ToolUse use, Permission permission)
{
    Decision decision{.isAllowed = true, .input = use.input, .message = {}};
    if (!PermissionModes::asks(m_conversation.settings.permissionMode, permission))
        co_return decision;
    if (!m_request)
        ask(use, use.input);
    const QJsonObject response = co_await m_request->answer();
    m_request.reset();
    const QJsonObject answer = response.value("response").toObject();
    decision.isAllowed = answer.value("behavior").toString() == u"allow";
    if (answer.value("updatedInput").isObject())
        decision.input = answer.value("updatedInput").toObject();
    decision.message = answer.value("message").toString(response.value("error").toString());
    if (!decision.isAllowed) {
        m_denials.append(QJsonObject{
            {"tool_name", use.name}, {"tool_use_id", use.id}, {"tool_input", use.input}});
    }
    co_return decision;
}

Task<Decision> Turn::call(ToolUse use, Permission permission)
{
    co_await streamTool(use, permission, use.input);
    endMessageForTools();
    co_return co_await decide(use, permission);
}

void Turn::toolResult(const ToolUse& use, const ToolResult& result)
{
    std::erase_if(m_openTools, [&](const ToolUse& open) { return open.id == use.id; });
    m_conversation.ledger.hear(textOf(result.content).size());
    QJsonObject more;
    if (!result.details.isNull())
        more.insert("toolUseResult", result.details);
    m_conversation.store.appendUser(Wire::toolResultMessage(use.id, result), more);
    m_conversation.out.send(Wire::toolResult(use.id, result));
}

void Turn::toolRefused(const ToolUse& use, const Decision& decision)
{
    toolResult(use, {.content = decision.message,
                     .isError = true,
                     .details = QString(u"Error: " + decision.message)});
}

void Turn::answerSynthetically(const QString& text)
{
    m_isSynthetic = true;
    m_lastText = text;
    const QJsonObject message = Wire::assistantMessage(makeUuid(), "<synthetic>",
                                                       Wire::textBlock(text), "stop_sequence", {});
    m_conversation.store.appendAssistant(message);
    m_conversation.out.send(Wire::assistant(message));
}

void Turn::finish()
{
    if (m_message)
        closeMessage("end_turn");
    sendResult(TurnResult::success(m_lastText, m_isSynthetic ? 0 : m_calls));
}

void Turn::abort()
{
    const bool isStreaming = m_message && !m_message->streaming.isEmpty();
    const bool wasInTool = !m_openTools.empty() && !isStreaming;
    m_request.reset();
    if (wasInTool) {
        refuseOpenTools();
        notify("[Request interrupted by user for tool use]");
    } else if (m_message) {
        abortMessage();
        refuseOpenTools();
    } else {
        notify("[Request interrupted by user]");
    }
    sendResult(TurnResult::aborted(wasInTool ? "aborted_tools" : "aborted_streaming", m_calls + 1));
}

void Turn::withdrawRequest()
{
    if (m_request && !m_request->isAnswered())
        m_conversation.out.send(Wire::cancelRequest(m_request->id()));
}

void Turn::ensureMessage()
{
    if (m_message)
        return;
    m_message = std::make_unique<OpenMessage>();
    m_message->id = makeId(QLatin1StringView("msg_"));
    m_message->model = m_conversation.settings.model;
    m_message->usage = m_conversation.ledger.beginCall(m_message->model);
    ++m_calls;
    m_conversation.out.send(Wire::requesting());
    stream(Wire::messageStart(m_message->id, m_message->model, m_message->usage));
}

void Turn::openBlock(const QJsonObject& block)
{
    m_message->streaming = block;
    m_message->streamed.clear();
    stream(Wire::blockStart(m_message->id, m_message->blocks, block));
}

QJsonObject Turn::streamedBlock() const
{
    QJsonObject block = m_message->streaming;
    const QString type = block.value("type").toString();
    if (type != u"text" && type != u"thinking")
        return {};
    block.insert(type, m_message->streamed);
    return block;
}

void Turn::sendDelta(const QJsonObject& delta, qsizetype characters)
{
    m_message->characters += characters;
    stream(Wire::blockDelta(m_message->id, m_message->blocks, delta));
}

void Turn::sendAssistant(const QJsonObject& block)
{
    m_message->finished.push_back(block);
    m_conversation.out.send(Wire::assistant(Wire::assistantMessage(
        m_message->id, m_message->model, block, QJsonValue::Null, m_message->usage)));
}

void Turn::closeBlock(const QJsonObject& block)
{
    sendAssistant(block);
    stream(Wire::blockStop(m_message->id, m_message->blocks++));
    m_message->streaming = {};
}

void Turn::closeMessage(const QJsonValue& stopReason)
{
    const Usage usage = m_conversation.ledger.endCall(m_message->characters);
    for (const QJsonObject& block : m_message->finished) {
        m_conversation.store.appendAssistant(
            Wire::assistantMessage(m_message->id, m_message->model, block, stopReason, usage));
    }
    stream(Wire::messageDelta(m_message->id, stopReason, usage));
    stream(Wire::messageStop(m_message->id));
    m_message.reset();
}

void Turn::ask(const ToolUse& use, const QJsonObject& input)
{
    m_request = std::make_unique<PendingRequest>(m_conversation.requests, makeUuid());
    m_conversation.out.send(Wire::canUseTool(m_request->id(), use, input));
}

void Turn::refuseOpenTools()
{
    if (m_message)
        closeMessage("tool_use");
    const auto open = std::exchange(m_openTools, {});
    for (const ToolUse& use : open) {
        toolResult(use, {.content = "The user stopped this before it was done.",
                         .isError = true,
                         .details = "User rejected tool use"});
    }
}

void Turn::abortMessage()
{
    const QJsonObject streamed = streamedBlock();
    if (!streamed.isEmpty()) {
        QJsonObject line = Wire::assistant(Wire::assistantMessage(
            m_message->id, m_message->model, streamed, QJsonValue::Null, m_message->usage));
        line.insert("aborted", true);
        m_conversation.out.send(line);
    }
    const Usage usage = m_conversation.ledger.endCall(m_message->characters);
    auto blocks = m_message->finished;
    if (!streamed.isEmpty())
        blocks.push_back(streamed);
    for (const QJsonObject& block : blocks) {
        m_conversation.store.appendAssistant(
            Wire::assistantMessage(m_message->id, m_message->model, block, QJsonValue::Null, usage),
            {{"isAbortedMidStream", true}});
    }
    notify("[Request interrupted by user]");
    if (!m_message->streaming.isEmpty())
        stream(Wire::blockStop(m_message->id, m_message->blocks));
    stream(Wire::messageDelta(m_message->id, QJsonValue::Null, usage));
    QJsonObject stop = Wire::messageStop(m_message->id);
    stop.insert("abandoned_blocks", QJsonObject{{"from_block_index", m_message->blocks + 1}});
    stream(stop);
    m_message.reset();
}

void Turn::notify(const QString& text)
{
    const QJsonArray content{Wire::textBlock(text)};
    m_conversation.store.appendUser(Wire::userMessage(content));
    m_conversation.out.send(Wire::user(content));
}

void Turn::sendResult(QJsonObject fields)
{
    if (!m_origin.isEmpty())
        fields.insert("origin", m_origin);
    fields.insert("duration_ms", m_clock.elapsed());
    fields.insert("permission_denials", m_denials);
    TurnResult::send(m_conversation, fields);
}

void Turn::stream(const QJsonObject& line)
{
    if (m_conversation.streams)
        m_conversation.out.send(line);
}

} // namespace DemoAgent
