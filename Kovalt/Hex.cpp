#include "Kovalt/Hex.h"

namespace Kovalt {

namespace {

constexpr std::string_view Digits = "0123456789ABCDEF";

int valueOf(char digit)
{
    if (digit >= '0' && digit <= '9')
        return digit - '0';
    if (digit >= 'A' && digit <= 'F')
        return digit - 'A' + 10;
    return digit >= 'a' && digit <= 'f' ? digit - 'a' + 10 : -1;
}

} // namespace

std::string Hex::encode(std::string_view bytes)
{
    std::string digits;
    digits.reserve(bytes.size() * 2);
    for (const char c : bytes) {
        const auto byte = static_cast<unsigned char>(c);
        digits += Digits[byte >> 4];
        digits += Digits[byte & 0xF];
    }
    return digits;
}

std::optional<std::string> Hex::decode(std::string_view digits)
{
    if (digits.size() % 2 != 0)
        return std::nullopt;
    std::string bytes;
    bytes.reserve(digits.size() / 2);
    for (std::size_t i = 0; i < digits.size(); i += 2) {
        const int high = valueOf(digits[i]);
        const int low = valueOf(digits[i + 1]);
        if (high < 0 || low < 0)
            return std::nullopt;
        bytes += char(high << 4 | low);
    }
    return bytes;
}

} // namespace Kovalt
