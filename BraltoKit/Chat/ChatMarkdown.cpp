#include "Chat/ChatMarkdown.h"

#include <QList>

#include <algorithm>

namespace Bralto::MarkdownParser {

using namespace MarkdownBlocks;

namespace {

/// A carriage return counts as a blank, so that text with Windows line ends reads the same.
bool isBlank(QChar c)
{
    return c == u' ' || c == u'\t' || c == u'\r';
}

QStringView trimmed(QStringView text)
{
    while (!text.isEmpty() && isBlank(text.front()))
        text = text.mid(1);
    while (!text.isEmpty() && isBlank(text.back()))
        text.chop(1);
    return text;
}

bool isDigit(QChar c)
{
    return c >= u'0' && c <= u'9';
}

bool consistsOf(QStringView text, QChar c)
{
    return std::all_of(text.begin(), text.end(), [c](QChar other) { return other == c; });
}

bool isRule(QStringView line)
{
    return line.size() >= 3 && (line[0] == u'-' || line[0] == u'*' || line[0] == u'_') &&
           consistsOf(line, line[0]);
}

bool closesFence(QStringView line, const QString& marker)
{
    return line.startsWith(marker) && consistsOf(line, marker[0]);
}

/// Walks the lines once; what a paragraph or a list has gathered waits until it ends.
class BlockReader {
public:
    explicit BlockReader(QStringView text)
        : m_text(text)
        , m_lines(text.split(u'\n'))
    {
    }

    std::vector<MarkdownBlock> read()
    {
        while (m_next < m_lines.size())
            readBlock();
        flush();
        return std::move(m_blocks);
    }

    /// What was read up to the last blank line that has its line feed. No block goes on behind
    /// one, but for code, and no rule looks back over one.
    [[nodiscard]] const Settled& settled() const { return m_settled; }

private:
    void readBlock()
    {
        const QStringView raw = m_lines[m_next];
        const QStringView line = trimmed(raw);
        if (const auto marker = fenceMarker(line)) {
            readCode(line, *marker);
        } else if (line.isEmpty()) {
            flush();
            if (++m_next < m_lines.size())
                m_settled = {m_lines[m_next].data() - m_text.data(), m_blocks.size()};
        } else if (auto head = heading(line)) {
            add(std::move(*head));
        } else if (isRule(line)) {
            add(Rule{});
        } else if (line.startsWith(u'>')) {
            readQuote();
        } else if (line.contains(u'|') && m_next + 1 < m_lines.size() &&
                   isTableSeparator(m_lines[m_next + 1])) {
            readTable(line);
        } else if (auto item = listItem(raw)) {
            flushParagraph();
            m_items.push_back(std::move(*item));
            ++m_next;
        } else {
            flushList();
            m_paragraph.append(line.toString());
            ++m_next;
        }
    }

    void readCode(QStringView line, const QString& marker)
    {
        flush();
        Code code;
        if (const QStringView language = trimmed(line.mid(marker.size())); !language.isEmpty())
            code.language = language.toString();
        QStringList text;
        for (++m_next; m_next < m_lines.size(); ++m_next) {
            if (closesFence(trimmed(m_lines[m_next]), marker)) {
                ++m_next;
                break;
            }
            text.append(m_lines[m_next].toString());
        }
        code.text = text.join(u'\n');
        m_blocks.emplace_back(std::move(code));
    }

    void readQuote()
    {
        flush();
        QStringList text;
        for (; m_next < m_lines.size(); ++m_next) {
            QStringView line = trimmed(m_lines[m_next]);
            if (!line.startsWith(u'>'))
                break;
            line = line.mid(1);
            if (line.startsWith(u' '))
                line = line.mid(1);
            text.append(line.toString());
        }
        m_blocks.emplace_back(Quote{text.join(u'\n')});
    }

    void readTable(QStringView line)
    {
        flush();
        Table table{cells(line), {}};
        for (m_next += 2; m_next < m_lines.size() && m_lines[m_next].contains(u'|'); ++m_next)
            table.rows.push_back(cells(m_lines[m_next]));
        m_blocks.emplace_back(std::move(table));
    }

    void add(MarkdownBlock block)
    {
        flush();
        m_blocks.push_back(std::move(block));
        ++m_next;
    }

    void flushParagraph()
    {
        if (m_paragraph.isEmpty())
            return;
        m_blocks.emplace_back(Paragraph{m_paragraph.join(u'\n')});
        m_paragraph.clear();
    }

    void flushList()
    {
        if (m_items.empty())
            return;
        m_blocks.emplace_back(List{std::move(m_items)});
        m_items.clear();
    }

    void flush()
    {
        flushParagraph();
        flushList();
    }

    QStringView m_text;
    QList<QStringView> m_lines;
    qsizetype m_next = 0;
    QStringList m_paragraph;
    std::vector<ListItem> m_items;
    std::vector<MarkdownBlock> m_blocks;
    Settled m_settled;
};

} // namespace

std::vector<MarkdownBlock> blocks(const QString& text)
{
    return BlockReader(text).read();
}

std::vector<MarkdownBlock> blocksBehind(Settled& settled, const QString& text)
{
    BlockReader reader(QStringView(text).mid(settled.length));
    std::vector<MarkdownBlock> blocks = reader.read();
    settled.length += reader.settled().length;
    settled.blocks += reader.settled().blocks;
    return blocks;
}

std::optional<QString> fenceMarker(QStringView line)
{
    if (line.isEmpty() || (line[0] != u'`' && line[0] != u'~'))
        return std::nullopt;
    qsizetype length = 1;
    while (length < line.size() && line[length] == line[0])
        ++length;
    return length >= 3 ? std::optional(line.first(length).toString()) : std::nullopt;
}

std::optional<Heading> heading(QStringView line)
{
    qsizetype level = 0;
    while (level < line.size() && line[level] == u'#')
        ++level;
    if (level < 1 || level > 6 || level >= line.size() || !isBlank(line[level]))
        return std::nullopt;
    QStringView text = trimmed(line.mid(level));
    while (text.endsWith(u'#'))
        text.chop(1);
    return Heading{int(level), trimmed(text).toString()};
}

bool isTableSeparator(QStringView line)
{
    const QStringView ends = trimmed(line);
    bool hasDash = false;
    bool hasBar = ends.startsWith(u':') || ends.endsWith(u':');
    for (const QChar c : ends) {
        if (c == u'-')
            hasDash = true;
        else if (c == u'|')
            hasBar = true;
        else if (c != u':' && !isBlank(c))
            return false;
    }
    return hasDash && hasBar;
}

QStringList cells(QStringView line)
{
    line = trimmed(line);
    if (line.startsWith(u'|'))
        line = line.mid(1);
    if (line.endsWith(u'|'))
        line.chop(1);
    QStringList cells;
    for (const QStringView cell : line.split(u'|'))
        cells.append(trimmed(cell).toString());
    return cells;
}

std::optional<ListItem> listItem(QStringView line)
{
    qsizetype start = 0;
    qsizetype indent = 0;
    for (; start < line.size() && (line[start] == u' ' || line[start] == u'\t'); ++start)
        indent += line[start] == u'\t' ? 4 : 1;
    QStringView rest = line.mid(start);

    ListItem item;
    item.depth = int(std::min<qsizetype>(indent / 2, 4));
    qsizetype digits = 0;
    while (digits < rest.size() && isDigit(rest[digits]))
        ++digits;
    if (digits + 1 >= rest.size() || rest[digits + 1] != u' ')
        return std::nullopt;
    const QChar mark = rest[digits];
    if (digits > 0 && (mark == u'.' || mark == u')'))
        item.marker = rest.first(digits).toString() + u'.';
    else if (digits > 0 || (mark != u'-' && mark != u'*' && mark != u'+'))
        return std::nullopt;

    rest = rest.mid(digits + 2);
    if (rest.startsWith(u"[ ] ") || rest.startsWith(u"[x] ") || rest.startsWith(u"[X] ")) {
        item.checked = rest[1] != u' ';
        rest = rest.mid(4);
    }
    item.text = trimmed(rest).toString();
    return item;
}

} // namespace Bralto::MarkdownParser
