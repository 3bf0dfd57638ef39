#include "Chat/ChatMessage.h"

namespace Bralto {

const QString& blockId(const ChatBlock& block)
{
    return std::visit([](const auto& content) -> const QString& { return content.id; }, block);
}

} // namespace Bralto
