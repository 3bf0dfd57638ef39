// What a program tells the desktop around the terminal: titles, places, notifications, clipboard.

#include "Kovalt/Ascii.h"
#include "Kovalt/Base64.h"
#include "Kovalt/ClipboardRequest.h"
#include "Kovalt/Hex.h"
#include "Kovalt/Notification.h"
#include "Kovalt/Terminal.h"
#include "Kovalt/Utf8.h"

#include <algorithm>

namespace Kovalt {

namespace {

/// A longer title is none. Nobody could read it, and a stack would hold it many times.
constexpr std::size_t LongestTitle = 16 << 10;

/// Text that is not UTF-8 is empty.
std::string_view decoded(std::span<const std::uint8_t> data)
{
    const auto text = Ascii::view(data);
    return Utf8::isValid(text) ? text : std::string_view();
}

} // namespace

void Terminal::registerOscHandler(std::int64_t code, OscHandler handler)
{
    if (handler)
        m_oscHandlers[code] = std::move(handler);
    else
        m_oscHandlers.erase(code);
}

void Terminal::osc(std::int64_t code, std::span<const std::uint8_t> data)
{
    if (const auto found = m_oscHandlers.find(code); found != m_oscHandlers.end()) {
        // It may register another in its place.
        const OscHandler handler = found->second;
        handler(data);
        return;
    }
    performOsc(code, data);
}

void Terminal::performOsc(std::int64_t code, std::span<const std::uint8_t> data)
{
    switch (code) {
    case 0:
    case 2:
        return oscTitle(data, &Terminal::setTitle);
    case 1:
        return oscTitle(data, &Terminal::setIconTitle);
    case 4:
        return oscChangeOrQueryColorIndex(data);
    case 6:
        return oscSetCurrentDocument(data);
    case 7:
        return oscSetCurrentDirectory(data);
    case 8:
        return oscHyperlink(data);
    case 9:
        return oscProgress(data);
    case 10:
    case 11:
    case 12:
        return oscSetColors(int(code) - 10, data);
    case 52:
        return oscClipboard(data);
    case 104:
        return oscResetColor(data);
    case 112:
        return setCursorColor(std::nullopt);
    case 133:
        return oscSemanticPrompt(data);
    case 777:
        return oscNotification(data);
    case 1337:
        return oscContent(data);
    default:
        return unknownOsc(code);
    }
}

void Terminal::unknownOsc(std::int64_t code) const
{
    log({"Kovalt: Unknown OSC code: ", std::to_string(code)});
}

void Terminal::oscTitle(std::span<const std::uint8_t> data, void (Terminal::*set)(std::string))
{
    std::string title(decoded(data));
    if (m_titles.setHex) {
        const auto bytes = Hex::decode(title);
        title = bytes && Utf8::isValid(*bytes) ? *bytes : std::string();
    }
    if (title.size() <= LongestTitle)
        (this->*set)(std::move(title));
}

void Terminal::oscSetCurrentDirectory(std::span<const std::uint8_t> data)
{
    const auto text = Ascii::view(data);
    if (!m_delegate || !m_delegate->isProcessTrusted(*this) || !Utf8::isValid(text))
        return;
    m_hostCurrentDirectory = text;
    m_delegate->hostCurrentDirectoryUpdated(*this);
}

void Terminal::oscSetCurrentDocument(std::span<const std::uint8_t> data)
{
    const auto text = Ascii::view(data);
    if (!m_delegate || !m_delegate->isProcessTrusted(*this) || !Utf8::isValid(text))
        return;
    m_hostCurrentDocument = text;
    m_delegate->hostCurrentDocumentUpdated(*this);
}

void Terminal::oscProgress(std::span<const std::uint8_t> data)
{
    const auto report = parseProgressReport(Ascii::view(data));
    if (!report)
        return unknownOsc(9);
    if (m_delegate)
        m_delegate->progressReport(*this, *report);
}

void Terminal::oscNotification(std::span<const std::uint8_t> data)
{
    const auto notification = parseNotification(decoded(data));
    if (notification && m_delegate)
        m_delegate->notify(*this, notification->title, notification->body);
}

void Terminal::oscClipboard(std::span<const std::uint8_t> data)
{
    const auto request = parseClipboardRequest(Ascii::view(data));
    if (!request || !m_delegate)
        return;
    if (request->copied)
        return m_delegate->clipboardCopy(*this, *request->copied);
    if (!m_delegate->isProcessTrusted(*this))
        return;
    if (const auto content = m_delegate->clipboardRead(*this))
        sendOsc("52;" + Utf8::withoutControls(request->selection) + ';' + Base64::encode(*content));
}

void Terminal::oscContent(std::span<const std::uint8_t> data)
{
    const auto content = decoded(data);
    for (const std::string_view image : {"File=", "MultipartFile=", "FilePart=", "FileEnd"})
        if (content.starts_with(image))
            return;
    if (m_delegate && !content.empty())
        m_delegate->iTermContent(*this, content);
}

} // namespace Kovalt
