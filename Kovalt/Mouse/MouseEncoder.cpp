#include "Kovalt/Mouse/MouseEncoder.h"

#include <algorithm>
#include <utility>

namespace Kovalt {

namespace {

/// The bits that tell the button, motion among them; the value 3 in them is a release.
constexpr int ButtonBits = 35;
constexpr int ReleaseButton = 3;

int baseOf(int button)
{
    switch (button) {
    case 1:
    case 2:
        return button;
    case 4:
    case 5:
        return button + 60;
    default:
        return 0;
    }
}

std::string encodeBytes(std::string bytes, const MouseEvent& event)
{
    bytes += 'M';
    for (const int value : {event.buttonFlags + 32, event.x + 33, event.y + 33})
        bytes += static_cast<char>(std::clamp(value, 0, 255));
    return bytes;
}

std::string encodeUtf(std::string bytes, const MouseEvent& event)
{
    bytes += 'M';
    for (const int value : {event.buttonFlags + 32, event.x + 33, event.y + 33})
        MouseEncoder::encodeMouseUtf(bytes, value);
    return bytes;
}

std::string encodeSgr(std::string bytes, int flags, int x, int y)
{
    const auto isRelease = (flags & ButtonBits) == ReleaseButton;
    if (isRelease)
        flags &= ~ButtonBits;
    bytes += "<" + std::to_string(flags) + ";" + std::to_string(x) + ";" + std::to_string(y);
    return bytes + (isRelease ? 'm' : 'M');
}

} // namespace

int MouseEncoder::encodeButton(MouseMode mode, int button, bool release, MouseModifiers modifiers)
{
    int flags = release ? ReleaseButton : baseOf(button);
    if (sendsModifiers(mode)) {
        flags += modifiers.shift ? 4 : 0;
        flags += modifiers.meta ? 8 : 0;
        flags += modifiers.control ? 16 : 0;
    }
    return flags;
}

std::string MouseEncoder::encodeEvent(MouseProtocolEncoding encoding, ControlForm form,
                                      const MouseEvent& event)
{
    std::string csi = form == ControlForm::EightBit ? "\x9b" : "\x1b[";
    switch (encoding) {
    case MouseProtocolEncoding::X10:
        return encodeBytes(std::move(csi), event);
    case MouseProtocolEncoding::Utf8:
        return encodeUtf(std::move(csi), event);
    case MouseProtocolEncoding::Sgr:
        return encodeSgr(std::move(csi), event.buttonFlags, event.x + 1, event.y + 1);
    case MouseProtocolEncoding::SgrPixel:
        return encodeSgr(std::move(csi), event.buttonFlags, event.pixelX, event.pixelY);
    case MouseProtocolEncoding::Urxvt:
        return csi + std::to_string(event.buttonFlags + 32) + ";" + std::to_string(event.x + 1) +
               ";" + std::to_string(event.y + 1) + "M";
    }
    return {};
}

std::string MouseEncoder::encodeMotion(MouseProtocolEncoding encoding, ControlForm form,
                                       MouseEvent event)
{
    event.buttonFlags += MotionFlag;
    return encodeEvent(encoding, form, event);
}

void MouseEncoder::encodeMouseUtf(std::string& bytes, int value)
{
    constexpr int Largest = 2047;
    if (value == Largest) {
        bytes += '\0';
    } else if (value > 126) {
        const auto capped = static_cast<unsigned>(std::min(value, Largest));
        bytes += static_cast<char>(0xC0U | capped >> 6U);
        bytes += static_cast<char>(0x80U | (capped & 0x3FU));
    } else {
        bytes += static_cast<char>(std::max(value, 0));
    }
}

} // namespace Kovalt
