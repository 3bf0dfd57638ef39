#include "Chat/ChatInline.h"
#include "Chat/ChatMarkdown.h"

#include <QString>

#include <cstdint>
#include <cstdlib>

using namespace Bralto;

namespace {

void expect(bool holds)
{
    if (!holds)
        std::abort();
}

struct Check {
    void operator()(const MarkdownBlocks::Heading& block) const
    {
        expect(block.level >= 1 && block.level <= 6);
        readInline(block.text);
    }
    void operator()(const MarkdownBlocks::List& block) const
    {
        expect(!block.items.empty());
        for (const MarkdownBlocks::ListItem& item : block.items) {
            expect(item.depth >= 0 && item.depth <= 4);
            readInline(item.text);
        }
    }
    void operator()(const MarkdownBlocks::Table& block) const
    {
        expect(!block.header.isEmpty());
        for (const QStringList& row : block.rows)
            expect(!row.isEmpty());
    }
    void operator()(const MarkdownBlocks::Paragraph& block) const { readInline(block.text); }
    void operator()(const MarkdownBlocks::Quote& block) const { readInline(block.text); }
    void operator()(const MarkdownBlocks::Code& block) const
    {
        expect(!block.language || !block.language->isEmpty());
    }
    void operator()(const MarkdownBlocks::Rule&) const {}

    static void readInline(const QString& text)
    {
        for (const InlineRun& run : ChatInline::runs(text))
            expect(!run.text.isEmpty());
    }
};

} // namespace

/// Any text, and its first half as it would have streamed in.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QString text = QString::fromUtf8(reinterpret_cast<const char*>(data), qsizetype(size));
    for (const QString& part : {text, text.left(text.size() / 2)}) {
        for (const MarkdownBlock& block : MarkdownParser::blocks(part))
            std::visit(Check{}, block);
    }
    return 0;
}
