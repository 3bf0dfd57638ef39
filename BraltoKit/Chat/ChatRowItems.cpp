#include "Chat/ChatRowItems.h"

namespace Bralto::ChatRowItems {

namespace {

/// The name of the tool if calls of it fold, else empty.
QString foldableName(const ChatBlock& block)
{
    const auto* call = std::get_if<ChatToolCall>(&block);
    if (call == nullptr)
        return {};
    for (const char* name : {"Read", "Grep", "Glob", "WebFetch", "WebSearch"}) {
        if (call->name == QLatin1String(name))
            return call->name;
    }
    return {};
}

} // namespace

std::vector<ChatRowItem> items(const QList<ChatBlock>& blocks)
{
    std::vector<ChatRowItem> items;
    QString pending;
    for (qsizetype i = 0; i < blocks.size(); ++i) {
        const QString name = foldableName(blocks[i]);
        if (!name.isEmpty() && name == pending) {
            ChatRowItem& group = items.back();
            if (++group.count == 2)
                group.id.prepend(QLatin1String("group-"));
        } else {
            items.push_back({blockId(blocks[i]), i, 1});
        }
        pending = name;
    }
    return items;
}

QString groupTitle(const QString& name, qsizetype count)
{
    if (name == QLatin1String("Read"))
        return QStringLiteral("Read %1 files").arg(count);
    if (name == QLatin1String("WebFetch"))
        return QStringLiteral("Fetched %1 pages").arg(count);
    if (name == QLatin1String("WebSearch"))
        return QStringLiteral("Searched the web %1 times").arg(count);
    return QStringLiteral("Ran %1 searches").arg(count);
}

} // namespace Bralto::ChatRowItems
