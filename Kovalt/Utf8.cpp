#include "Kovalt/Utf8.h"

namespace Kovalt {

namespace {

bool isScalar(char32_t value)
{
    return value <= 0x10FFFF && (value < 0xD800 || value > 0xDFFF);
}

/// Bytes of the sequence that a first byte begins; 0 if it begins none.
std::size_t sequenceLength(unsigned char lead)
{
    if (lead < 0x80)
        return 1;
    if (lead >= 0xC2 && lead <= 0xDF)
        return 2;
    if (lead >= 0xE0 && lead <= 0xEF)
        return 3;
    return lead >= 0xF0 && lead <= 0xF4 ? 4 : 0;
}

} // namespace

void Utf8::append(std::string& text, char32_t scalar)
{
    if (!isScalar(scalar))
        scalar = Replacement;
    const auto put = [&text](char32_t byte) { text.push_back(char(byte)); };
    if (scalar < 0x80) {
        put(scalar);
    } else if (scalar < 0x800) {
        put(0xC0 | scalar >> 6);
        put(0x80 | (scalar & 0x3F));
    } else if (scalar < 0x10000) {
        put(0xE0 | scalar >> 12);
        put(0x80 | (scalar >> 6 & 0x3F));
        put(0x80 | (scalar & 0x3F));
    } else {
        put(0xF0 | scalar >> 18);
        put(0x80 | (scalar >> 12 & 0x3F));
        put(0x80 | (scalar >> 6 & 0x3F));
        put(0x80 | (scalar & 0x3F));
    }
}

std::string Utf8::encode(char32_t scalar)
{
    std::string text;
    append(text, scalar);
    return text;
}

char32_t Utf8::next(std::string_view text, std::size_t& position)
{
    constexpr char32_t LeastOfLength[] = {0, 0, 0x80, 0x800, 0x10000};
    const auto lead = static_cast<unsigned char>(text[position]);
    const std::size_t length = sequenceLength(lead);
    if (length == 1) {
        ++position;
        return lead;
    }
    char32_t scalar = length == 0 ? 0 : lead & (0x7Fu >> length);
    for (std::size_t i = 1; i < length; ++i) {
        const bool more = position + i < text.size();
        const auto byte = more ? static_cast<unsigned char>(text[position + i]) : 0u;
        if ((byte & 0xC0) != 0x80) {
            ++position;
            return Replacement;
        }
        scalar = scalar << 6 | (byte & 0x3F);
    }
    if (length == 0 || scalar < LeastOfLength[length] || !isScalar(scalar)) {
        ++position;
        return Replacement;
    }
    position += length;
    return scalar;
}

bool Utf8::isValid(std::string_view text)
{
    constexpr std::size_t ReplacementLength = 3;
    for (std::size_t position = 0; position < text.size();) {
        const std::size_t start = position;
        if (next(text, position) == Replacement && position - start != ReplacementLength)
            return false;
    }
    return true;
}

std::string Utf8::withoutControls(std::string_view text)
{
    std::string clean;
    clean.reserve(text.size());
    for (std::size_t position = 0; position < text.size();) {
        const char32_t scalar = next(text, position);
        const bool isControl = scalar < 0x20 || (scalar >= 0x7F && scalar < 0xA0);
        if (!isControl)
            append(clean, scalar);
    }
    return clean;
}

std::u32string Utf8::decode(std::string_view text)
{
    std::u32string scalars;
    scalars.reserve(text.size());
    for (std::size_t position = 0; position < text.size();)
        scalars.push_back(next(text, position));
    return scalars;
}

} // namespace Kovalt
