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
    QStringList numbers;
    numbers.reserve(last);
    for (int number = 1; number <= last; ++number)
        numbers.append(QString::number(number) + (number == last ? u"." : u", "));
    co_await turn.sayPieces(numbers, 200ms);
}

} // namespace DemoAgent::Behaviours
