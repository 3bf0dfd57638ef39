// The executable's command-line part alone, as `main` calls it. 77 where the application would
// start.
#include "Launch/BraltoCommandLine.h"

int main(int argc, char** argv)
{
    QStringList arguments;
    for (int index = 0; index < argc; ++index)
        arguments.append(QString::fromLocal8Bit(argv[index]));
    return Bralto::BraltoCommandLine::handle(arguments).value_or(77);
}
