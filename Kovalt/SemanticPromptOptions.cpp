#include "Kovalt/SemanticPromptOptions.h"

#include "Kovalt/Ascii.h"

#include <array>
#include <span>
#include <utility>

namespace Kovalt {

namespace {

template <typename Value>
using Entry = std::pair<std::string_view, Value>;
using ClickMode = SemanticPromptClickMode;

constexpr std::array<Entry<SemanticPromptKind>, 4> Kinds = {{
    {"i", SemanticPromptKind::Initial},
    {"r", SemanticPromptKind::Right},
    {"c", SemanticPromptKind::Continuation},
    {"s", SemanticPromptKind::Secondary},
}};
constexpr std::array<Entry<ClickMode>, 4> CursorKeys = {{
    {"line", ClickMode::CursorKeysLine},
    {"m", ClickMode::CursorKeysMultiple},
    {"v", ClickMode::CursorKeysConservativeVertical},
    {"w", ClickMode::CursorKeysSmartVertical},
}};
constexpr std::array<Entry<ClickMode>, 3> ClickEvents = {{
    {"0", ClickMode::None},
    {"1", ClickMode::ClickEventsAbsolute},
    {"2", ClickMode::ClickEventsRelative},
}};
constexpr std::array<Entry<bool>, 2> Switches = {{{"0", false}, {"1", true}}};

/// False if the table doesn't know the value.
template <typename Value, std::size_t Size, typename Result>
bool read(const std::array<Entry<Value>, Size>& table, std::string_view value, Result& result)
{
    for (const auto& [name, meaning] : table) {
        if (name == value) {
            result = meaning;
            return true;
        }
    }
    return false;
}

} // namespace

std::optional<SemanticPromptOptions> parseSemanticPromptOptions(std::string_view fields)
{
    SemanticPromptOptions options;
    std::optional<ClickMode> cursorKeys;
    std::optional<ClickMode> clickEvents;
    while (!fields.empty()) {
        auto value = Ascii::takeField(fields, ';');
        if (value.find('=') == value.npos)
            continue;
        const auto key = Ascii::takeField(value, '=');
        const bool isValid = key == "k"              ? read(Kinds, value, options.kind)
                             : key == "cl"           ? read(CursorKeys, value, cursorKeys)
                             : key == "click_events" ? read(ClickEvents, value, clickEvents)
                             : key == "special_key"
                                 ? read(Switches, value, options.usesSpecialCursorKeys)
                                 : true;
        if (!isValid)
            return std::nullopt;
    }
    const bool wantsEvents = clickEvents && *clickEvents != ClickMode::None;
    options.clickMode = wantsEvents || !cursorKeys ? clickEvents : cursorKeys;
    return options;
}

} // namespace Kovalt
