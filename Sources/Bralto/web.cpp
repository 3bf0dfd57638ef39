#include "Browser/PageProfile.h"
#include "Web/WebEngines.h"

extern "C" __attribute__((visibility("default"))) Bralto::PageEngines*
braltoMakePageEngines(const Bralto::PageProfile& profile)
{
    return new Bralto::WebEngines(profile);
}
