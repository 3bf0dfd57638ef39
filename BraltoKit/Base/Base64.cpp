#include "Base/Base64.h"

#include <array>

#if defined(__x86_64__)
#include <immintrin.h>
#endif

namespace Bralto::Base64 {

namespace {

constexpr std::string_view Alphabet =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
/// Above every 24-bit value, so that one test finds any wrong character of four.
constexpr quint32 Wrong = 1u << 31;

/// What a character adds to the 24 bits of its group of four, by its place in the group.
using Table = std::array<std::array<quint32, 256>, 4>;

constexpr Table makeTable()
{
    Table table{};
    for (auto& place : table)
        place.fill(Wrong);
    for (std::size_t value = 0; value < Alphabet.size(); ++value) {
        for (std::size_t place = 0; place < table.size(); ++place)
            table[place][static_cast<unsigned char>(Alphabet[value])] = quint32(value)
                                                                        << (18 - 6 * place);
    }
    return table;
}

constexpr Table Values = makeTable();

/// Input and output while a text is decoded from front to back.
struct Progress {
    const char* in;
    const char* end;
    char* out;
};

quint32 valueAt(const Progress& progress, std::size_t place)
{
    return Values[place][static_cast<unsigned char>(progress.in[place])];
}

/// Decodes whole groups of four characters. False at the first wrong one.
bool decodeGroups(Progress& progress)
{
    for (; progress.end - progress.in >= 4; progress.in += 4, progress.out += 3) {
        const quint32 bits = valueAt(progress, 0) | valueAt(progress, 1) | valueAt(progress, 2) |
                             valueAt(progress, 3);
        if (bits & Wrong)
            return false;
        progress.out[0] = char(bits >> 16);
        progress.out[1] = char(bits >> 8);
        progress.out[2] = char(bits);
    }
    return true;
}

/// Decodes the group of two or three characters that ends a text. False if it is none.
bool decodeRest(Progress& progress)
{
    const auto count = progress.end - progress.in;
    if (count == 0)
        return true;
    if (count == 1)
        return false;
    quint32 bits = valueAt(progress, 0) | valueAt(progress, 1);
    if (count == 3)
        bits |= valueAt(progress, 2);
    if (bits & Wrong)
        return false;
    *progress.out++ = char(bits >> 16);
    if (count == 3)
        *progress.out++ = char(bits >> 8);
    return true;
}

#if defined(__x86_64__)

// What this file compiles for any processor may not hold these instructions, so they are asked
// for function by function.
#define BRALTO_AVX2 __attribute__((target("avx2")))

/// All bits of the bytes of `text` that lie in the range, none of the others. The comparison is
/// signed, so bytes from 0x80 on lie in no range of ASCII.
BRALTO_AVX2 inline __m256i within(__m256i text, char first, char last)
{
    return _mm256_and_si256(_mm256_cmpgt_epi8(text, _mm256_set1_epi8(char(first - 1))),
                            _mm256_cmpgt_epi8(_mm256_set1_epi8(char(last + 1)), text));
}

/// 32 characters at once, as long as they are all right. Writes up to 8 bytes too many, so it
/// stops before the end of the output.
BRALTO_AVX2 void decodeBlocks(Progress& progress)
{
    struct Range {
        char first;
        char last;
        int value; ///< Of the first character.
    };
    static constexpr std::array<Range, 5> Ranges{
        {{'A', 'Z', 0}, {'a', 'z', 26}, {'0', '9', 52}, {'+', '+', 62}, {'/', '/', 63}}};
    constexpr int Block = 32;
    constexpr int Margin = 16;
    // Each group's three bytes lie in the lower part of 32 bits, the first one on top.
    const __m256i order = _mm256_setr_epi8(2, 1, 0, 6, 5, 4, 10, 9, 8, 14, 13, 12, -1, -1, -1, -1,
                                           2, 1, 0, 6, 5, 4, 10, 9, 8, 14, 13, 12, -1, -1, -1, -1);
    const __m256i together = _mm256_setr_epi32(0, 1, 2, 4, 5, 6, 7, 7);

    for (; progress.end - progress.in >= Block + Margin; progress.in += Block) {
        const __m256i text = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(progress.in));
        __m256i known = _mm256_setzero_si256();
        __m256i offset = _mm256_setzero_si256();
        for (const Range& range : Ranges) {
            const __m256i mask = within(text, range.first, range.last);
            const __m256i step = _mm256_set1_epi8(char(range.value - range.first));
            known = _mm256_or_si256(known, mask);
            offset = _mm256_or_si256(offset, _mm256_and_si256(mask, step));
        }
        if (_mm256_movemask_epi8(known) != -1)
            return;
        const __m256i values = _mm256_add_epi8(text, offset);
        // 6 + 6 bits become 12, 12 + 12 become 24.
        const __m256i pairs = _mm256_maddubs_epi16(values, _mm256_set1_epi16(0x0140));
        const __m256i groups = _mm256_madd_epi16(pairs, _mm256_set1_epi32(0x00011000));
        const __m256i bytes =
            _mm256_permutevar8x32_epi32(_mm256_shuffle_epi8(groups, order), together);
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(progress.out), bytes);
        progress.out += Block / 4 * 3;
    }
}

#undef BRALTO_AVX2

bool hasBlocks()
{
    static const bool has = __builtin_cpu_supports("avx2");
    return has;
}

#else

void decodeBlocks(Progress&) {}

bool hasBlocks()
{
    return false;
}

#endif

} // namespace

std::optional<QByteArray> decode(std::string_view text)
{
    for (int padding = 0; padding < 2 && text.ends_with('='); ++padding)
        text.remove_suffix(1);
    QByteArray bytes(qsizetype(text.size() / 4 * 3 + text.size() % 4), Qt::Uninitialized);
    Progress progress{text.data(), text.data() + text.size(), bytes.data()};
    if (hasBlocks())
        decodeBlocks(progress);
    if (!decodeGroups(progress) || !decodeRest(progress))
        return std::nullopt;
    bytes.truncate(progress.out - bytes.constData());
    return bytes;
}

} // namespace Bralto::Base64
