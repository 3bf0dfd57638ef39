#include <QApplication>

#include <gtest/gtest.h>

#ifdef __SANITIZE_ADDRESS__
#include <sanitizer/lsan_interface.h>
#endif

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    testing::InitGoogleTest(&argc, argv);
    const int status = RUN_ALL_TESTS();
#ifdef __SANITIZE_ADDRESS__
    // Looked for while the toolkit's plugins are loaded: afterwards what they keep has no name.
    __lsan_do_leak_check();
#endif
    return status;
}
