/// @file
/// How long an agent's tools take on real pages of the test site, without the way through the
/// socket: medians and 95th percentiles in milliseconds, and the length of the answers.
///
/// With `--serve HOME FOLDER` it is the window of the project in FOLDER for `bralto --mcp` instead,
/// until its input ends, and prints the address of the site; see Tools/scripts/tool-race.mjs.

#include "Browser/BrowserController.h"
#include "Browser/ControlServer.h"
#include "Browser/ControlSocket.h"
#include "Platform/QtScheduler.h"
#include "Platform/SystemClock.h"
#include "Tests/Support/FakeBrowserTabs.h"
#include "Tests/Support/SiteServer.h"
#include "Web/WebEngines.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QSocketNotifier>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>

using namespace Bralto;

namespace {

class Driver {
public:
    ToolOutput run(const QString& tool, const QJsonObject& arguments)
    {
        QEventLoop loop;
        std::optional<ToolOutput> output;
        m_controller.run(tool, arguments, [&](ToolOutput told) {
            output = std::move(told);
            loop.quit();
        });
        if (!output)
            loop.exec();
        return *output;
    }

    void open(const QString& path)
    {
        run(QStringLiteral("open"), {{QStringLiteral("url"), m_site.url(path).toString()},
                                     {QStringLiteral("newTab"), false}});
    }

    /// With `fresh`, of a page that is loaded anew before each round.
    void measure(const char* what, int rounds, const QString& tool, const QJsonObject& arguments,
                 const QString& fresh = {})
    {
        std::vector<double> times;
        qsizetype size = 0;
        for (int round = -2; round < rounds; ++round) {
            if (!fresh.isEmpty())
                open(fresh);
            QElapsedTimer timer;
            timer.start();
            const ToolOutput output = run(tool, arguments);
            // The first two make things that last.
            if (round >= 0)
                times.push_back(double(timer.nsecsElapsed()) / 1e6);
            size = ControlMessage::encodeResponse(output.content, output.isError).size();
            if (output.isError)
                std::printf("%s failed\n", what);
        }
        std::ranges::sort(times);
        std::printf("%-34s %8.1f %8.1f %10lld\n", what, times[times.size() / 2],
                    times[times.size() * 95 / 100], static_cast<long long>(size));
    }

    /// Answers agents until the standard input ends.
    int serve(const QString& home, const QString& folder)
    {
        const QString directory = home + "/Library/Application Support/Bralto/control";
        QObject context;
        ControlServer server(
            ControlSocket::path(directory, folder),
            [this, &context](const QByteArray& request, const ControlServer::Answer& answer) {
                QMetaObject::invokeMethod(
                    &context, [this, request, answer] { m_controller.respond(request, answer); },
                    Qt::QueuedConnection);
            });
        if (ControlSocket::prepareDirectory(directory) || server.start())
            return 1;
        std::printf("%s\n", qPrintable(m_site.url().toString()));
        std::fflush(stdout);
        QSocketNotifier input(0, QSocketNotifier::Read);
        QObject::connect(&input, &QSocketNotifier::activated, qApp, &QCoreApplication::quit);
        return QCoreApplication::exec();
    }

private:
    SiteServer m_site{QStringLiteral(TEST_SITE)};
    QtScheduler m_scheduler;
    SystemClock m_clock;
    WebEngines m_engines{PageProfile{}};
    FakeBrowserTabs m_tabs{{.pages = &m_engines, .clock = &m_clock}};
    BrowserController m_controller{m_tabs, m_scheduler, m_clock};
};

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qunsetenv("DISPLAY");
    const QTemporaryDir home;
    for (const char* name : {"HOME", "XDG_CACHE_HOME", "XDG_DATA_HOME", "XDG_RUNTIME_DIR"})
        qputenv(name, home.path().toLocal8Bit());
    QCoreApplication::setAttribute(Qt::AA_ShareOpenGLContexts);
    const QApplication application(argc, argv);

    Driver driver;
    if (argc == 4 && QByteArray(argv[1]) == "--serve")
        return driver.serve(QString::fromLocal8Bit(argv[2]), QString::fromLocal8Bit(argv[3]));
    std::printf("%-34s %8s %8s %10s\n", "tool", "median", "95 %", "bytes");
    driver.open("/controls.html");
    driver.measure("tabs", 50, "tabs", {});
    driver.measure("evaluate 1+1", 50, "evaluate", {{"expression", "1+1"}});
    driver.measure("snapshot of a small page", 50, "snapshot", {});
    driver.measure("scroll", 20, "scroll", {{"dy", 10}});
    driver.measure("click (250 ms are its wait)", 10, "click", {{"selector", "#free"}});
    driver.measure("type (250 ms are its wait)", 10, "type",
                   {{"selector", "#free"}, {"text", "hello"}});
    driver.measure("press (250 ms are its wait)", 10, "press",
                   {{"selector", "#free"}, {"key", "a"}});
    driver.measure("screenshot 1280x800", 20, "screenshot", {});
    driver.open("/large.html?5000");
    driver.measure("snapshot of 5,000 elements", 20, "snapshot", {});
    driver.measure("the same, right after its load", 10, "snapshot", {}, "/large.html?5000");
    driver.measure("the same, all of it", 20, "snapshot", {{"maxChars", 200000}});
    driver.measure("screenshot of it", 20, "screenshot", {});
    driver.open("/large.html?50000");
    driver.measure("snapshot of 50,000 elements", 10, "snapshot", {});
    driver.measure("the same, right after its load", 5, "snapshot", {}, "/large.html?50000");
    return 0;
}
