#include "Browser/PageMenu.h"

namespace Bralto::PageMenu {

std::vector<std::vector<Item>> sections(const PageContext& context, const History& history)
{
    using enum Entry;
    std::vector<std::vector<Item>> result;
    if (!context.link.isEmpty())
        result.push_back({{OpenLink, "Open Link"},
                          {OpenLinkInNewTab, "Open Link in New Tab"},
                          {CopyLink, "Copy Link"}});
    if (!context.image.isEmpty())
        result.push_back({{OpenImageInNewTab, "Open Image in New Tab"},
                          {CopyImage, "Copy Image"},
                          {CopyImageAddress, "Copy Image Address"}});
    if (context.isEditable) {
        result.push_back({{Undo, "Undo", context.canUndo}, {Redo, "Redo", context.canRedo}});
        result.push_back({{Cut, "Cut", context.canCut},
                          {Copy, "Copy", context.canCopy},
                          {Paste, "Paste", context.canPaste},
                          {PasteAsPlainText, "Paste as Plain Text", context.canPaste},
                          {SelectAll, "Select All"}});
    } else if (!context.selection.isEmpty()) {
        result.push_back({{Copy, "Copy"}});
    }
    if (result.empty()) {
        result.push_back({{Back, "Back", history.canGoBack},
                          {Forward, "Forward", history.canGoForward},
                          {Reload, "Reload"}});
        result.push_back({{OpenInDefaultBrowser, "Open in Default Browser"}});
    }
    result.push_back({{Inspect, "Inspect"}});
    return result;
}

} // namespace Bralto::PageMenu
