#include "Views/Kit/Tokens.h"

#include "Views/Kit/Ink.h"

#include <algorithm>

namespace Bralto {
namespace {

using Ink::faded;
using Ink::hex;
using Ink::over;

/// The alpha of `ink`, from `start` up in steps of a hundredth, at which it reaches `wanted` on
/// all of the grounds; opaque if none does.
double readableAlpha(const QColor& ink, double start, double wanted,
                     const std::array<QColor, 3>& grounds)
{
    for (int percent = qRound(start * 100); percent < 100; ++percent) {
        const double alpha = percent / 100.0;
        if (std::ranges::all_of(grounds, [&](const QColor& ground) {
                return Ink::contrast(over(faded(ink, alpha), ground), ground) >= wanted;
            }))
            return alpha;
    }
    return 1;
}

/// `ink`, mixed toward `end` in steps of two hundredths until it reaches `wanted` on all grounds. A
/// step must do so before and after it is rounded to what a screen shows.
template <std::size_t Count>
QColor readableInk(const QColor& ink, const QColor& end, double wanted,
                   const std::array<QColor, Count>& grounds)
{
    for (int percent = 0; percent < 100; percent += 2) {
        const double fraction = percent / 100.0;
        const Rgb exact = Ink::blend(Ink::rgb(ink), Ink::rgb(end), fraction);
        const QColor shown = Ink::mixed(ink, end, fraction);
        if (std::ranges::all_of(grounds, [&](const QColor& ground) {
                return Ink::contrast(exact, Ink::rgb(ground)) >= wanted &&
                       Ink::contrast(shown, ground) >= wanted;
            }))
            return shown;
    }
    return end;
}

Tokens::Frame frameTokens(const TokenSource& source)
{
    const bool dark = source.dark;
    const QColor black(Qt::black);
    const QColor white(Qt::white);
    const QColor end = dark ? white : black;
    Tokens::Frame frame;
    std::ranges::transform(source.frame, frame.stops.begin(), Ink::color);
    frame.grain = std::clamp(source.grain, 0.0, 1.0);
    frame.label = hex(dark ? 0xF5F5F7 : 0x1C1C1E);
    frame.ink2 = faded(frame.label, readableAlpha(frame.label, 0.74, 4.85, frame.stops));
    frame.marks = faded(frame.label, readableAlpha(frame.label, 0.60, 3.2, frame.stops));

    const bool whiteSelection = std::ranges::all_of(frame.stops, [&](const QColor& stop) {
        return Ink::contrast(frame.label, over(faded(white, 0.13), stop)) >= 4.5;
    });
    if (dark) {
        frame.selected = whiteSelection ? faded(white, 0.13) : faded(black, 0.24);
        frame.hover = whiteSelection ? faded(white, 0.07) : faded(black, 0.12);
    } else {
        frame.selected = faded(white, 0.46);
        frame.hover = faded(black, 0.05);
    }
    frame.pressed = dark ? faded(white, 0.13) : faded(white, 0.46);
    frame.well = dark ? faded(black, 0.24) : faded(white, 0.34);
    frame.separator = dark ? faded(white, 0.10) : faded(black, 0.09);
    frame.barTrack = dark ? faded(white, 0.16) : faded(black, 0.13);
    frame.barValue = faded(frame.label, 0.88);

    // In the dark the lighter of the two hovers, which leaves the text less room.
    const QColor lightest = dark ? faded(white, 0.07) : frame.hover;
    std::array<QColor, 3> hovered;
    std::ranges::transform(frame.stops, hovered.begin(),
                           [&](const QColor& stop) { return over(lightest, stop); });
    frame.waitingText = readableInk(hex(dark ? 0xF2C46B : 0x7A4E00), end, 4.5, hovered);
    frame.waitingDot = readableInk(hex(dark ? 0xF2C46B : 0xA46A00), end, 3, frame.stops);
    frame.added = readableInk(hex(dark ? 0x8EE0A8 : 0x0E5C30), end, 3, frame.stops);
    frame.conflict = readableInk(hex(dark ? 0xFF9C95 : 0x9C1F1A), end, 3, frame.stops);
    return frame;
}

Tokens::Code codeTokens(bool dark)
{
    const auto pick = [dark](quint32 onDark, quint32 onLight) {
        return hex(dark ? onDark : onLight);
    };
    return {
        .keyword = pick(0xC79BE8, 0x8A3FB5),
        .string = pick(0x9CCB8E, 0x2C7439),
        .number = pick(0xE3A873, 0xA0560F),
        .comment = pick(0x858B93, 0x6B7078),
        .type = pick(0x6FC3D4, 0x0B6E80),
        .function = pick(0x82AEF5, 0x2558C4),
        .property = pick(0xB9C6DC, 0x44566E),
        .tag = pick(0xEA8E8A, 0xB8322C),
        .marker = pick(0xE3A873, 0xA0560F),
    };
}

void setSurfaces(Tokens& tokens)
{
    const bool dark = tokens.dark;
    tokens.sheet = hex(dark ? 0x1A1A1A : 0xFAFAFA);
    tokens.raised = hex(dark ? 0x202020 : 0xFFFFFF);
    tokens.field = hex(dark ? 0x1F1F1F : 0xFFFFFF);
    tokens.floating = hex(dark ? 0x242425 : 0xFFFFFF);
    tokens.terminal = hex(dark ? 0x1A1A1A : 0xF7F7F7);
    tokens.label = hex(dark ? 0xECECEE : 0x1C1C1E);
    tokens.ink2 = faded(tokens.label, dark ? 0.66 : 0.70);
    tokens.ink3 = faded(tokens.label, dark ? 0.54 : 0.63);
    tokens.ink4 = faded(tokens.label, dark ? 0.30 : 0.34);
    tokens.separator = faded(tokens.label, 0.10);
    tokens.separatorFaint = faded(tokens.label, 0.06);
    const QColor line = dark ? QColor(Qt::white) : QColor(Qt::black);
    tokens.hover = faded(line, dark ? 0.05 : 0.04);
    tokens.pressed = faded(line, dark ? 0.09 : 0.07);
    tokens.sheetEdge = faded(Qt::black, dark ? 0.32 : 0.07);
    tokens.floatEdge = faded(line, dark ? 0.11 : 0.10);
    tokens.shadow = faded(Qt::black, dark ? 0.34 : 0.18);
    tokens.codeBackground = faded(line, dark ? 0.06 : 0.045);
    tokens.segment = hex(dark ? 0x3A3A3C : 0xFFFFFF);
}

void setAccent(Tokens& tokens, const Rgb& accent)
{
    const bool dark = tokens.dark;
    tokens.accent = Ink::color(accent);
    tokens.accentInk = readableInk(tokens.accent, dark ? QColor(Qt::white) : QColor(Qt::black), 4.5,
                                   std::array<QColor, 1>{hex(dark ? 0x242424 : 0xF5F5F5)});
    tokens.onAccent = Ink::color(markInk(accent));
    tokens.selection = faded(tokens.accent, dark ? 0.22 : 0.16);
    tokens.tint = faded(tokens.accent, dark ? 0.20 : 0.11);
}

void setStatus(Tokens& tokens)
{
    const bool dark = tokens.dark;
    const QColor amber = hex(dark ? 0xE8B657 : 0xB07800);
    tokens.done = hex(dark ? 0x5FC27E : 0x1A7A43);
    tokens.waiting = hex(dark ? 0xE8B657 : 0x8F6000);
    tokens.failed = hex(dark ? 0xF2756F : 0xC3342E);
    tokens.waitingGround = faded(amber, dark ? 0.13 : 0.11);
    tokens.waitingEdge = faded(amber, dark ? 0.38 : 0.34);
    tokens.addedLine = faded(tokens.done, dark ? 0.13 : 0.10);
    tokens.removedLine = faded(tokens.failed, dark ? 0.13 : 0.09);
    tokens.pillDot = hex(dark ? 0xF2C46B : 0xC98700);
    tokens.pillHalo = faded(tokens.pillDot, dark ? 0.24 : 0.22);
    tokens.pillGround = dark ? faded(Qt::black, 0.30) : faded(Qt::white, 0.78);
    tokens.pillText = hex(dark ? 0xFFE3A6 : 0x5C3B00);
    tokens.searchHit = faded(hex(dark ? 0xE8B657 : 0xE0A014), 0.26);
    tokens.searchHitRing = faded(amber, dark ? 0.34 : 0.30);
    tokens.currentHit = hex(0xE8B657);
    tokens.onCurrentHit = hex(0x1D1D1D);
}

} // namespace

std::array<QColor, 8> ansiColors(bool dark)
{
    if (dark)
        return {hex(0x55585E), hex(0xF2756F), hex(0x7FCB95), hex(0xE8B657),
                hex(0x82AEF5), hex(0xC79BE8), hex(0x6FC3D4), hex(0xECECEE)};
    return {hex(0x1C1C1E), hex(0xC3342E), hex(0x1A7A43), hex(0x8F6000),
            hex(0x2558C4), hex(0x8A3FB5), hex(0x0B6E80), hex(0x6E6E6F)};
}

TokenSource TokenSource::from(const SpaceTheme& theme, bool dark)
{
    return {.dark = dark,
            .accent = theme.accent(),
            .frame = {theme.frameColor(dark, dark ? 0.05 : 0.02), theme.frameColor(dark, 0),
                      theme.frameColor(dark, dark ? -0.03 : -0.04)},
            .grain = theme.grain};
}

Tokens::Tokens(const TokenSource& source)
    : dark(source.dark)
    , frame(frameTokens(source))
    , code(codeTokens(source.dark))
    , ansi(ansiColors(source.dark))
{
    setSurfaces(*this);
    setAccent(*this, source.accent);
    setStatus(*this);
}

TypeStyle typeStyle(TextRole role)
{
    using Face = TypeStyle::Face;
    switch (role) {
    case TextRole::Title:
        return {Face::Interface, 28, 34, 600, -0.022};
    case TextRole::Heading:
        return {Face::Interface, 20, 28, 600, -0.015};
    case TextRole::Prose:
        return {Face::Interface, 15, 25, 400, 0};
    case TextRole::ProseHeading1:
        return {Face::Interface, 22, 30, 600, 0};
    case TextRole::ProseHeading2:
        return {Face::Interface, 18, 26, 600, 0};
    case TextRole::ProseHeading3:
        return {Face::Interface, 15, 25, 600, 0};
    case TextRole::Chat:
        return {Face::Interface, 14, 22, 400, 0};
    case TextRole::ChatStrong:
        return {Face::Interface, 14, 22, 600, 0};
    case TextRole::ChatUser:
        return {Face::Interface, 14, 21, 400, 0};
    case TextRole::ChatHeading:
        return {Face::Interface, 16, 24, 600, 0};
    case TextRole::Body:
        return {Face::Interface, 13, 20, 400, 0};
    case TextRole::BodyMedium:
        return {Face::Interface, 13, 20, 500, 0};
    case TextRole::BodyStrong:
        return {Face::Interface, 13, 20, 600, 0};
    case TextRole::CardTitle:
        return {Face::Interface, 14, 20, 600, 0};
    case TextRole::Tab:
        return {Face::Interface, 12.5, 16, 400, 0};
    case TextRole::Secondary:
        return {Face::Interface, 12, 16, 400, 0};
    case TextRole::SecondaryMedium:
        return {Face::Interface, 12, 16, 500, 0};
    case TextRole::SecondaryStrong:
        return {Face::Interface, 12, 16, 600, 0};
    case TextRole::Caption:
        return {Face::Interface, 11, 16, 400, 0};
    case TextRole::CaptionMedium:
        return {Face::Interface, 11, 16, 500, 0};
    case TextRole::CaptionStrong:
        return {Face::Interface, 11, 16, 600, 0};
    case TextRole::Code:
        return {Face::Code, 12.5, 20, 400, 0};
    case TextRole::GutterNumber:
        return {Face::Code, 11.5, 20, 400, 0};
    case TextRole::Terminal:
        return {Face::Code, 12, 18, 400, 0};
    case TextRole::CodeDifference:
        return {Face::Code, 12, 19, 400, 0};
    case TextRole::CodeCommand:
        return {Face::Code, 12, 18, 400, 0};
    }
    return {};
}

} // namespace Bralto
