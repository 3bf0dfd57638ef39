#include "Benchmarks/TerminalStreams.h"

#include <array>
#include <cstdint>
#include <string_view>

namespace Kovalt {

/// Small numbers that are the same on every machine, which the standard's distributions are not.
class StreamRandom {
public:
    unsigned below(unsigned limit)
    {
        m_state = m_state * 6364136223846793005ULL + 1442695040888963407ULL;
        return unsigned(m_state >> 33U) % limit;
    }
    unsigned between(unsigned low, unsigned high) { return low + below(high - low + 1); }

private:
    std::uint64_t m_state = 20261121;
};

namespace {

constexpr int Cols = 80;
constexpr int Rows = 24;

constexpr std::array<std::string_view, 16> Words = {
    "request", "from",  "worker", "queue",  "started", "after",    "retry", "index",
    "session", "bytes", "cache",  "missed", "closed",  "accepted", "in",    "took"};

std::string_view word(StreamRandom& random)
{
    return Words[random.below(Words.size())];
}

void number(std::string& text, unsigned value)
{
    text += std::to_string(value);
}

void position(std::string& text, unsigned row, unsigned col)
{
    text += "\x1b[";
    number(text, row);
    text += ';';
    number(text, col);
    text += 'H';
}

void color(std::string& text, std::string_view introducer, StreamRandom& random)
{
    text += introducer;
    for (int channel = 0; channel < 3; ++channel) {
        text += ';';
        number(text, random.below(256));
    }
}

void plain(std::string& text, StreamRandom& random)
{
    text += "2026-11-21T09:";
    number(text, random.between(10, 59));
    text += ':';
    number(text, random.between(10, 59));
    text += ".";
    number(text, random.between(100, 999));
    text += " INFO  server[";
    number(text, random.between(1000, 9999));
    text += "]: ";
    for (unsigned count = random.between(3, 11); count != 0; --count) {
        text += word(random);
        text += ' ';
    }
    text += "\r\n";
}

void light(std::string& text, StreamRandom& random)
{
    text += "\x1b[32mok\x1b[0m ";
    for (unsigned count = random.between(30, 60); count != 0; --count) {
        text += word(random);
        text += ' ';
    }
    text += "\r\n";
}

void colour(std::string& text, StreamRandom& random)
{
    for (unsigned count = random.between(6, 11); count != 0; --count) {
        text += "\x1b[";
        if (random.below(4) == 0)
            text += "1;";
        number(text, random.between(31, 37));
        text += 'm';
        text += word(random);
        text += "\x1b[0m ";
    }
    text += "\r\n";
}

void dense(std::string& text, StreamRandom& random)
{
    text += "\x1b[H";
    for (int row = 0; row < Rows; ++row) {
        for (int col = 0; col < Cols; ++col) {
            color(text, "\x1b[38;2", random);
            color(text, ";48;2", random);
            text += 'm';
            text += char('!' + random.below(90));
        }
        if (row + 1 < Rows)
            text += "\r\n";
    }
}

void scroll(std::string& text, StreamRandom& random)
{
    for (unsigned count = random.between(1, 3); count != 0; --count)
        text += char('a' + random.below(26));
    text += "\r\n";
}

void region(std::string& text, StreamRandom& random)
{
    for (unsigned count = random.between(1, 8); count != 0; --count) {
        text += word(random);
        text += ' ';
    }
    text += "\r\n";
}

void unicode(std::string& text, StreamRandom& random)
{
    static constexpr std::array<std::string_view, 14> Pieces = {
        "終端機",       "日本語の文",           "한국어",
        "héllo",        "e\u0301tude",          "n\u0303",
        "\U0001F600",   "\U0001F44D\U0001F3FD", "\U0001F468\u200D\U0001F469\u200D\U0001F467",
        "\u2764\uFE0F", "\U0001F1E9\U0001F1EA", "Ελληνικά",
        "русский",      "\u2500\u2502\u250C"};
    for (unsigned count = random.between(5, 9); count != 0; --count) {
        text += Pieces[random.below(Pieces.size())];
        text += ' ';
    }
    text += "\r\n";
}

void cjk(std::string& text, StreamRandom& random)
{
    static constexpr std::array<std::string_view, 12> Pieces = {
        "終端機", "日本語の文", "한국어", "中文字符", "記録", "サーバー",
        "接続",   "が開始した", "요청",   "처리됨",   "错误", "重试。"};
    number(text, random.between(1000, 9999));
    text += ' ';
    for (unsigned count = random.between(6, 14); count != 0; --count)
        text += Pieces[random.below(Pieces.size())];
    text += "\r\n";
}

void cursor(std::string& text, StreamRandom& random)
{
    position(text, random.between(1, Rows), random.between(1, Cols - 10));
    text += word(random);
    switch (random.below(6)) {
    case 0:
        text += "\x1b[K";
        break;
    case 1:
        text += "\x1b[3D";
        break;
    case 2:
        text += "\x1b[A";
        break;
    default:
        break;
    }
}

void alt(std::string& text, StreamRandom& random)
{
    text += "\x1b[H";
    for (unsigned row = 1; row <= Rows; ++row) {
        text += "\x1b[38;5;";
        number(text, random.below(256));
        text += 'm';
        unsigned width = 0;
        while (width < Cols - 16) {
            const std::string_view next = word(random);
            text += next;
            text += ' ';
            width += unsigned(next.size()) + 1;
        }
        text += "\x1b[m\x1b[K";
        if (row < Rows)
            text += "\r\n";
    }
    text += "\x1b[7m-- ";
    text += word(random);
    text += " --\x1b[0m";
}

void osc(std::string& text, StreamRandom& random)
{
    text += "\x1b]133;A\x07$ ";
    text += word(random);
    text += "\x1b]133;C\x07\r\n\x1b]2;";
    text += word(random);
    text += "\x07";
    for (unsigned count = random.between(2, 5); count != 0; --count) {
        text += "\x1b]8;;file:///home/ann/projects/";
        text += word(random);
        text += "\x1b\\";
        text += word(random);
        text += "\x1b]8;;\x1b\\ ";
    }
    text += "\r\n\x1b]133;D;0\x07";
}

constexpr std::array<TerminalStream, 11> Streams = {{
    {"plain", plain},
    {"light", light},
    {"colour", colour},
    {"dense", dense},
    {"scroll", scroll},
    {"region", region, "\x1b[4;20r\x1b[20;1H"},
    {"unicode", unicode},
    {"cjk", cjk},
    {"cursor", cursor},
    {"alt", alt, "\x1b[?1049h"},
    {"osc", osc},
}};

} // namespace

std::span<const TerminalStream> terminalStreams()
{
    return Streams;
}

std::string makeStream(const TerminalStream& stream, std::size_t bytes)
{
    std::string text = stream.prologue;
    text.reserve(bytes + 65536);
    StreamRandom random;
    while (text.size() < bytes)
        stream.append(text, random);
    return text;
}

} // namespace Kovalt
