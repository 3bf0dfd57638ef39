#include "Chat/ChatTimestamp.h"

#include <QDate>
#include <QTime>

namespace Bralto::ChatTimestamp {

namespace {

/// Takes a text apart from its front; one mistake, and everything after it fails too.
class Scanner {
public:
    explicit Scanner(std::string_view text)
        : m_rest(text)
    {
    }

    int digits(std::size_t count)
    {
        int value = 0;
        for (std::size_t at = 0; at < count; ++at)
            value = value * 10 + nextDigit();
        return value;
    }

    /// A fraction of a second with any number of digits, in whole milliseconds.
    int milliseconds()
    {
        int value = digits(1) * 100;
        for (int weight = 10; !m_rest.empty() && isDigit(m_rest.front()); weight /= 10)
            value += nextDigit() * weight;
        return value;
    }

    void expect(char character)
    {
        if (!take(character))
            m_failed = true;
    }

    bool take(char character)
    {
        if (m_rest.empty() || m_rest.front() != character)
            return false;
        m_rest.remove_prefix(1);
        return true;
    }

    [[nodiscard]] bool isDone() const { return !m_failed && m_rest.empty(); }

private:
    static bool isDigit(char character) { return character >= '0' && character <= '9'; }

    int nextDigit()
    {
        if (m_rest.empty() || !isDigit(m_rest.front())) {
            m_failed = true;
            return 0;
        }
        const int digit = m_rest.front() - '0';
        m_rest.remove_prefix(1);
        return digit;
    }

    std::string_view m_rest;
    bool m_failed = false;
};

/// Minutes east of Greenwich.
int zone(Scanner& scanner)
{
    if (scanner.take('Z'))
        return 0;
    const bool isWest = scanner.take('-');
    if (!isWest)
        scanner.expect('+');
    const int hours = scanner.digits(2);
    scanner.take(':');
    const int minutes = hours * 60 + scanner.digits(2);
    return isWest ? -minutes : minutes;
}

} // namespace

std::optional<QDateTime> parse(std::string_view text)
{
    Scanner scanner(text);
    const int year = scanner.digits(4);
    scanner.expect('-');
    const int month = scanner.digits(2);
    scanner.expect('-');
    const QDate date(year, month, scanner.digits(2));
    scanner.expect('T');
    const int hour = scanner.digits(2);
    scanner.expect(':');
    const int minute = scanner.digits(2);
    scanner.expect(':');
    const int second = scanner.digits(2);
    const QTime time(hour, minute, second, scanner.take('.') ? scanner.milliseconds() : 0);
    const int minutesEast = zone(scanner);
    if (!scanner.isDone() || !date.isValid() || !time.isValid())
        return std::nullopt;
    return QDateTime(date, time, Qt::UTC).addSecs(-60 * qint64(minutesEast));
}

} // namespace Bralto::ChatTimestamp
