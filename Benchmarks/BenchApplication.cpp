#include "Benchmarks/BenchApplication.h"

#include <QApplication>

namespace Bralto {

QApplication& benchApplication()
{
    static int argc = 1;
    static char name[] = "bralto-bench";
    static char* argv[] = {name, nullptr};
    static const bool hasNoScreen = qputenv("QT_QPA_PLATFORM", "offscreen");
    static QApplication application(argc, argv);
    Q_UNUSED(hasNoScreen);
    return application;
}

} // namespace Bralto
