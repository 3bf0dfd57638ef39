#pragma once

#include <QString>

namespace Bralto {

/// The part of the window that has the keyboard.
enum class FocusArea { Sidebar, Content, Terminal, None };

/// Who has the keyboard, as the window tells it.
class FocusReader {
public:
    virtual ~FocusReader() = default;

    [[nodiscard]] virtual FocusArea current() const = 0;
    /// The id of the tab whose view has the keyboard, empty if none has.
    [[nodiscard]] virtual QString focusedTabId() const = 0;
};

} // namespace Bralto
