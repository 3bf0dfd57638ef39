#include "App/BraltoApp.h"

// NOLINTNEXTLINE(readability-identifier-naming): a symbol that is looked up by its C name.
extern "C" __attribute__((visibility("default"))) int bralto_desktop_main(int argc, char** argv)
{
    return Bralto::BraltoApp::main(argc, argv);
}
