/// @file
/// Terminals in a plain window on a real display, with real programs in them:
///
///     bralto-terminal-window [--panes N] [--grid COLSxROWS] run COMMAND
///     bralto-terminal-window [--grid COLSxROWS] latency|scroll|idle
///     bralto-terminal-window [--panes N] restore
///
/// Writes one JSON object to standard output.

#include "Benchmarks/TerminalModes.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QJsonDocument>
#include <QTextStream>

using namespace Bralto;

namespace {

QJsonObject measure(const QStringList& words, int panes, QSize grid)
{
    const QString mode = words.value(0);
    if (mode == "run" && words.size() == 2)
        return runCommand(words[1], panes, grid);
    if (mode == "latency")
        return measureLatency(grid);
    if (mode == "scroll")
        return measureScrolling(grid);
    if (mode == "idle")
        return measureIdling(grid);
    if (mode == "restore")
        return measureRestoring(panes);
    return {};
}

} // namespace

int main(int argc, char** argv)
{
    const QApplication application(argc, argv);
    QCommandLineParser parser;
    parser.addHelpOption();
    const QCommandLineOption panes("panes", "So many panes.", "count", "1");
    const QCommandLineOption grid("grid", "Columns and rows of a single pane.", "size", "120x40");
    parser.addOptions({panes, grid});
    parser.addPositionalArgument("mode", "run COMMAND, latency, scroll, idle or restore.");
    parser.process(application);

    const QStringList size = parser.value(grid).split('x');
    const QJsonObject result =
        measure(parser.positionalArguments(), std::max(1, parser.value(panes).toInt()),
                QSize(size.value(0).toInt(), size.value(1).toInt()));
    if (result.isEmpty())
        parser.showHelp(2);
    QTextStream(stdout) << QJsonDocument(result).toJson(QJsonDocument::Compact) << Qt::endl;
    return 0;
}
