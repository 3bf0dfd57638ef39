#pragma once

#include "Tests/Kovalt/TerminalHarness.h"

#include <string>
#include <string_view>

namespace Kovalt::Testing {

enum class Introducer { Csi, Dcs, Osc };

/// A report with its introducer, and its end if it is a string, in one of the two forms.
inline std::string report(Introducer introducer, std::string_view body, ControlForm form)
{
    const bool isShort = form == ControlForm::EightBit;
    std::string bytes;
    switch (introducer) {
    case Introducer::Csi:
        return std::string(isShort ? "\x9b" : "\x1b[").append(body);
    case Introducer::Dcs:
        bytes = isShort ? "\x90" : "\x1bP";
        break;
    case Introducer::Osc:
        bytes = isShort ? "\x9d" : "\x1b]";
        break;
    }
    return bytes.append(body).append(isShort ? "\x9c" : "\x1b\\");
}

/// The request must be answered so in the 7-bit and in the 8-bit form.
inline void expectReport(TerminalHarness& harness, std::string_view request, Introducer introducer,
                         std::string_view body)
{
    SCOPED_TRACE(testing::PrintToString(request));
    EXPECT_EQ(harness.replyTo(request), report(introducer, body, ControlForm::SevenBit));
    harness.feed("\x1b G");
    EXPECT_EQ(harness.replyTo(request), report(introducer, body, ControlForm::EightBit));
    harness.feed("\x1b F");
}

inline void expectNoReport(TerminalHarness& harness, std::string_view request)
{
    SCOPED_TRACE(testing::PrintToString(request));
    EXPECT_EQ(harness.replyTo(request), "");
}

/// An operating-system command.
inline std::string osc(std::string_view body)
{
    return "\x1b]" + std::string(body) + "\x1b\\";
}

} // namespace Kovalt::Testing
