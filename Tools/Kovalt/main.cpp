#include "Session.h"
#include "StandardStreams.h"

#include <iostream>

int main(int argc, char** argv)
{
    using namespace KovaltTool;
    openStandardStreams();
    const auto parsed = parseOptions({argv + 1, argv + argc});
    if (const auto* ending = std::get_if<Ending>(&parsed)) {
        (ending->status == 0 ? std::cout : std::cerr) << ending->text;
        return ending->status;
    }
    const Options& options = std::get<Options>(parsed);
    auto keys = readKeys(options.send);
    if (!keys) {
        std::cerr << "kovalt: --send has a key that means nothing\n";
        return 2;
    }
    return Session(options, std::move(*keys)).run();
}
