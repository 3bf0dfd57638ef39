#include "Views/Chat/ChatCanvas.h"

#include "Views/Kit/Fonts.h"
#include "Views/Kit/TextLine.h"

#include <QFontMetricsF>

#include <cmath>

namespace Bralto {

namespace {

/// Inline code is a little smaller than its text, and stands on a ground with room at both sides.
constexpr double CodeScale = 0.89;
constexpr double CodePadding = 4;
constexpr double CodeRadius = 4;
constexpr double Unbounded = 1e6;

QTextLayout::FormatRange range(qsizetype start, qsizetype length, const QTextCharFormat& format)
{
    QTextLayout::FormatRange range;
    range.start = int(start);
    range.length = int(length);
    range.format = format;
    return range;
}

} // namespace

QFont ChatCanvas::font(TextRole role) const
{
    return Bralto::font(role, m_style.zoom);
}

double ChatCanvas::lineHeight(TextRole role) const
{
    return Bralto::lineHeight(role, m_style.zoom);
}

double ChatCanvas::width(TextRole role, const QString& text) const
{
    return TextLine::width(role, text, m_style.zoom);
}

void ChatCanvas::fill(const QRectF& rect, double radius, const QColor& ground, const QColor& edge)
{
    m_scene.fills.push_back({rect, radius, ground, edge, true});
}

void ChatCanvas::fillTop(const QRectF& rect, double radius, const QColor& ground)
{
    m_scene.fills.push_back({rect, radius, ground, {}, false});
}

void ChatCanvas::frame(const QRectF& rect, double radius, const QColor& edge)
{
    m_scene.frames.push_back({rect, radius, {}, edge, true});
}

void ChatCanvas::symbol(const QRectF& rect, const QString& name, const QColor& ink)
{
    m_scene.symbols.push_back({rect, name, ink});
}

void ChatCanvas::mark(const QRectF& rect, ChatToolStatus status)
{
    m_scene.marks.push_back({rect, status});
}

void ChatCanvas::picture(ChatScene::Picture picture)
{
    m_scene.pictures.push_back(std::move(picture));
}

void ChatCanvas::hot(ChatScene::Hot hot)
{
    m_scene.hots.push_back(std::move(hot));
}

ChatCanvas::Laid ChatCanvas::layOut(const ChatText& text, double width) const
{
    const QFont face = font(text.role);
    const double lineHeight = text.lineHeight > 0 ? text.lineHeight : this->lineHeight(text.role);
    const QFontMetricsF metrics(face);
    const double baseline = std::round((lineHeight - metrics.height()) / 2 + metrics.ascent());

    QString words = text.text;
    words.replace(u'\n', QChar::LineSeparator);
    auto layout = std::make_shared<QTextLayout>(words, face);
    QTextOption option;
    option.setWrapMode(text.breaksAnywhere ? QTextOption::WrapAnywhere
                                           : QTextOption::WrapAtWordBoundaryOrAnywhere);
    option.setTabStopDistance(metrics.horizontalAdvance(u' ') * 4);
    layout->setTextOption(option);
    QTextCharFormat base;
    base.setForeground(text.ink);
    QList<QTextLayout::FormatRange> formats{range(0, words.size(), base)};
    formats.append(text.formats);
    layout->setFormats(formats);
    layout->setCacheEnabled(true);

    Laid laid{layout, 0, 0};
    layout->beginLayout();
    for (QTextLine line = layout->createLine(); line.isValid(); line = layout->createLine()) {
        line.setLineWidth(std::max(1.0, width));
        line.setPosition({0, laid.height + baseline - line.ascent()});
        laid.height += lineHeight;
        laid.naturalWidth = std::max(laid.naturalWidth, line.naturalTextWidth());
    }
    layout->endLayout();
    laid.height = std::max(laid.height, lineHeight);
    return laid;
}

/// Fills behind the inline code of a text: one for each line that it reaches over.
void ChatCanvas::groundCode(const ChatText& text, const QTextLayout& layout, const QPointF& at)
{
    const double padding = u(CodePadding);
    for (const auto& [start, length] : text.codes) {
        for (int i = 0; i < layout.lineCount(); ++i) {
            const QTextLine line = layout.lineAt(i);
            const int from = std::max(start, line.textStart());
            const int to = std::min(start + length, line.textStart() + line.textLength());
            if (from >= to)
                continue;
            const double left = line.cursorToX(from);
            const double right = line.cursorToX(to);
            const double middle = line.y() + line.ascent() - u(4.5);
            const double height = u(18);
            // The last letter carries the room at the right in its own advance.
            const double trailing = to == start + length ? 0 : padding;
            fill(QRectF(left - padding, middle - height / 2, right - left + padding + trailing,
                        height)
                     .translated(at),
                 u(CodeRadius), tokens().codeBackground);
        }
    }
}

double ChatCanvas::text(const ChatText& text, const QPointF& at, double width)
{
    Laid laid = layOut(text, width);
    groundCode(text, *laid.layout, at);
    m_scene.texts.push_back({std::move(laid.layout), at, width, laid.height, text.isSelectable,
                             text.separator, text.links});
    return laid.height;
}

double ChatCanvas::naturalWidth(const ChatText& text) const
{
    return std::ceil(layOut(text, Unbounded).naturalWidth);
}

double ChatCanvas::line(TextRole role, const QColor& ink, const QString& text, const QRectF& rect,
                        Qt::TextElideMode elide, Qt::Alignment align)
{
    const QFontMetricsF metrics(font(role));
    QString words = TextLine::flattened(text);
    double needed = metrics.horizontalAdvance(words);
    if (needed > rect.width() + 0.5) {
        words = metrics.elidedText(words, elide, rect.width());
        needed = metrics.horizontalAdvance(words);
    }
    ChatText single;
    single.text = words;
    single.role = role;
    single.ink = ink;
    single.isSelectable = false;
    single.lineHeight = rect.height();
    const double left = align & Qt::AlignRight     ? rect.right() - needed
                        : align & Qt::AlignHCenter ? rect.center().x() - needed / 2
                                                   : rect.left();
    Laid laid = layOut(single, Unbounded);
    m_scene.texts.push_back(
        {std::move(laid.layout), {left, rect.top()}, needed, rect.height(), false, {}, {}});
    return needed;
}

ChatText ChatCanvas::styled(const std::vector<InlineRun>& runs, TextRole role,
                            const QColor& ink) const
{
    ChatText text;
    text.role = role;
    text.ink = ink;
    const QFont face = font(role);
    QFont code = font(TextRole::Code);
    code.setPointSizeF(face.pointSizeF() * CodeScale);

    QFont before = face;
    for (const InlineRun& run : runs) {
        const qsizetype start = text.text.size();
        text.text += run.text;
        QTextCharFormat format;
        QFont runFace = run.code ? code : face;
        if (run.bold && face.weight() < QFont::DemiBold)
            runFace.setWeight(QFont::DemiBold);
        runFace.setItalic(run.italic);
        runFace.setStrikeOut(run.strike);
        if (run.bold || run.italic || run.strike || run.code)
            format.setFont(runFace);

        std::optional<ChatAction> action;
        if (!run.link.isEmpty()) {
            action = ChatAction{ChatAction::Kind::OpenUrl, run.link, {}};
        } else if (run.code && m_style.findFile) {
            if (const auto path = m_style.findFile(run.text))
                action = ChatAction{ChatAction::Kind::OpenFile, *path, {}};
        }
        if (action) {
            format.setForeground(tokens().accentInk);
            text.links.push_back({int(start), int(run.text.size()), *action});
        }
        if (!format.isEmpty())
            text.formats.append(range(start, run.text.size(), format));
        if (run.code && !run.text.isEmpty()) {
            text.codes.emplace_back(int(start), int(run.text.size()));
            // Room for the ground: the letter before and the last letter are set wider.
            const auto widen = [&](qsizetype position, QFont spaced) {
                spaced.setLetterSpacing(QFont::AbsoluteSpacing, u(CodePadding));
                QTextCharFormat wide;
                wide.setFont(spaced);
                if (action && position >= start)
                    wide.setForeground(tokens().accentInk);
                text.formats.append(range(position, 1, wide));
            };
            if (start > 0 && text.text[start - 1] != u'\n' &&
                !text.text[start - 1].isLowSurrogate())
                widen(start - 1, before);
            if (!text.text.back().isLowSurrogate())
                widen(text.text.size() - 1, runFace);
        }
        before = runFace;
    }
    return text;
}

void ChatCanvas::add(ChatScene scene, const QPointF& offset)
{
    const auto move = [&offset](auto& parts) {
        for (auto& part : parts)
            part.rect.translate(offset);
    };
    if (!offset.isNull()) {
        move(scene.fills);
        move(scene.pictures);
        move(scene.frames);
        move(scene.symbols);
        move(scene.marks);
        move(scene.hots);
        for (ChatScene::Text& text : scene.texts)
            text.at += offset;
    }
    const auto append = [](auto& to, auto& from) {
        to.insert(to.end(), std::make_move_iterator(from.begin()),
                  std::make_move_iterator(from.end()));
    };
    append(m_scene.fills, scene.fills);
    append(m_scene.pictures, scene.pictures);
    append(m_scene.frames, scene.frames);
    append(m_scene.symbols, scene.symbols);
    append(m_scene.marks, scene.marks);
    append(m_scene.texts, scene.texts);
    append(m_scene.hots, scene.hots);
}

ChatScene ChatCanvas::take(double height)
{
    m_scene.height = height;
    return std::exchange(m_scene, {});
}

} // namespace Bralto
