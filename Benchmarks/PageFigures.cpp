// What a page costs: `bralto-page-figures` prints a row a measure. Real pages of the real engine,
// without a screen (unless QT_QPA_PLATFORM names one), from a server in this process.

#include "Tests/Support/PageNotes.h"
#include "Tests/Support/SiteServer.h"
#include "Web/WebEngines.h"

#include <QApplication>

#include <algorithm>
#include <cstdio>

namespace {

using namespace Bralto;
using Clock = std::chrono::steady_clock;

double msSince(Clock::time_point start)
{
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

void print(const char* what, std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    std::printf("%-44s median %8.2f ms   p95 %8.2f ms   (%zu)\n", what, values[values.size() / 2],
                values[values.size() * 95 / 100], values.size());
}

/// The proportional memory of this process and the engine's others, in MB.
double memory()
{
    double total = 0;
    const QStringList processes = QDir(QStringLiteral("/proc")).entryList(QDir::Dirs);
    for (const QString& each : processes) {
        QFile command(QStringLiteral("/proc/%1/cmdline").arg(each));
        QFile rollup(QStringLiteral("/proc/%1/smaps_rollup").arg(each));
        if (!command.open(QIODevice::ReadOnly) || !rollup.open(QIODevice::ReadOnly))
            continue;
        const QByteArray name = command.readAll();
        QFile status(QStringLiteral("/proc/%1/environ").arg(each));
        const bool isOurs =
            each.toLongLong() == QCoreApplication::applicationPid() ||
            (name.contains("QtWebEngineProcess") && status.open(QIODevice::ReadOnly) &&
             status.readAll().contains("BRALTO_FIGURES=" +
                                       QByteArray::number(QCoreApplication::applicationPid())));
        if (!isOurs)
            continue;
        for (const QByteArray& line : rollup.readAll().split('\n'))
            if (line.startsWith("Pss:"))
                total += line.mid(4).trimmed().split(' ').front().toDouble() / 1024;
    }
    return total;
}

template <typename Begin>
double timed(const Begin& begin)
{
    bool isOver = false;
    const auto start = Clock::now();
    begin([&isOver] { isOver = true; });
    QEventLoop loop;
    while (!isOver)
        loop.processEvents(QEventLoop::WaitForMoreEvents);
    return msSince(start);
}

QByteArray article()
{
    QByteArray html = "<!doctype html><title>Article</title>";
    for (int i = 0; i < 300; ++i)
        html += "<h3>Part " + QByteArray::number(i) + "</h3><p>" +
                QByteArray("words and more ").repeated(30) + "</p>";
    return html;
}

} // namespace

int main(int argc, char** argv)
{
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
        qunsetenv("DISPLAY");
    }
    QCoreApplication::setAttribute(Qt::AA_ShareOpenGLContexts);
    const QApplication application(argc, argv);
    qputenv("BRALTO_FIGURES", QByteArray::number(QCoreApplication::applicationPid()));

    SiteServer site;
    site.page(QStringLiteral("/"), article());
    std::printf("%-44s %.0f MB\n", "memory before the first page", memory());

    PageNotes notes;
    WebEngines engines({});
    const auto start = Clock::now();
    const auto page = engines.make(notes);
    std::printf("%-44s %.0f ms\n", "made", msSince(start));
    page->load(site.url());
    spinUntil([&] { return notes.commits == 1 && !page->isLoading(); });
    std::printf("%-44s %.0f ms\n", "first page loaded, from make", msSince(start));
    const double first = timed([&](auto over) {
        page->picture(PageExtent::Visible, [over](const PagePictureResult&) { over(); });
    });
    std::printf("%-44s %.0f ms\n", "its first picture, while hidden", first);
    std::printf("%-44s %.0f MB\n", "memory with one page", memory());

    std::vector<double> calls;
    calls.reserve(1000);
    for (int i = 0; i < 1000; ++i)
        calls.push_back(timed([&](auto over) {
            page->call({QStringLiteral("return await a + 1"), {{QStringLiteral("a"), i}}},
                       std::chrono::seconds(10), [over](const PageScriptResult&) { over(); });
        }));
    print("call", calls);
    std::vector<double> large;
    large.reserve(10);
    for (int i = 0; i < 10; ++i)
        large.push_back(timed([&](auto over) {
            page->call({QStringLiteral("return 'x'.repeat(5e6)"), {}}, std::chrono::seconds(10),
                       [over](const PageScriptResult&) { over(); });
        }));
    print("call that gives 5 MB", large);
    std::vector<double> pictures;
    pictures.reserve(30);
    for (int i = 0; i < 30; ++i)
        pictures.push_back(timed([&](auto over) {
            page->picture(PageExtent::Visible, [over](const PagePictureResult&) { over(); });
        }));
    print("picture of 1280 x 800", pictures);
    std::vector<double> wholes;
    wholes.reserve(5);
    for (int i = 0; i < 5; ++i)
        wholes.push_back(timed([&](auto over) {
            page->picture(PageExtent::Whole, [over](const PagePictureResult&) { over(); });
        }));
    print("picture of the whole page", wholes);
    notes.log.clear();
    const double flood = timed([&](auto over) {
        page->call(
            {QStringLiteral("for (let i = 0; i < 100000; ++i) console.log('line ' + i)"), {}},
            std::chrono::seconds(60), [over](const PageScriptResult&) { over(); });
    });
    std::printf("%-44s %.0f ms, %zu told\n", "100,000 lines to the console", flood,
                notes.log.size());

    std::vector<std::unique_ptr<PageNotes>> moreNotes;
    std::vector<std::unique_ptr<PageEngine>> more;
    for (int i = 0; i < 4; ++i) {
        moreNotes.push_back(std::make_unique<PageNotes>());
        more.push_back(engines.make(*moreNotes.back()));
        PageEngine& each = *more.back();
        std::vector<double> times;
        const auto from = Clock::now();
        each.load(site.url());
        spinUntil([&] { return moreNotes.back()->commits == 1 && !each.isLoading(); });
        std::printf("%-44s %.0f ms\n", "another page loaded", msSince(from));
    }
    std::printf("%-44s %.0f MB\n", "memory with five pages", memory());
    return 0;
}
