// Turns the system's Unicode data into the emulator's tables: `unicode-tables DATA OUTPUT`.
//
// Few combinations of properties exist, so a scalar's entry is a byte, the number of its
// combination; and blocks of 256 scalars that are alike are kept once.

#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <iostream>
#include <map>
#include <sstream>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

namespace {

constexpr std::size_t ScalarCount = 0x110000;
constexpr std::size_t BlockSize = 256;

struct Properties {
    std::string category = "Cn";
    std::string graphemeBreak = "Other";
    std::string wordBreak = "Other";
    bool wide = false;
    bool extendedPictographic = false;
    bool emojiVariationBase = false;
};

[[noreturn]] void fail(const std::string& message)
{
    std::cerr << "unicode-tables: " << message << '\n';
    std::exit(1);
}

std::string trimmed(std::string_view text)
{
    const auto first = text.find_first_not_of(" \t");
    if (first == std::string_view::npos)
        return {};
    return std::string(text.substr(first, text.find_last_not_of(" \t\r") - first + 1));
}

std::vector<std::string> fields(std::string_view line)
{
    std::vector<std::string> result;
    line = line.substr(0, line.find('#'));
    while (!trimmed(line).empty()) {
        const auto end = line.find(';');
        result.push_back(trimmed(line.substr(0, end)));
        line = end == std::string_view::npos ? std::string_view() : line.substr(end + 1);
    }
    return result;
}

void eachLine(const std::string& path, const std::function<void(const std::string&)>& use)
{
    std::ifstream file(path);
    if (!file)
        fail("can't read " + path + " (Debian package unicode-data)");
    for (std::string line; std::getline(file, line);)
        use(line);
}

/// Scalars of "0041..005A" or "00AA".
std::pair<std::size_t, std::size_t> range(const std::string& text)
{
    const auto dots = text.find("..");
    const std::size_t first = std::stoul(text, nullptr, 16);
    const std::size_t last =
        dots == std::string::npos ? first : std::stoul(text.substr(dots + 2), nullptr, 16);
    if (last >= ScalarCount || last < first)
        fail("no range: " + text);
    return {first, last};
}

/// Of a file whose lines are "range ; value".
void eachValue(const std::string& path,
               const std::function<void(std::size_t scalar, const std::string& value)>& use)
{
    eachLine(path, [&](const std::string& line) {
        const auto parts = fields(line);
        if (parts.size() < 2)
            return;
        const auto [first, last] = range(parts[0]);
        for (std::size_t scalar = first; scalar <= last; ++scalar)
            use(scalar, parts[1]);
    });
}

/// "Regional_Indicator" as our enumerations spell it.
std::string enumerator(std::string name)
{
    std::erase(name, '_');
    return name;
}

void readCategories(const std::string& data, std::vector<Properties>& all)
{
    std::size_t rangeStart = 0;
    eachLine(data + "/UnicodeData.txt", [&](const std::string& line) {
        const auto parts = fields(line);
        if (parts.size() < 3)
            return;
        const std::size_t scalar = std::stoul(parts[0], nullptr, 16);
        if (parts[1].ends_with(", First>")) {
            rangeStart = scalar;
            return;
        }
        const std::size_t first = parts[1].ends_with(", Last>") ? rangeStart : scalar;
        for (std::size_t i = first; i <= scalar; ++i)
            all[i].category = parts[2];
    });
}

void readWidths(const std::string& data, std::vector<Properties>& all)
{
    // Unassigned ideographs are wide too, says the head of the file.
    for (const auto& [first, last] : {std::pair<std::size_t, std::size_t>{0x3400, 0x4DBF},
                                      {0x4E00, 0x9FFF},
                                      {0xF900, 0xFAFF},
                                      {0x20000, 0x2FFFD},
                                      {0x30000, 0x3FFFD}}) {
        for (std::size_t scalar = first; scalar <= last; ++scalar)
            all[scalar].wide = true;
    }
    eachValue(data + "/EastAsianWidth.txt", [&](std::size_t scalar, const std::string& value) {
        all[scalar].wide = value == "W" || value == "F";
    });
}

std::vector<Properties> read(const std::string& data)
{
    std::vector<Properties> all(ScalarCount);
    readCategories(data, all);
    readWidths(data, all);
    eachValue(data + "/auxiliary/GraphemeBreakProperty.txt",
              [&](std::size_t scalar, const std::string& value) {
                  all[scalar].graphemeBreak = enumerator(value);
              });
    eachValue(data + "/auxiliary/WordBreakProperty.txt",
              [&](std::size_t scalar, const std::string& value) {
                  all[scalar].wordBreak = enumerator(value);
              });
    eachValue(data + "/emoji/emoji-data.txt", [&](std::size_t scalar, const std::string& value) {
        if (value == "Extended_Pictographic")
            all[scalar].extendedPictographic = true;
    });
    eachLine(data + "/emoji/emoji-variation-sequences.txt", [&](const std::string& line) {
        if (const auto parts = fields(line); parts.size() >= 2)
            all[std::stoul(parts[0], nullptr, 16)].emojiVariationBase = true;
    });
    return all;
}

int columns(std::size_t scalar, const Properties& of)
{
    if (of.category == "Cc")
        return -1;
    if (of.category == "Zl" || of.category == "Zp")
        return 0;
    if (of.graphemeBreak == "RegionalIndicator")
        return 2;
    // A soft hyphen is shown, and so are the few format characters that enclose what follows.
    const bool hidden = of.category == "Cf" && scalar != 0xAD && of.graphemeBreak != "Prepend";
    const bool halfSyllable = of.graphemeBreak == "V" || of.graphemeBreak == "T";
    if (of.category == "Mn" || of.category == "Me" || hidden || halfSyllable)
        return 0;
    return of.wide ? 2 : 1;
}

std::string version(const std::string& data)
{
    std::ifstream file(data + "/EastAsianWidth.txt");
    std::string line;
    std::getline(file, line);
    const auto begin = line.find('-');
    const auto end = line.find(".txt");
    if (begin == std::string::npos || end == std::string::npos)
        fail("the data does not name its version");
    return line.substr(begin + 1, end - begin - 1);
}

std::string record(std::size_t scalar, const Properties& of)
{
    std::ostringstream text;
    text << '{' << columns(scalar, of) << ", GeneralCategory::" << of.category
         << ", GraphemeBreak::" << of.graphemeBreak << ", WordBreak::" << of.wordBreak << ", "
         << (of.extendedPictographic ? "true" : "false") << ", "
         << (of.emojiVariationBase ? "true" : "false") << '}';
    return text.str();
}

void write(std::ostream& out, const std::vector<Properties>& all, const std::string& versionText)
{
    std::map<std::string, std::size_t> records;
    std::vector<std::string> recordTexts;
    std::map<std::string, std::size_t> blocks;
    std::vector<std::string> blockTexts;
    std::vector<std::size_t> blockOf;
    for (std::size_t start = 0; start < ScalarCount; start += BlockSize) {
        std::string block;
        for (std::size_t scalar = start; scalar < start + BlockSize; ++scalar) {
            const std::string text = record(scalar, all[scalar]);
            const auto [entry, isNew] = records.try_emplace(text, records.size());
            if (isNew)
                recordTexts.push_back(text);
            block += std::to_string(entry->second) + ",";
        }
        const auto [entry, isNew] = blocks.try_emplace(block, blocks.size());
        if (isNew)
            blockTexts.push_back(block);
        blockOf.push_back(entry->second);
    }
    if (recordTexts.size() > 256 || blockTexts.size() > 65535)
        fail("more combinations than the tables can number");

    out << "// Made by unicode-tables from the Unicode data of this system.\n"
           "#include \"Kovalt/UnicodeUtil.h\"\n\nnamespace Kovalt::UnicodeTables {\n\n"
        << "const char Version[] = \"" << versionText << "\";\n\n"
        << "const ScalarProperties Records[] = {\n";
    for (const std::string& text : recordTexts)
        out << text << ",\n";
    out << "};\n\nconst std::uint16_t Blocks[] = {\n";
    for (const std::size_t block : blockOf)
        out << block << ",\n";
    out << "};\n\nconst std::uint8_t Entries[] = {\n";
    for (const std::string& text : blockTexts)
        out << text << '\n';
    out << "};\n\n} // namespace Kovalt::UnicodeTables\n";
}

} // namespace

int main(int count, char** arguments)
{
    if (count != 3)
        fail("usage: unicode-tables DATA OUTPUT");
    const std::string data = arguments[1];
    const std::vector<Properties> all = read(data);
    std::ofstream out(arguments[2]);
    write(out, all, version(data));
    out.close();
    return out ? 0 : 1;
}
