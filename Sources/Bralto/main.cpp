#include "Launch/BraltoCommandLine.h"
#include "Launch/DesktopLibrary.h"
#include "Launch/ProjectHandover.h"
#include "Platform/MainBundle.h"

#include <QFileInfo>
#include <QStringList>

#include <cstdio>

int main(int argc, char** argv)
{
    using namespace Bralto;

    QStringList arguments;
    for (int index = 0; index < argc; ++index)
        arguments.append(QString::fromLocal8Bit(argv[index]));
    if (const auto status = BraltoCommandLine::handle(arguments))
        return *status;

    const QString executable = MainBundle::executable();
    const LaunchRole role = MainBundle::role(executable);
    if (const auto project = ProjectHandover::request(role, arguments.mid(1))) {
        const QString reason = ProjectHandover::replaceProcess(role, *project);
        std::fprintf(stderr, "Couldn’t open %s: %s\n", qUtf8Printable(project->folder),
                     qUtf8Printable(reason));
        return 1;
    }

    const auto entry =
        DesktopLibrary::load(DesktopLibrary::candidates(role, QFileInfo(executable).path()));
    if (!entry) {
        std::fprintf(stderr, "Couldn’t load the window library: %s\n",
                     qUtf8Printable(entry.error()));
        return 1;
    }
    return (*entry)(argc, argv);
}
