#pragma once

#include "Browser/PageEngine.h"

#include <vector>

/// The menu of a page as a value.
namespace Bralto::PageMenu {

enum class Entry {
    OpenLink,
    OpenLinkInNewTab,
    CopyLink,
    OpenImageInNewTab,
    CopyImage,
    CopyImageAddress,
    Undo,
    Redo,
    Cut,
    Copy,
    Paste,
    PasteAsPlainText,
    SelectAll,
    Back,
    Forward,
    Reload,
    OpenInDefaultBrowser,
    Inspect,
};

struct Item {
    Entry entry;
    const char* title;
    bool isEnabled = true;

    bool operator==(const Item& other) const
    {
        return entry == other.entry && isEnabled == other.isEnabled;
    }
};

/// What the page can do besides.
struct History {
    bool canGoBack = false;
    bool canGoForward = false;
};

/// Sections with a line between them; none is empty. A link and a picture come before what is
/// typed and what is marked, and the page's own entries stand where none of them is.
[[nodiscard]] std::vector<std::vector<Item>> sections(const PageContext& context,
                                                      const History& history);

} // namespace Bralto::PageMenu
