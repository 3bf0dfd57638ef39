// Selecting and searching while a terminal is fed and resized: what is selected and found lies
// inside the buffer, in order, and a search that followed the changes found what a new one finds.

#include "Kovalt/Search/SearchService.h"
#include "Kovalt/Selection/SelectionService.h"
#include "Kovalt/Terminal.h"
#include "Kovalt/Utf8.h"

#include <fuzzer/FuzzedDataProvider.h>

#include <cstdio>
#include <cstdlib>
#include <limits>
#include <string>
#include <vector>

using namespace Kovalt;

namespace {

constexpr int Everything = std::numeric_limits<int>::max();

class Silence final : public TerminalDelegate {
public:
    void send(Terminal&, std::span<const std::uint8_t>) override {}
    void mouseModeChanged(Terminal&) override {}
};

void require(bool holds, const char* what)
{
    if (holds)
        return;
    std::fprintf(stderr, "does not hold: %s\n", what);
    std::abort();
}

TerminalOptions someScreen(FuzzedDataProvider& input)
{
    TerminalOptions options;
    options.cols = input.ConsumeIntegralInRange(2, 20);
    options.rows = input.ConsumeIntegralInRange(1, 6);
    options.scrollback = input.ConsumeIntegralInRange(0, 9);
    return options;
}

class Session {
public:
    explicit Session(FuzzedDataProvider& input)
        : m_input(input)
        , m_terminal(&m_silence, someScreen(input))
        , m_selection(m_terminal.buffer(), m_terminal.graphemes())
        , m_search(m_terminal.buffer(), m_terminal.graphemes())
    {
        m_terminal.setSilentLog(true);
        m_terminal.registerSelection(&m_selection);
    }
    ~Session() { m_terminal.unregisterSelection(&m_selection); }
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    void run()
    {
        setQuery();
        while (m_input.remaining_bytes() > 0) {
            act();
            follow();
            requireSoundSelection();
            requireSoundMatches();
        }
        requireSameAsAFreshSearch();
    }

private:
    void act()
    {
        switch (m_input.ConsumeIntegralInRange(0, 14)) {
        case 0:
            m_terminal.resize(m_input.ConsumeIntegralInRange(2, 20),
                              m_input.ConsumeIntegralInRange(1, 6));
            break;
        case 1:
            setQuery();
            break;
        case 2:
            m_search.step(m_input.ConsumeIntegralInRange(1, 4));
            break;
        case 3:
            m_search.setOrigin(
                {m_input.ConsumeIntegral<std::int8_t>(), m_input.ConsumeIntegral<std::int8_t>()});
            break;
        case 4:
            choose();
            break;
        case 5:
            m_selection.start(
                m_input.PickValueInArray({SelectionMode::Character, SelectionMode::Word,
                                          SelectionMode::Line, SelectionMode::Block}),
                somePoint());
            break;
        case 6:
            m_selection.extend(somePoint());
            break;
        case 7:
            m_selection.shiftExtend(somePoint());
            break;
        case 8:
            m_selection.selectAll();
            break;
        case 9:
        case 10:
            m_terminal.feed(m_input.ConsumeRandomLengthString(64));
            break;
        case 11:
            // Up to the last column, where the next character wraps.
            for (int x = m_terminal.buffer().x; x < m_terminal.cols(); ++x)
                m_terminal.feed(m_input.ConsumeBool() ? "a" : "b");
            requireSameAsAFreshSearch();
            break;
        case 12:
            requireSameAsAFreshSearch();
            break;
        default:
            printFewLetters();
        }
    }

    /// Text in which short patterns are found.
    void printFewLetters()
    {
        std::string text;
        for (int length = m_input.ConsumeIntegralInRange(0, 24); length > 0; --length)
            text += m_input.PickValueInArray<const char*>(
                {"a", "b", "a", "b", " ", "\u4e2d", "e\u0301", "\r\n"});
        m_terminal.feed(text);
    }

    void setQuery()
    {
        SearchQuery query;
        query.isRegularExpression = m_input.ConsumeBool();
        query.isCaseSensitive = m_input.ConsumeBool();
        query.isWholeWord = m_input.ConsumeBool();
        query.text = m_input.ConsumeBool()
                         ? m_input.ConsumeRandomLengthString(24)
                         : m_input.PickValueInArray<const char*>(
                               {"a", "ab", "aba", "b a", "a.b", "a+b", "^b", "a$", "\\bab\\b"});
        const auto error = m_search.setQuery(query);
        require(!error || !error->message.empty(), "an error says why");
        require(!error || error->offset <= query.text.size(), "an error is in the query");
    }

    void choose()
    {
        const auto chosen = m_input.ConsumeBool() ? m_search.next() : m_search.previous();
        require(chosen.has_value() == (m_search.count() > 0), "one of the matches");
        require(!chosen || m_search.match(*m_search.currentIndex()) == *chosen, "current match");
    }

    SelectionPoint somePoint()
    {
        const int col = m_input.ConsumeIntegralInRange(-1, 20);
        const int row = m_input.ConsumeIntegralInRange(-1, 16);
        return {{col, row}, m_input.ConsumeBool() ? CellSide::Left : CellSide::Right};
    }

    /// What a host does after output.
    void follow()
    {
        m_selection.setBuffer(m_terminal.buffer());
        m_search.setBuffer(m_terminal.buffer());
        m_selection.sync();
        m_search.sync();
    }

    void requireInside(const TextRange& range) const
    {
        const Buffer& buffer = m_terminal.buffer();
        require(range.begin.row >= buffer.linesTop, "first row");
        require(range.end.row < buffer.linesTop + buffer.lines().count(), "last row");
        require(range.begin.col >= 0 && range.begin.col <= buffer.cols(), "first column");
        require(range.end.col >= 0 && range.end.col <= buffer.cols(), "last column");
    }

    void requireSoundSelection() const
    {
        const auto selected = m_selection.selection();
        const std::string text = m_selection.text();
        require(Utf8::isValid(text), "text in UTF-8");
        if (!selected) {
            require(text.empty(), "no text without a selection");
            return;
        }
        requireInside(selected->range);
        require(selected->isBlock() || selected->range.begin < selected->range.end, "order");
        const Buffer& buffer = m_terminal.buffer();
        for (int row = -1; row <= buffer.lines().count(); ++row) {
            const ColumnRange columns = m_selection.columnsInRow(row);
            require(columns.begin >= 0 && columns.end <= buffer.cols(), "selected columns");
            const bool isInside = row + buffer.linesTop >= selected->range.begin.row &&
                                  row + buffer.linesTop <= selected->range.end.row;
            require(isInside || columns.isEmpty(), "nothing outside");
            for (int col = columns.begin; col < columns.end; ++col)
                require(m_selection.contains({col, row}), "each cell");
        }
    }

    void requireSoundMatches() const
    {
        for (std::size_t i = 0; i < m_search.count(); ++i) {
            const TextRange& match = m_search.match(i);
            requireInside(match);
            require(match.begin < match.end, "a match has cells");
            require(i == 0 || m_search.match(i - 1).end <= match.begin, "matches in order");
        }
        const Buffer& buffer = m_terminal.buffer();
        int before = 0;
        for (const auto& shown : m_search.highlights(-1, buffer.lines().count())) {
            require(shown.row >= before && shown.row < buffer.lines().count(), "rows in order");
            require(shown.columns.begin >= 0 && !shown.columns.isEmpty() &&
                        shown.columns.end <= buffer.cols(),
                    "highlighted columns");
            before = shown.row;
        }
    }

    /// Not where a line has lost its beginning: what was found before stays found.
    [[nodiscard]] std::vector<TextRange> matchesFrom(const SearchService& search) const
    {
        const Buffer& buffer = m_terminal.buffer();
        int first = 0;
        if (buffer.linesTop > 0 && buffer.lines().peek(0) && buffer.lines().peek(0)->isWrapped())
            do
                ++first;
            while (first < buffer.lines().count() && buffer.lines().peek(first) &&
                   buffer.lines().peek(first)->isWrapped());
        std::vector<TextRange> matches;
        for (std::size_t i = 0; i < search.count(); ++i) {
            if (search.match(i).begin.row >= first + buffer.linesTop)
                matches.push_back(search.match(i));
        }
        return matches;
    }

    void requireSameAsAFreshSearch()
    {
        const SearchQuery query = m_search.query();
        SearchService fresh(m_terminal.buffer(), m_terminal.graphemes());
        if (fresh.setQuery(query))
            return;
        require(!m_search.step(Everything) && !fresh.step(Everything), "all is searched");
        require(matchesFrom(m_search) == matchesFrom(fresh), "the same is found");
    }

    FuzzedDataProvider& m_input;
    Silence m_silence;
    Terminal m_terminal;
    SelectionService m_selection;
    SearchService m_search;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size)
{
    FuzzedDataProvider input(data, size);
    Session(input).run();
    return 0;
}
