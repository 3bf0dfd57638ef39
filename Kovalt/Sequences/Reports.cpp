// What the terminal is, where its cursor stands, what its devices are.

#include "Kovalt/Ascii.h"
#include "Kovalt/BuildInfo.h"
#include "Kovalt/Terminal.h"

#include <algorithm>
#include <cstdio>

namespace Kovalt {

namespace {

struct DeviceReply {
    int request;
    std::string_view body;
};

/// Private status requests whose answer never changes. In their order: printer, user-defined keys,
/// keyboard, locator, kind of locator, macro space, data integrity, sessions.
constexpr DeviceReply DeviceReplies[] = {
    {15, "?10n"},   {25, "?21n"}, {26, "?27;1;0;0n"}, {53, "?53n"}, {55, "?53n"},
    {56, "?57;1n"}, {62, "0*{"},  {75, "?70n"},       {85, "?83n"},
};

constexpr int MemoryChecksumRequest = 63;

} // namespace

void Terminal::cmdSendDeviceAttributes(const CsiSequence& sequence)
{
    const auto collect = Ascii::view(sequence.collect);
    if (sequence.parameters[0] > 0) {
        log({"SendDeviceAttributes got ", describe(sequence.parameters), " and ", collect});
        return;
    }
    if (collect == ">")
        return sendCsi(">65;20;1c");
    if (!collect.empty())
        return;
    sendPrimaryAttributes();
}

void Terminal::sendPrimaryAttributes()
{
    const std::string_view name = m_options.termName;
    if (name.starts_with("xterm"))
        sendCsi(m_options.enableSixelReported ? "?65;4;1;2;6;21;22;17;28c"
                                              : "?65;1;2;6;21;22;17;28c");
    else if (name.starts_with("screen") || name.starts_with("rxvt-unicode"))
        sendCsi("?1;2c");
    else if (name.starts_with("linux"))
        sendCsi("?6c");
}

void Terminal::cmdDeviceStatus(const CsiSequence& sequence)
{
    const auto collect = Ascii::view(sequence.collect);
    const int request = sequence.parameters[0];
    if (!collect.empty() && collect != "?")
        return;
    const bool isPrivate = !collect.empty();
    if (request == 5 && !isPrivate)
        return sendCsi("0n");
    if (request == 6) {
        const int firstRow = m_modes.originMode ? m_buffer->scrollTop : 0;
        const int firstCol = m_modes.originMode ? leftMargin() : 0;
        const int col = m_buffer->standingColumn();
        const auto row = std::to_string(std::max(m_buffer->y - firstRow + 1, 1));
        const auto place = row + ';' + std::to_string(std::max(col - firstCol + 1, 1));
        return sendCsi(isPrivate ? '?' + place + ";1R" : place + 'R');
    }
    if (!isPrivate)
        return;
    if (request == MemoryChecksumRequest) {
        const int id = sequence.parameters.size() > 1 ? sequence.parameters[1] : 0;
        return sendDcs(std::to_string(id) + "!~0000");
    }
    const auto reply = std::find_if(std::begin(DeviceReplies), std::end(DeviceReplies),
                                    [&](const DeviceReply& r) { return r.request == request; });
    if (reply != std::end(DeviceReplies))
        sendCsi(reply->body);
}

void Terminal::cmdTerminalVersion(const CsiSequence& sequence)
{
    if (sequence.parameters[0] != 0)
        return;
    const KovaltBuildInfo info;
    sendDcs(">|" + xtVersionIdentity(info.tag, info.branch, info.commit));
}

void Terminal::cmdRectangleChecksum(const CsiSequence& sequence)
{
    constexpr std::size_t BeforeRectangle = 2;
    const auto parameters = sequence.parameters;
    std::uint32_t sum = 0;
    const auto rectangle = parameters.size() > BeforeRectangle
                               ? getRectangleFromRequest(parameters.subspan(BeforeRectangle))
                               : std::nullopt;
    for (int row = rectangle ? rectangle->top : 0; rectangle && row <= rectangle->bottom; ++row) {
        const BufferLine& line = m_buffer->screenLine(row);
        for (int col = rectangle->left; col <= rectangle->right; ++col) {
            const CharData cell = line[col];
            if (cell.width != 0)
                sum += std::uint32_t(m_graphemes.firstScalar(cell.code));
        }
    }
    char digits[sizeof "0000"];
    std::snprintf(digits, sizeof digits, "%04x", sum & 0xFFFFU);
    sendDcs(std::to_string(parameters[0]) + "!~" + digits);
}

} // namespace Kovalt
