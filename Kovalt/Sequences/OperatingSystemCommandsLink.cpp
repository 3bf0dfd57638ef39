// Links that a program puts into its text (OSC 8).

#include "Kovalt/Ascii.h"
#include "Kovalt/Terminal.h"
#include "Kovalt/TinyAtom.h"

namespace Kovalt {

namespace {

/// A longer payload is no link.
constexpr std::size_t LongestPayload = 64 << 10;
/// Payloads whose codes are remembered, and how long they may be.
constexpr std::size_t RememberedPayloads = 1024;
constexpr std::size_t LongestRemembered = 4 << 10;

} // namespace

void Terminal::oscHyperlink(std::span<const std::uint8_t> data)
{
    const auto payload = Ascii::view(data);
    m_activeHyperlink = {};
    // A payload that can't be read ends the link before it: text must not seem to lead elsewhere.
    if (payload == ";" || payload.size() > LongestPayload || !Ascii::isAscii(payload))
        return;
    m_activeHyperlink.kind = HyperlinkState::Kind::Pending;
    m_activeHyperlink.pending = payload;
}

std::uint16_t Terminal::resolveActiveHyperlink()
{
    if (m_activeHyperlink.kind == HyperlinkState::Kind::Pending)
        storePendingHyperlink();
    return m_activeHyperlink.kind == HyperlinkState::Kind::Resolved ? m_activeHyperlink.code : 0;
}

void Terminal::storePendingHyperlink()
{
    const std::string payload = std::move(m_activeHyperlink.pending);
    m_activeHyperlink = {};
    // A program that paints the same link again and again must not use up the codes.
    const auto known = m_payloadCodeOf.find(payload);
    const bool isHeld = known != m_payloadCodeOf.end() && m_payloadCodes.contains(known->second);
    const auto code = isHeld ? std::optional(known->second) : TinyAtom::lookup(payload);
    if (!code) {
        m_activeHyperlink.kind = HyperlinkState::Kind::Unavailable;
        return;
    }
    m_activeHyperlink.kind = HyperlinkState::Kind::Resolved;
    m_activeHyperlink.code = *code;
    if (isHeld)
        return;
    m_payloadCodes.insert(*code);
    if (payload.size() > LongestRemembered)
        return;
    if (m_payloadCodeOf.size() >= RememberedPayloads)
        m_payloadCodeOf.clear();
    m_payloadCodeOf.insert_or_assign(payload, *code);
}

} // namespace Kovalt
