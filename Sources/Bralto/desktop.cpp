#include "App/BraltoApp.h"

extern "C" __attribute__((visibility("default"))) int bralto_desktop_main(int argc, char** argv)
{
    return Bralto::BraltoApp::main(argc, argv);
}
