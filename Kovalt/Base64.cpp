#include "Kovalt/Base64.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace Kovalt {

namespace {

constexpr std::string_view Alphabet =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr std::uint8_t NoDigit = 0xFF;

constexpr std::array<std::uint8_t, 256> DigitOf = [] {
    std::array<std::uint8_t, 256> table{};
    table.fill(NoDigit);
    for (std::size_t i = 0; i < Alphabet.size(); ++i)
        table[static_cast<unsigned char>(Alphabet[i])] = std::uint8_t(i);
    return table;
}();

} // namespace

std::string Base64::encode(std::span<const std::uint8_t> data)
{
    std::string text;
    text.reserve((data.size() + 2) / 3 * 4);
    for (std::size_t at = 0; at < data.size(); at += 3) {
        const std::size_t count = std::min<std::size_t>(3, data.size() - at);
        std::uint32_t group = 0;
        for (std::size_t i = 0; i < 3; ++i)
            group = group << 8 | (i < count ? data[at + i] : 0U);
        for (std::size_t i = 0; i < 4; ++i)
            text += i <= count ? Alphabet[group >> (18 - 6 * i) & 0x3F] : '=';
    }
    return text;
}

std::optional<std::vector<std::uint8_t>> Base64::decode(std::string_view text)
{
    if (text.size() % 4 != 0)
        return std::nullopt;
    std::size_t padding = 0;
    while (padding < 2 && text.ends_with('=')) {
        text.remove_suffix(1);
        ++padding;
    }
    std::vector<std::uint8_t> data;
    data.reserve(text.size() / 4 * 3 + 2);
    std::uint32_t bits = 0;
    int count = 0;
    for (const char c : text) {
        const std::uint8_t digit = DigitOf[static_cast<unsigned char>(c)];
        if (digit == NoDigit)
            return std::nullopt;
        bits = bits << 6 | digit;
        count += 6;
        if (count >= 8) {
            count -= 8;
            data.push_back(std::uint8_t(bits >> count));
        }
    }
    return data;
}

} // namespace Kovalt
