#include "Tools/TerminalGallery/Scenes.h"

#include <array>

namespace Bralto {
namespace {

std::string sgr(const std::string& parameters, const std::string& text)
{
    return "\033[" + parameters + "m" + text + "\033[m";
}

std::string colours()
{
    std::string out;
    for (int row = 0; row < 2; ++row) {
        for (int i = 0; i < 8; ++i)
            out += sgr(std::to_string((row == 0 ? 30 : 90) + i), " text" + std::to_string(i) + " ");
        out += "\r\n";
        for (int i = 0; i < 8; ++i)
            out +=
                sgr(std::to_string((row == 0 ? 40 : 100) + i), "  " + std::to_string(i) + "    ");
        out += "\r\n";
    }
    for (int i = 16; i < 232; ++i)
        out += sgr("48;5;" + std::to_string(i), "  ") + ((i - 15) % 36 == 0 ? "\r\n" : "");
    for (int i = 232; i < 256; ++i)
        out += sgr("48;5;" + std::to_string(i), "   ");
    out += "\r\n";
    for (int i = 0; i < 76; ++i)
        out +=
            sgr("48;2;" + std::to_string(255 - i * 3) + ";" + std::to_string(i * 3) + ";160", " ");
    out += "\r\n\r\n";
    const std::array<std::pair<const char*, const char*>, 8> styles{
        {{"0", "plain"},
         {"1", "bold"},
         {"2", "dim"},
         {"3", "italic"},
         {"7", "inverse"},
         {"9", "crossed out"},
         {"1;3", "bold italic"},
         {"2;3;7", "dim italic inverse"}}};
    for (const auto& [parameters, name] : styles)
        out += sgr(parameters, name) + "  ";
    out += "\r\n";
    const std::array<std::pair<const char*, const char*>, 5> lines{{{"4", "single"},
                                                                    {"4:2", "double"},
                                                                    {"4:3", "curly"},
                                                                    {"4:4", "dotted"},
                                                                    {"4:5", "dashed"}}};
    for (const auto& [parameters, name] : lines)
        out += sgr(parameters, std::string(name) + " underline") + "  ";
    out += "\r\n";
    for (const auto& [parameters, name] : lines)
        out += sgr(std::string(parameters) + ";58;2;242;117;111", std::string(name) + " in red") +
               "  ";
    return out + "\r\n";
}

std::string boxes()
{
    return "┌─┬─┐ ┏━┳━┓ ╔═╦═╗ ╭─┬─╮ ┍━┯━┑ ┎─┰─┒ ╒═╤═╕ ╓─╥─╖ ╱╲╳ ░▒▓█\r\n"
           "│ │ │ ┃ ┃ ┃ ║ ║ ║ │ │ │ │ │ │ ┃ ┃ ┃ │ │ │ ║ ║ ║ ╲╱╳ ░▒▓█\r\n"
           "├─┼─┤ ┣━╋━┫ ╠═╬═╣ ├─┼─┤ ┝━┿━┥ ┠─╂─┨ ╞═╪═╡ ╟─╫─╢ ╱╲╳ ▁▂▃▄▅▆▇█\r\n"
           "│ │ │ ┃ ┃ ┃ ║ ║ ║ │ │ │ │ │ │ ┃ ┃ ┃ │ │ │ ║ ║ ║ ▏▎▍▌▋▊▉█▔▕▀▐\r\n"
           "└─┴─┘ ┗━┻━┛ ╚═╩═╝ ╰─┴─╯ ┕━┷━┙ ┖─┸─┚ ╘═╧═╛ ╙─╨─╜ ▖▗▘▙▚▛▜▝▞▟\r\n\r\n"
           "┄┄┄┄┅┅┅┅┈┈┈┈┉┉┉┉╌╌╌╌╍╍╍╍ ┆┇┊┋╎╏ ╴╶╸╺╼╾ ◢◣◤◥\r\n"
           "                         ┆┇┊┋╎╏ ╵╷╹╻╽╿ ◥◤◣◢\r\n"
           "⠁⠃⠇⡇⣇⣧⣷⣿⣾⣼⣸⢸⠸⠘⠈ ⣀⣤⣶⣿⠿⠛⠉ ⢎⡱⢎⡱\r\n"
           "\U0001FB00\U0001FB01\U0001FB02\U0001FB0B\U0001FB0E\U0001FB13\U0001FB14\U0001FB27"
           "\U0001FB28\U0001FB2D\U0001FB33\U0001FB39\U0001FB3B\r\n" +
           sgr("30;44", " main ") + sgr("34;42", "\uE0B0") + sgr("30;42", " ~/src ") +
           sgr("32", "\uE0B0") + " \uE0B1 \uE0B3 " + sgr("31", "\uE0B2") + sgr("30;41", " 1 ") +
           sgr("35", "\uE0B6") + sgr("30;45", " x ") + sgr("35", "\uE0B4") + "\r\n";
}

std::string scripts()
{
    return "Latin ÄÖÜ éèê ñ ß ŋ ə  Greek αβγδ Ωμέγα  Cyrillic Здравствуй\r\n"
           "Wide 漢字かな交じり文 한국어 中文 ｆｕｌｌ\r\n"
           "|..|..|..|..|..|..|\r\n"
           "Emoji 😀🚀🎉🔥👍🏽👩‍💻🏳️‍🌈❤️☎️ "
           "☺ ✓ ✗ → ⇒ ● ★ ⚡ ⏎\r\n"
           "Marks e\u0301 a\u0308 n\u0303 o\u0302\u0323 Z\u0351\u036B\u0343\r\n"
           "Arrows ←↑→↓ ↔ ⟶ math ∀∃∈∑∫√∞≈≠≤≥ shapes ■□▪▲△◆◇○●\r\n"
           "Symbols ✔ ✘ ⚠ ℹ ⓘ ☐ ☑ ⌘ ⌥ ⇧ ⎋ "
           "█▓▒░ ⏺ ⎿ ✻ ✢ ✳ ∗ ❯\r\n"
           "Signs -> => != == <= >= ... /* */ || && :: www 0xFF\r\n"
           "\033#3Double height\r\n\033#4Double height\r\n\033#6Double width ┌──┐\r\n";
}

std::string editor()
{
    const auto line = [](int number, const std::string& text) {
        return sgr("2", (number < 10 ? "  " : " ") + std::to_string(number) + " ") + text + "\r\n";
    };
    return line(31, sgr("38;5;245", "// Predictions are hourly. Between two samples the level "
                                    "follows half a cosine.")) +
           line(32, sgr("36", "std::optional") + "<" + sgr("36", "Level") + "> " +
                        sgr("36", "TideStore") + "::" + sgr("34", "level_at") + "(StationId id)") +
           line(33, "{") +
           line(34, "    " + sgr("35", "const auto") +
                        "* series = " + sgr("4:3;58;2;242;117;111", "find_series") + "(id);") +
           line(35, "    " + sgr("35", "if") + " (series == " + sgr("35", "nullptr") + ")") +
           line(36, "        " + sgr("35", "return") + " std::nullopt;") +
           line(37, "    " + sgr("48;5;58", "log(\"covers\");") + " " + sgr("33", "// TIDE")) +
           line(38, "}") + sgr("34", "~") + "\r\n" + sgr("34", "~") + "\r\n" +
           sgr("7", " NORMAL  tide_store.cpp [+]                                   36,9   42% ");
}

} // namespace

std::string shellSession()
{
    const std::string prompt = sgr("36", "tidal-api") + " main " + sgr("33", "!5") + " % ";
    std::string out = "[ 2/14] " + sgr("32", "Building CXX object") +
                      " src/CMakeFiles/tidal.dir/clock.cpp.o\r\n" +
                      sgr("1", "/src/tide_store.cpp:52:18: ") + sgr("1;35", "warning: ") +
                      "unused variable " + sgr("1", "‘margin’") + "\r\n   52 |     const auto " +
                      sgr("1;35", "margin") + " = series->step() / 2;\r\n      |                " +
                      sgr("1;35", "^~~~~~") + "\r\n\r\n" + prompt +
                      "ctest --preset dev -R store\r\n";
    for (int i = 1; i < 5; ++i)
        out += " " + std::to_string(i) + "/6 store.level_between ...... " +
               (i == 3 ? sgr("33", "Skipped") : sgr("32", "Passed")) + "\r\n";
    out += sgr("32", "100% passed") + "," + sgr("2", " 1 skipped in 0.21 s") + "\r\n\r\n" + prompt +
           "git log --oneline -2\r\n" + sgr("33", "3f9c1ab") + " Ask the series for its range\r\n" +
           sgr("33", "91d07e2") + " Answer 404 out of range\r\n\r\n" + prompt;
    return out;
}

std::vector<TerminalScene> terminalScenes()
{
    return {{"colours", colours()},
            {"boxes", boxes()},
            {"scripts", scripts()},
            {"editor", editor()},
            {"session", shellSession()}};
}

} // namespace Bralto
