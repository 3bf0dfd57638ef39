#include "Chat/ChatInline.h"

#include "Base/Paths.h"

#include <QFileInfo>
#include <QHash>
#include <QRegularExpression>

#include <md4c.h>

#include <limits>

namespace Bralto::ChatInline {

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype LongestText = 100000;

/// A white space that never stands in a reply: it keeps line breaks out of the reader, which would
/// else look for blocks behind them.
constexpr char LineBreak = '\v';

/// Stands before the text, so that its first characters are never taken for a block either. An
/// opening parenthesis is the one mark beside which emphasis and bare addresses still begin.
constexpr char Lead = '(';

/// The names that turn up in replies; any other stays as it was written.
QString decodeEntity(QByteArrayView entity)
{
    static const QHash<QByteArray, QString> names{
        {"amp", "&"},      {"lt", "<"},           {"gt", ">"},       {"quot", "\""},
        {"apos", "'"},     {"nbsp", u"\u00A0"_s}, {"copy", u"©"_s},  {"reg", u"®"_s},
        {"trade", u"™"_s}, {"hellip", u"…"_s},    {"mdash", u"—"_s}, {"ndash", u"–"_s},
        {"lsquo", u"‘"_s}, {"rsquo", u"’"_s},     {"ldquo", u"“"_s}, {"rdquo", u"”"_s},
        {"laquo", u"«"_s}, {"raquo", u"»"_s},     {"bull", u"•"_s},  {"middot", u"·"_s},
        {"times", u"×"_s}, {"deg", u"°"_s},       {"rarr", u"→"_s},  {"larr", u"←"_s},
        {"euro", u"€"_s},
    };
    const QByteArray name = entity.sliced(1, entity.size() - 2).toByteArray();
    if (name.startsWith('#')) {
        const bool isHex = name.size() > 1 && (name[1] == 'x' || name[1] == 'X');
        bool isNumber = false;
        const uint code = isHex ? name.mid(2).toUInt(&isNumber, 16) : name.mid(1).toUInt(&isNumber);
        if (!isNumber || code == 0 || code > 0x10FFFF || (code >= 0xD800 && code < 0xE000))
            return QString(QChar::ReplacementCharacter);
        const char32_t character = code;
        return QString::fromUcs4(&character, 1);
    }
    const auto found = names.constFind(name);
    return found != names.constEnd() ? *found : QString::fromUtf8(entity.data(), entity.size());
}

/// Collects what the reader reports. The counters say how many spans of a kind are open.
struct Collector {
    std::vector<InlineRun> runs;
    int bold = 0;
    int italic = 0;
    int code = 0;
    int strike = 0;
    QStringList links;

    void append(const QString& text)
    {
        InlineRun run{text,     bold > 0,   italic > 0,
                      code > 0, strike > 0, links.isEmpty() ? QString() : links.last()};
        if (!runs.empty()) {
            InlineRun& last = runs.back();
            if (last.bold == run.bold && last.italic == run.italic && last.code == run.code &&
                last.strike == run.strike && last.link == run.link) {
                last.text += run.text;
                return;
            }
        }
        runs.push_back(std::move(run));
    }

    void change(MD_SPANTYPE type, void* detail, int step)
    {
        const auto follow = [&](const MD_ATTRIBUTE& target) {
            if (step > 0)
                links.append(QString::fromUtf8(target.text, qsizetype(target.size)));
            else
                links.removeLast();
        };
        switch (type) {
        case MD_SPAN_STRONG:
            bold += step;
            break;
        case MD_SPAN_EM:
            italic += step;
            break;
        case MD_SPAN_CODE:
            code += step;
            break;
        case MD_SPAN_DEL:
            strike += step;
            break;
        case MD_SPAN_A:
            follow(static_cast<MD_SPAN_A_DETAIL*>(detail)->href);
            break;
        case MD_SPAN_IMG:
            follow(static_cast<MD_SPAN_IMG_DETAIL*>(detail)->src);
            break;
        default:
            break;
        }
    }
};

int enterSpan(MD_SPANTYPE type, void* detail, void* collector)
{
    static_cast<Collector*>(collector)->change(type, detail, 1);
    return 0;
}

int leaveSpan(MD_SPANTYPE type, void* detail, void* collector)
{
    static_cast<Collector*>(collector)->change(type, detail, -1);
    return 0;
}

int takeText(MD_TEXTTYPE type, const MD_CHAR* text, MD_SIZE size, void* collector)
{
    auto& target = *static_cast<Collector*>(collector);
    switch (type) {
    case MD_TEXT_NULLCHAR:
        target.append(QString(QChar::ReplacementCharacter));
        break;
    case MD_TEXT_BR:
    case MD_TEXT_SOFTBR:
        target.append(QStringLiteral("\n"));
        break;
    case MD_TEXT_ENTITY:
        target.append(decodeEntity(QByteArrayView(text, qsizetype(size))));
        break;
    default:
        target.append(QString::fromUtf8(text, qsizetype(size)).replace(LineBreak, u'\n'));
        break;
    }
    return 0;
}

int ignoreBlock(MD_BLOCKTYPE, void*, void*)
{
    return 0;
}

} // namespace

std::vector<InlineRun> runs(const QString& text)
{
    if (text.isEmpty())
        return {};
    if (text.size() > LongestText)
        return {InlineRun{text, false, false, false, false, {}}};

    QByteArray source = text.toUtf8();
    source.replace(LineBreak, ' ').replace('\n', LineBreak).replace('\r', ' ').prepend(Lead);
    MD_PARSER parser{};
    parser.flags = MD_FLAG_NOHTML | MD_FLAG_STRIKETHROUGH | MD_FLAG_PERMISSIVEURLAUTOLINKS |
                   MD_FLAG_PERMISSIVEWWWAUTOLINKS | MD_FLAG_NOINDENTEDCODEBLOCKS;
    parser.enter_block = ignoreBlock;
    parser.leave_block = ignoreBlock;
    parser.enter_span = enterSpan;
    parser.leave_span = leaveSpan;
    parser.text = takeText;

    Collector collector;
    const int failure = md_parse(source.constData(), MD_SIZE(source.size()), &parser, &collector);
    std::vector<InlineRun>& runs = collector.runs;
    if (failure != 0 || runs.empty() || !runs.front().text.startsWith(QLatin1Char(Lead)))
        return {InlineRun{text, false, false, false, false, {}}};
    runs.front().text.remove(0, 1);
    if (runs.front().text.isEmpty())
        runs.erase(runs.begin());
    return std::move(runs);
}

QString plainText(const std::vector<InlineRun>& runs)
{
    QString text;
    for (const InlineRun& run : runs)
        text += run.text;
    return text;
}

std::optional<QString> fileURL(const QString& text, const QString& folder)
{
    static const QRegularExpression lineReference(QStringLiteral(":\\d+(:\\d+)?$"));
    QString path = text.trimmed();
    if (path.isEmpty() || path.size() >= 300 || path.contains(u' ') ||
        (!path.contains(u'.') && !path.contains(u'/')))
        return std::nullopt;
    path.remove(lineReference);
    if (!path.startsWith(u'/'))
        path = folder + u'/' + path;
    const QFileInfo file(path);
    if (!file.exists() || file.isDir())
        return std::nullopt;
    return Paths::standardised(path);
}

} // namespace Bralto::ChatInline
