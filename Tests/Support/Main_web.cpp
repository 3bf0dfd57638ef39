#include <QApplication>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#ifdef __SANITIZE_ADDRESS__
#include <sanitizer/lsan_interface.h>
#endif

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    // The engine would ask an X server for its graphics.
    qunsetenv("DISPLAY");
    const QTemporaryDir home;
    for (const char* name :
         {"HOME", "XDG_CACHE_HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_RUNTIME_DIR"})
        qputenv(name, home.path().toLocal8Bit());
    QCoreApplication::setAttribute(Qt::AA_ShareOpenGLContexts);
    const QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    testing::InitGoogleTest(&argc, argv);
    const int status = RUN_ALL_TESTS();
#ifdef __SANITIZE_ADDRESS__
    // Looked for while the toolkit's plugins are loaded: afterwards what they keep has no name.
    __lsan_do_leak_check();
#endif
    return status;
}
