#include "Kovalt/Attribute.h"

namespace Kovalt {

namespace {

void appendColor(std::string& sgr, int introducer, const CellColor& color)
{
    const auto append = [&sgr](int number) {
        sgr += ';';
        sgr += std::to_string(number);
    };
    if (color.kind == CellColor::Kind::Ansi256) {
        append(introducer);
        append(5);
        append(color.red);
    } else if (color.kind == CellColor::Kind::TrueColor) {
        append(introducer);
        append(2);
        append(color.red);
        append(color.green);
        append(color.blue);
    }
}

} // namespace

std::string Attribute::toSgr() const
{
    std::string sgr = "0";
    if (has(CharacterStyle::Bold))
        sgr += ";1";
    if (has(CharacterStyle::Underline))
        sgr += ";4";
    if (has(CharacterStyle::Blink))
        sgr += ";5";
    if (has(CharacterStyle::Inverse))
        sgr += ";7";
    if (has(CharacterStyle::Invisible))
        sgr += ";8";
    appendColor(sgr, 38, fg);
    appendColor(sgr, 48, bg);
    return sgr;
}

} // namespace Kovalt
