// What operating-system commands, reports, windows and titles will do.

#include "Kovalt/Terminal.h"

namespace Kovalt {

void Terminal::dispatchOsc(std::int64_t, std::span<const std::uint8_t>) {}
void Terminal::setupColors() {}
void Terminal::resetAllColors() {}
std::uint16_t Terminal::resolveActiveHyperlink()
{
    return 0;
}
void Terminal::finishSemanticLineAdvance() {}
void Terminal::resetSemanticPromptState(bool) {}
void Terminal::semanticNoteAlternateScreenSwitch() {}
void Terminal::registerOscHandler(std::int64_t, OscHandler) {}
void Terminal::installPalette(const BaseColors&) {}
void Terminal::rebuildAnsiPalette(bool) {}
void Terminal::setForegroundColor(Color) {}
void Terminal::setBackgroundColor(Color) {}
void Terminal::setTitle(std::string) {}
void Terminal::setIconTitle(std::string) {}

void Terminal::cmdSendDeviceAttributes(const CsiSequence&) {}
void Terminal::cmdDeviceStatus(const CsiSequence&) {}
void Terminal::cmdRequestAnsiMode(const CsiSequence&) {}
void Terminal::cmdRequestPrivateMode(const CsiSequence&) {}
void Terminal::cmdTerminalVersion(const CsiSequence&) {}
void Terminal::cmdRectangleChecksum(const CsiSequence&) {}
DcsHandler* Terminal::requestHandler(std::span<const std::uint8_t>, std::uint8_t)
{
    return nullptr;
}

void Terminal::cmdWindowOptions(const CsiSequence&) {}
void Terminal::cmdSetTitleModes(const CsiSequence&, bool) {}

} // namespace Kovalt
