// What a project of 100,000 files costs: opening it, and looking at it again with some folders
// open. Only what the tree shows is listed, so the first must cost what an empty project costs.

#include "Benchmarks/BenchApplication.h"
#include "Tests/Support/WorkspaceHarness.h"

#include <benchmark/benchmark.h>

using namespace Bralto;

namespace {

constexpr int FoldersInRoot = 100;
constexpr int ExpandedFolders = 10;

/// A project of 100 folders, each with `filesInFolder` empty files.
class Project {
public:
    explicit Project(int filesInFolder)
    {
        for (int folder = 0; folder < FoldersInRoot; ++folder) {
            desk.makeFolder(QStringLiteral("project/") + name(folder));
            for (int file = 0; file < filesInFolder; ++file)
                QFile(desk.path(name(folder) + QStringLiteral("/file%1.txt").arg(file)))
                    .open(QIODevice::WriteOnly);
        }
    }

    static QString name(int folder) { return QStringLiteral("folder%1").arg(folder); }

    WorkspaceHarness desk;
};

/// The project with `filesInFolder` in each folder, made when it is first asked for.
Project& project(int filesInFolder)
{
    benchApplication();
    if (filesInFolder == 0) {
        static Project empty(0);
        return empty;
    }
    static Project large(filesInFolder);
    return large;
}

/// The children of the root, and of those that are open.
std::size_t listed(const Workspace& workspace)
{
    std::size_t count = 0;
    for (const auto& node : workspace.root()->children()) {
        ++count;
        if (workspace.expandedFolders().contains(node->path()))
            count += node->children().size();
    }
    return count;
}

void openProject(benchmark::State& state)
{
    WorkspaceHarness& desk = project(int(state.range(0))).desk;
    for (auto _ : state) {
        const auto workspace = desk.openProject();
        benchmark::DoNotOptimize(listed(*workspace));
    }
}

void refreshTreeWithOpenFolders(benchmark::State& state)
{
    WorkspaceHarness& desk = project(int(state.range(0))).desk;
    const auto workspace = desk.openProject();
    for (int folder = 0; folder < ExpandedFolders; ++folder)
        workspace->toggleExpanded(desk.path(Project::name(folder)));
    for (auto _ : state) {
        workspace->refreshTree();
        benchmark::DoNotOptimize(listed(*workspace));
    }
    state.counters["shown"] = double(listed(*workspace));
}

} // namespace

BENCHMARK(openProject)
    ->ArgName("files in each of 100 folders")
    ->Arg(0)
    ->Arg(1000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(refreshTreeWithOpenFolders)
    ->ArgName("files in each of 100 folders")
    ->Arg(0)
    ->Arg(1000)
    ->Unit(benchmark::kMillisecond);
