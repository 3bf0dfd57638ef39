#pragma once

/// @file
/// Which rows a message has: one for each block, except that neighbouring calls of the same
/// reading tool fold into one.

#include "Chat/ChatMessage.h"

#include <vector>

namespace Bralto {

/// A row of a message: the blocks `first` to `first + count - 1` of its list.
struct ChatRowItem {
    QString id; ///< Stays the same while calls are added behind the first.
    qsizetype first = 0;
    qsizetype count = 1; ///< More than 1 only for a folded group of tool calls.

    [[nodiscard]] bool isGroup() const { return count > 1; }

    bool operator==(const ChatRowItem&) const = default;
};

namespace ChatRowItems {

[[nodiscard]] std::vector<ChatRowItem> items(const QList<ChatBlock>& blocks);

/// What a folded group of `count` calls of the tool `name` is called.
[[nodiscard]] QString groupTitle(const QString& name, qsizetype count);

} // namespace ChatRowItems

} // namespace Bralto
