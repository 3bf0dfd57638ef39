#include "Views/Terminal/TerminalLinks.h"

#include "Views/Kit/TextLine.h"

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSysInfo>
#include <QUrl>

#include <algorithm>
#include <limits>

namespace Bralto::TerminalLinks {

namespace {

constexpr qsizetype LongestAddress = 8192;
constexpr qsizetype LongestTip = 400;

bool isThisComputer(const QString& host)
{
    return host.isEmpty() || host.compare(QLatin1String("localhost"), Qt::CaseInsensitive) == 0 ||
           host.compare(QSysInfo::machineHostName(), Qt::CaseInsensitive) == 0;
}

bool hasControls(const QString& text)
{
    return std::ranges::any_of(text, [](QChar c) { return c.category() == QChar::Other_Control; });
}

/// A number from 1; 0 if it is none or too large.
int place(const QString& digits)
{
    bool isNumber = false;
    const int value = digits.toInt(&isNumber);
    return isNumber && value > 0 ? value : 0;
}

/// A path as it is written, with the place in the file behind it cut off.
FilePlace parsed(const QString& text)
{
    // "file:12", "file:12:5", "file(12)", "file(12,5)"
    static const QRegularExpression withPlace(
        QStringLiteral(R"(^(.+?)(?::(\d+)(?::(\d+))?|\((\d+)(?:, ?(\d+))?\)):?$)"));
    const QRegularExpressionMatch match = withPlace.match(text);
    if (!match.hasMatch())
        return {text};
    const int group = match.capturedLength(2) > 0 ? 2 : 4;
    const int line = place(match.captured(group));
    return {match.captured(1), line, line > 0 ? place(match.captured(group + 1)) : 0};
}

QStringList absolutePaths(const QString& path, const Folders& folders)
{
    if (path == QLatin1String("~") || path.startsWith(QLatin1String("~/")))
        return {folders.home + path.mid(1)};
    if (path.startsWith(u'/'))
        return {path};
    QStringList paths;
    for (const QString& folder : folders.current)
        paths.append(folder + u'/' + path);
    // What lists changes puts "a/" and "b/" before the paths.
    if (path.startsWith(QLatin1String("a/")) || path.startsWith(QLatin1String("b/"))) {
        for (const QString& folder : folders.current)
            paths.append(folder + path.mid(1));
    }
    return paths;
}

std::vector<FilePlace> filePlaces(const QString& text, const Folders& folders)
{
    std::vector<FilePlace> places;
    const auto add = [&](const FilePlace& found) {
        for (const QString& path : absolutePaths(found.path, folders)) {
            const FilePlace candidate{QDir::cleanPath(path), found.line, found.column};
            if (std::ranges::find(places, candidate) == places.end())
                places.push_back(candidate);
        }
    };
    // A name may hold anything, so the whole text comes first, and what a sentence adds goes last.
    const QString whole = text.trimmed();
    QString bare = whole;
    while (!bare.isEmpty() && QStringLiteral(".,:;!?'\")]}>").contains(bare.back()))
        bare.chop(1);
    for (const QString& written : {whole, bare}) {
        if (written.isEmpty())
            continue;
        add({written});
        add(parsed(written));
    }
    // "main.cpp:12:5: error" may go on with words.
    const qsizetype blank = whole.indexOf(u' ');
    if (blank > 0)
        add(parsed(whole.left(blank)));
    return places;
}

} // namespace

QString localPath(const QString& address)
{
    if (address.startsWith(u'/'))
        return address;
    const QUrl url(address, QUrl::StrictMode);
    if (url.scheme() != QLatin1String("file") || !isThisComputer(url.host()))
        return {};
    return url.path(QUrl::FullyDecoded);
}

std::optional<Target> target(const QString& text, const Folders& folders)
{
    if (text.isEmpty() || text.size() > LongestAddress || hasControls(text))
        return std::nullopt;
    static const QRegularExpression withScheme(
        QStringLiteral("^([A-Za-z][A-Za-z0-9+.-]*):(?=//|[^0-9/\\\\ ]|$)"));
    const QRegularExpressionMatch match = withScheme.match(text);
    const QString scheme = match.captured(1).toLower();
    if (scheme == QLatin1String("http") || scheme == QLatin1String("https")) {
        const QUrl url(text);
        return url.isValid() && !url.host().isEmpty() ? std::optional<Target>(text) : std::nullopt;
    }
    if (scheme == QLatin1String("mailto"))
        return QUrl(text).path().isEmpty() ? std::nullopt : std::optional<Target>(text);
    if (text.startsWith(QLatin1String("file:"), Qt::CaseInsensitive)) {
        const QUrl url(text);
        const QString path = url.path(QUrl::FullyDecoded);
        if (!isThisComputer(url.host()) || !path.startsWith(u'/'))
            return std::nullopt;
        std::vector<FilePlace> places = filePlaces(path, folders);
        // "#L12" is how pages name a line.
        if (const QString fragment = url.fragment(); fragment.startsWith(u'L')) {
            const int line = place(fragment.mid(1));
            places.insert(places.begin(), {QDir::cleanPath(path), line, 0});
        }
        return places;
    }
    // Of other schemes nothing is known. A name with a colon may be a path.
    if (match.hasMatch() && text.contains(QLatin1String("://")))
        return std::nullopt;
    std::vector<FilePlace> places = filePlaces(text, folders);
    return places.empty() ? std::nullopt : std::optional<Target>(std::move(places));
}

std::optional<FilePlace> existing(const std::vector<FilePlace>& places)
{
    for (const FilePlace& each : places) {
        if (QFileInfo::exists(each.path))
            return each;
    }
    return std::nullopt;
}

QString shownText(const Kovalt::Terminal& terminal, const Kovalt::LinkMatch& link)
{
    const Kovalt::Buffer& buffer = terminal.buffer();
    std::string text;
    for (const Kovalt::LinkMatch::RowRange& range : link.rowRanges) {
        for (int col = range.first; col < range.last; ++col) {
            const Kovalt::CharData cell = buffer.getCharAtBufferRelative({col, range.row});
            if (cell.width != 0)
                terminal.graphemes().appendText(text, cell.code);
        }
    }
    return QString::fromStdString(text).trimmed();
}

QString tip(const Kovalt::Terminal& terminal, const Kovalt::LinkMatch& link)
{
    if (!link.isExplicit)
        return {};
    const QString address = TextLine::flattened(QString::fromStdString(link.text));
    if (address == shownText(terminal, link))
        return {};
    return address.size() > LongestTip ? address.left(LongestTip) + u'…' : address;
}

} // namespace Bralto::TerminalLinks
