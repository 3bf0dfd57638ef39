#include "DemoAgent/Behaviours/Behaviours.h"

#include <algorithm>

namespace DemoAgent::Behaviours {

using namespace std::chrono_literals;

Task<> count(Turn& turn, QString words)
{
    constexpr int Usual = 50;
    constexpr int Most = 1000000;
    bool isNumber = false;
    const int asked = words.section(u' ', 0, 0).toInt(&isNumber);
    const int last = isNumber ? std::clamp(asked, 1, Most) : Usual;
    co_await turn.openText();
    for (int number = 1; number <= last; ++number) {
        const QString piece = QString::number(number) + (number == last ? u"." : u", ");
        co_await turn.addText(piece, 200ms);
    }
    turn.endText();
}

} // namespace DemoAgent::Behaviours
