#pragma once

#include "Browser/ControlMessage.h"

#include <QString>

#include <vector>

namespace Bralto {

/// What a tool answers its agent with.
struct ToolOutput {
    std::vector<ControlMessage::Item> content;
    bool isError = false;

    [[nodiscard]] static ToolOutput text(const QString& text)
    {
        return {{ControlMessage::Text{text}}, false};
    }
    /// `text` is a sentence that says what to do next.
    [[nodiscard]] static ToolOutput error(const QString& text)
    {
        return {{ControlMessage::Text{text}}, true};
    }

    bool operator==(const ToolOutput&) const = default;
};

} // namespace Bralto
