// What real programs wrote, and the screens that it must give. A recording is
// NAME.COLSxROWS.pty; beside it stands each screen after its first OFFSET bytes, as text
// (NAME.COLSxROWS.OFFSET.txt) and with the sequences of its looks (.sgr). BRALTO_REBASELINE=1
// writes the expected files anew.

#include "Kovalt/ScreenDump.h"
#include "Kovalt/Terminal.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <random>
#include <thread>

namespace Kovalt {

namespace {

const QString Folder = QStringLiteral(BRALTO_FIXTURES "/Terminal/");

std::string read(const QString& name)
{
    QFile file(Folder + name);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << name.toStdString();
    return file.readAll().toStdString();
}

struct Recording {
    std::string name;
    int cols = 0;
    int rows = 0;
    std::string bytes;
    std::vector<std::size_t> offsets; ///< Of the expected screens, in order.

    [[nodiscard]] TerminalOptions options() const
    {
        TerminalOptions options;
        options.cols = cols;
        options.rows = rows;
        return options;
    }
    [[nodiscard]] QString screen(std::size_t offset, const char* form) const
    {
        return QStringLiteral("%1.%2x%3.%4.%5")
            .arg(QString::fromStdString(name))
            .arg(cols)
            .arg(rows)
            .arg(offset)
            .arg(QString::fromLatin1(form));
    }
};

Recording recording(const QString& file)
{
    const QStringList parts = file.split('.');
    const QStringList size = parts.value(1).split('x');
    Recording result{
        parts.value(0).toStdString(), size.value(0).toInt(), size.value(1).toInt(), read(file), {}};
    const QString screens = parts.value(0) + '.' + parts.value(1) + ".*.txt";
    for (const QString& screen : QDir(Folder).entryList({screens}, QDir::Files))
        result.offsets.push_back(screen.split('.').value(2).toULongLong());
    std::sort(result.offsets.begin(), result.offsets.end());
    return result;
}

std::vector<std::string> recordings()
{
    std::vector<std::string> names;
    for (const QString& name : QDir(Folder).entryList({"*.pty"}, QDir::Files))
        names.push_back(name.toStdString());
    return names;
}

/// A terminal that nobody watches.
class Screen {
public:
    explicit Screen(const TerminalOptions& options)
        : terminal(nullptr, options)
    {
        terminal.setSilentLog(true);
    }
    Terminal terminal;
};

/// Cuts bytes anew for each call.
using Cut = std::function<std::size_t(std::size_t left)>;

void feed(Terminal& terminal, std::string_view bytes, const Cut& cut)
{
    while (!bytes.empty()) {
        const std::size_t size = std::min(bytes.size(), cut(bytes.size()));
        terminal.feed(bytes.substr(0, size));
        bytes.remove_prefix(size);
    }
}

/// An empty cell of no looks but a background. What is left of a wide character that was cut in two
/// has more, and can only be written as a blank.
bool isErased(const CharData& cell)
{
    Attribute background;
    background.bg = cell.attribute.bg;
    return cell.code == 0 && cell.width != 0 && cell.attribute == background;
}

void expectEqualCells(const Terminal& one, const Terminal& other)
{
    for (int row = 0; row < one.rows(); ++row) {
        for (int column = 0; column < one.cols(); ++column) {
            SCOPED_TRACE(testing::Message() << "column " << column << ", row " << row);
            const CharData a = one.getCharData(column, row).value_or(CharData{});
            const CharData b = other.getCharData(column, row).value_or(CharData{});
            ASSERT_EQ(isErased(a), isErased(b));
            ASSERT_EQ(one.graphemes().textFor(a.code), other.graphemes().textFor(b.code));
            ASSERT_EQ(a.width, b.width);
            ASSERT_TRUE(a.attribute == b.attribute);
            ASSERT_EQ(TinyAtom::target(a.payload), TinyAtom::target(b.payload));
        }
    }
}

/// The screen, written down, gives the same cells elsewhere.
void expectRoundTrip(const Terminal& terminal)
{
    Screen other(terminal.options());
    const std::string text = ScreenDump::sgr(terminal);

    other.terminal.feed(text);

    expectEqualCells(terminal, other.terminal);
    EXPECT_EQ(ScreenDump::sgr(other.terminal), text);
}

class GoldenScreen : public testing::TestWithParam<std::string> {
protected:
    void expectScreen(const Terminal& terminal, std::size_t offset) const
    {
        const std::pair<const char*, std::string> forms[] = {
            {"txt", ScreenDump::text(terminal)}, {"sgr", ScreenDump::sgr(terminal) + '\n'}};
        for (const auto& [form, text] : forms) {
            const QString name = m_recording.screen(offset, form);
            if (qEnvironmentVariableIsSet("BRALTO_REBASELINE")) {
                QFile file(Folder + name);
                ASSERT_TRUE(file.open(QIODevice::WriteOnly));
                file.write(QByteArray::fromStdString(text));
            }
            EXPECT_EQ(text, read(name)) << name.toStdString();
        }
    }
    void expectScreens(const Cut& cut) const
    {
        Screen screen(m_recording.options());
        std::size_t from = 0;
        for (const std::size_t to : m_recording.offsets) {
            feed(screen.terminal, std::string_view(m_recording.bytes).substr(from, to - from), cut);
            expectScreen(screen.terminal, to);
            from = to;
        }
    }

    const Recording m_recording = recording(QString::fromStdString(GetParam()));
};

TEST_P(GoldenScreen, IsTheSameHoweverTheBytesAreCut)
{
    ASSERT_FALSE(m_recording.offsets.empty());
    ASSERT_EQ(m_recording.offsets.back(), m_recording.bytes.size());

    expectScreens([](std::size_t left) { return left; });
    expectScreens([](std::size_t) { return std::size_t(1); });
    for (unsigned seed = 1; seed <= 5; ++seed) {
        SCOPED_TRACE(seed);
        std::mt19937 random(seed);
        expectScreens([&random](std::size_t) { return std::size_t(1 + random() % 97); });
    }
}

TEST_P(GoldenScreen, WrittenDownGivesEqualCellsElsewhere)
{
    Screen screen(m_recording.options());
    std::size_t from = 0;
    for (const std::size_t to : m_recording.offsets) {
        SCOPED_TRACE(to);
        screen.terminal.feed(std::string_view(m_recording.bytes).substr(from, to - from));
        expectRoundTrip(screen.terminal);
        from = to;
    }
}

TEST_P(GoldenScreen, IsNotDisturbedByAnotherTerminal)
{
    Screen alone(m_recording.options());
    alone.terminal.feed(m_recording.bytes);
    constexpr auto Everything = ScreenDump::Range::ScreenAndHistory;
    const std::string expected = ScreenDump::json(alone.terminal, Everything);

    for (const std::string& name : recordings()) {
        SCOPED_TRACE(name);
        const Recording others = recording(QString::fromStdString(name));
        Screen one(m_recording.options());
        Screen other(others.options());
        std::string_view left = others.bytes;
        feed(one.terminal, m_recording.bytes, [&](std::size_t) {
            other.terminal.feed(left.substr(0, 7));
            left.remove_prefix(std::min<std::size_t>(7, left.size()));
            return std::size_t(11);
        });

        EXPECT_EQ(ScreenDump::json(one.terminal, Everything), expected);
    }
}

TEST_P(GoldenScreen, IsTheSameOnEachOfSeveralThreads)
{
    constexpr std::size_t Threads = 3;
    std::vector<std::string> screens(Threads);
    std::vector<std::thread> threads;
    for (std::string& text : screens) {
        threads.emplace_back([&] {
            Screen screen(m_recording.options());
            feed(screen.terminal, m_recording.bytes, [](std::size_t) { return std::size_t(64); });
            text = ScreenDump::json(screen.terminal);
        });
    }
    for (std::thread& thread : threads)
        thread.join();

    EXPECT_EQ(screens[0], screens[1]);
    EXPECT_EQ(screens[0], screens[2]);
}

INSTANTIATE_TEST_SUITE_P(Recorded, GoldenScreen, testing::ValuesIn(recordings()),
                         [](const testing::TestParamInfo<std::string>& one) {
                             return one.param.substr(0, one.param.find('.'));
                         });

// What a screen doesn't show.

TEST(RecordedAgent, LeavesCursorTitleAndModesAsItMeans)
{
    const Recording agent = recording(QStringLiteral("agent.100x30.pty"));
    const auto screens =
        QJsonDocument::fromJson(QByteArray::fromStdString(read("agent.screens.json"))).array();
    ASSERT_EQ(screens.size(), 3);
    for (const QJsonValue& screen : screens) {
        SCOPED_TRACE(screen["what"].toString().toStdString());
        Screen fed(agent.options());
        const Terminal& terminal = fed.terminal;
        fed.terminal.feed(
            std::string_view(agent.bytes).substr(0, std::size_t(screen["offset"].toInt())));

        std::string lines;
        for (const QJsonValue& line : screen["lines"].toArray())
            lines += line.toString().toStdString() + '\n';
        std::string shown;
        for (QString line : QString::fromStdString(ScreenDump::text(terminal)).split('\n')) {
            while (line.endsWith(' ') || line.endsWith(QChar::Nbsp))
                line.chop(1);
            shown += line.toStdString() + '\n';
        }
        shown.pop_back();
        EXPECT_EQ(shown, lines);
        EXPECT_EQ(terminal.getCursorLocation().col, screen["cursor"][0].toInt());
        EXPECT_EQ(terminal.getCursorLocation().row, screen["cursor"][1].toInt());
        EXPECT_EQ(terminal.isAlternateBufferActive(), screen["alternate"].toBool());
        EXPECT_EQ(terminal.titles().terminalTitle, screen["title"].toString().toStdString());

        const QJsonValue modes = screen["modes"];
        const TerminalModes& has = terminal.modes();
        EXPECT_EQ(has.applicationCursor, modes["applicationCursorKeysMode"].toBool());
        EXPECT_EQ(has.applicationKeypad, modes["applicationKeypadMode"].toBool());
        EXPECT_EQ(has.bracketedPasteMode, modes["bracketedPasteMode"].toBool());
        EXPECT_EQ(has.insertMode, modes["insertMode"].toBool());
        EXPECT_EQ(has.originMode, modes["originMode"].toBool());
        EXPECT_EQ(has.reverseWraparound, modes["reverseWraparoundMode"].toBool());
        EXPECT_EQ(has.sendFocus, modes["sendFocusMode"].toBool());
        EXPECT_EQ(has.wraparound, modes["wraparoundMode"].toBool());
        EXPECT_EQ(terminal.isSynchronizedOutputActive(), modes["synchronizedOutputMode"].toBool());
        EXPECT_EQ(has.mouseMode == MouseMode::AnyEvent, modes["mouseTrackingMode"] == "any");
        EXPECT_EQ(has.mouseMode == MouseMode::Off, modes["mouseTrackingMode"] == "none");
    }
}

TEST(RecordedShell, MarksItsPromptsInputsAndOutputs)
{
    const Recording shell = recording(QStringLiteral("zsh.80x25.pty"));
    Screen screen(shell.options());
    screen.terminal.feed(shell.bytes);

    std::map<SemanticMark::Kind, std::vector<int>> rows;
    for (int row = 0; row < shell.rows; ++row) {
        for (const SemanticMark& mark : screen.terminal.buffer().screenLine(row).semanticMarks())
            rows[mark.kind].push_back(row);
    }
    EXPECT_EQ(rows[SemanticMark::Kind::Prompt], (std::vector{0, 5, 7, 10, 15}));
    EXPECT_EQ(rows[SemanticMark::Kind::Input], (std::vector{1, 6, 8, 11, 16}));
    EXPECT_EQ(screen.terminal.titles().terminalTitle, "towers");
}

TEST(RecordedPrograms, PutTheNormalScreenBackWhenTheyEnd)
{
    for (const char* name : {"vim", "less", "tmux", "htop"}) {
        SCOPED_TRACE(name);
        const Recording program = recording(QString::fromLatin1(name) + ".80x25.pty");
        Screen screen(program.options());

        screen.terminal.feed(std::string_view(program.bytes).substr(0, program.offsets.front()));
        EXPECT_TRUE(screen.terminal.isAlternateBufferActive());
        screen.terminal.feed(std::string_view(program.bytes).substr(program.offsets.front()));

        const TerminalModes& modes = screen.terminal.modes();
        EXPECT_FALSE(screen.terminal.isAlternateBufferActive());
        EXPECT_FALSE(modes.cursorHidden);
        EXPECT_FALSE(modes.applicationCursor);
        EXPECT_FALSE(modes.applicationKeypad);
        EXPECT_FALSE(modes.bracketedPasteMode);
        EXPECT_EQ(modes.mouseMode, MouseMode::Off);
        EXPECT_EQ(screen.terminal.currentAttribute(), Attribute{});
    }
}

// Round trips of made-up screens.

TEST(WrittenScreen, CarriesEveryAttributeColourWidthAndLink)
{
    std::string text;
    for (const char* look : {"1", "2", "3", "4", "5", "7", "8", "9", "21", "4:3", "4:4", "4:5",
                             "1;2;3;4;5;7;8;9", "4;58;5;9", "4:3;58;2;1;2;3", "53"})
        text += "\x1B[" + std::string(look) + "mlook\x1B[m ";
    text += "\r\n";
    for (int color = 0; color < 256; ++color)
        text +=
            "\x1B[38;5;" + std::to_string(color) + ";48;5;" + std::to_string(255 - color) + "mx";
    text += "\x1B[m\r\n\x1B[38;2;1;2;3;48:2::250:251:252mtrue\x1B[39;49m\r\n";
    text += "漢字 e\u0301 👩\u200D💻 🇩🇪 \u2764\uFE0F ｶﾅ \x1B(0lqqk\x1B(B\r\n";
    text += "\x1B]8;id=a;https://example.org/a?b;c\x1B\\linked \x1B[31mtext\x1B]8;;\x1B\\ none ";
    text += "\x1B]8;;file:///tmp/x\x1B\\file\x1B]8;;\x1B\\\r\n";
    text += "\x1B[44m\x1B[K\x1B[5C\x1B[41m\x1B[3Xabc\x1B[m\r\n";
    text += "\x1B[20;77H\x1B[7medge漢";

    Screen screen({});
    screen.terminal.feed(text);

    expectRoundTrip(screen.terminal);
}

TEST(WrittenScreen, OfRandomLooksAndPlacesIsTheSameAgain)
{
    const char* const pieces[] = {
        "plain ",         "\x1B[m",  "\x1B[K",  "\x1B[1K",  "漢字",     "e\u0301",
        "👩\u200D💻",       "\r\n",    "\x1B[J",  "\x1B[1J",  "\x1B[3P",  "\x1B[2@",
        "\x1B[4X",        "\x1B[L",  "\x1B[M",  "\x1B[2S",  "\x1B[T",   "\x1B]8;;http://a.b\x1B\\",
        "\x1B]8;;\x1B\\", "\x1B[4h", "\x1B[4l", "\x1B[?7l", "\x1B[?7h", "\t"};
    for (unsigned seed = 1; seed <= 300; ++seed) {
        SCOPED_TRACE(seed);
        std::mt19937 engine(seed);
        const auto random = [&engine] { return unsigned(engine()); };
        Screen screen({});
        screen.terminal.resize(19, 7);
        for (int i = 0; i < 120; ++i) {
            const unsigned choice = random() % 60;
            if (choice < std::size(pieces))
                screen.terminal.feed(pieces[choice]);
            else if (choice < 40)
                screen.terminal.feed("\x1B[" + std::to_string(random() % 110) + "m");
            else if (choice < 50)
                screen.terminal.feed("\x1B[" + std::to_string(1 + random() % 7) + ";" +
                                     std::to_string(1 + random() % 19) + "H");
            else
                screen.terminal.feed(std::string(random() % 25, char('a' + random() % 26)));
        }

        expectRoundTrip(screen.terminal);
        if (HasFatalFailure())
            return;
    }
}

} // namespace

} // namespace Kovalt
