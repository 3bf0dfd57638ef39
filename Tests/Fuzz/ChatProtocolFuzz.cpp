// Every line decodes, live and stored, and a request can always be answered with its own input.
// Seeds: Tests/Fixtures/Agent.

#include "Chat/ChatCommands.h"
#include "Chat/ChatNotice.h"
#include "Tests/Support/FuzzedLines.h"

#include <cstdlib>

using namespace Bralto;

namespace {

void require(bool holds)
{
    if (!holds)
        std::abort();
}

void check(const ChatEvent& event)
{
    JsonReader reader;
    if (const auto* permission = std::get_if<ChatEvents::Permission>(&event)) {
        require(reader.object(permission->input).has_value());
        const QByteArray reply =
            ChatProtocol::allow(permission->requestId, permission->input, std::nullopt);
        require(reply.count('\n') == 1 && reader.object(reply).has_value());
    }
    if (const auto* notice = std::get_if<ChatEvents::Notice>(&event)) {
        const auto shown = ChatNotice::shown(notice->text);
        require(shown.text.count(u'\n') < ChatNotice::MostLines && shown.foldedLines >= 0);
    }
    if (const auto* commands = std::get_if<ChatEvents::Commands>(&event))
        require(ChatCommands::matches(QString(), commands->commands, 5).size() == 5);
    if (const auto* assistant = std::get_if<ChatEvents::Assistant>(&event)) {
        for (const ChatBlock& block : assistant->blocks) {
            const auto* call = std::get_if<ChatToolCall>(&block);
            require(!call || !call->summary.contains(u'\n'));
        }
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size)
{
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    forEachEvent(bytes, ChatProtocol::Source::Live, check);
    forEachEvent(bytes, ChatProtocol::Source::Stored, check);
    return 0;
}
