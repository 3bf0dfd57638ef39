// What the program is sent: answers, mouse and focus.

#include "Kovalt/Terminal.h"

#include "Kovalt/Ascii.h"

#include <algorithm>

namespace Kovalt {

void Terminal::sendResponse(std::string_view bytes)
{
    if (m_delegate)
        m_delegate->send(*this, Ascii::bytes(bytes));
}

void Terminal::sendCsi(std::string_view body)
{
    const bool isShort = m_modes.controlForm == ControlForm::EightBit;
    sendResponse(std::string(isShort ? "\x9B" : "\x1B[").append(body));
}

void Terminal::sendDcs(std::string_view body)
{
    const bool isShort = m_modes.controlForm == ControlForm::EightBit;
    std::string bytes(isShort ? "\x90" : "\x1BP");
    sendResponse(bytes.append(body).append(isShort ? "\x9C" : "\x1B\\"));
}

void Terminal::sendOsc(std::string_view body)
{
    const bool isShort = m_modes.controlForm == ControlForm::EightBit;
    std::string bytes(isShort ? "\x9D" : "\x1B]");
    sendResponse(bytes.append(body).append(isShort ? "\x9C" : "\x1B\\"));
}

int Terminal::encodeButton(int button, bool release, MouseModifiers modifiers) const
{
    return MouseEncoder::encodeButton(m_modes.mouseMode, button, release, modifiers);
}

void Terminal::sendEvent(const MouseEvent& event)
{
    sendResponse(MouseEncoder::encodeEvent(m_modes.mouseProtocol, m_modes.controlForm, event));
}

void Terminal::sendMotion(const MouseEvent& event)
{
    sendResponse(MouseEncoder::encodeMotion(m_modes.mouseProtocol, m_modes.controlForm, event));
}

void Terminal::setTerminalFocus(bool hasFocus)
{
    if (m_hasFocus == hasFocus)
        return;
    m_hasFocus = hasFocus;
    if (m_modes.sendFocus)
        sendFocusReport();
}

void Terminal::sendFocusReport()
{
    sendCsi(m_hasFocus ? "I" : "O");
}

void Terminal::registerSelection(TerminalSelection* selection)
{
    m_selections.push_back(selection);
}

void Terminal::unregisterSelection(TerminalSelection* selection)
{
    std::erase(m_selections, selection);
}

void Terminal::garbageCollectPayload()
{
    if (m_payloadCodes.empty())
        return;
    std::set<std::uint16_t> used;
    if (m_activeHyperlink.kind == HyperlinkState::Kind::Resolved)
        used.insert(m_activeHyperlink.code);
    for (const Buffer* const buffer : {&m_normalBuffer, &m_altBuffer}) {
        for (int row = 0; row < buffer->lines().count(); ++row) {
            const BufferLine* const line = buffer->lines().peek(row);
            if (!line)
                continue;
            std::uint16_t previous = 0;
            for (const CharData& cell : line->live()) {
                if (cell.payload != previous && cell.payload != 0)
                    used.insert(cell.payload);
                previous = cell.payload;
            }
        }
    }
    std::vector<std::uint16_t> released;
    for (const std::uint16_t code : m_payloadCodes) {
        if (!used.contains(code))
            released.push_back(code);
    }
    for (const std::uint16_t code : released)
        m_payloadCodes.erase(code);
    TinyAtom::release(released);
}

} // namespace Kovalt
