#include "Platform/TcpTable.h"

#include <array>
#include <charconv>
#include <optional>
#include <string_view>

namespace Bralto::TcpTable {

namespace {

// Columns: number, local address, remote address, state, queues, timer, retransmits, owner,
// timeout, inode.
constexpr std::size_t LocalAddress = 1;
constexpr std::size_t State = 3;
constexpr std::size_t Inode = 9;
constexpr std::string_view Listening = "0A";

using Columns = std::array<std::string_view, Inode + 1>;

std::optional<Columns> columns(std::string_view line)
{
    Columns result;
    for (std::string_view& column : result) {
        const std::size_t start = line.find_first_not_of(' ');
        if (start == std::string_view::npos)
            return std::nullopt;
        line.remove_prefix(start);
        column = line.substr(0, line.find(' '));
        line.remove_prefix(column.size());
    }
    return result;
}

template <typename Number>
std::optional<Number> number(std::string_view text, int base)
{
    Number value{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value, base);
    return error == std::errc{} && end == text.data() + text.size() ? std::optional(value)
                                                                    : std::nullopt;
}

} // namespace

std::vector<Listener> listeners(QByteArrayView table)
{
    std::vector<Listener> result;
    std::string_view rest(table.data(), std::size_t(table.size()));
    while (!rest.empty()) {
        const std::string_view line = rest.substr(0, rest.find('\n'));
        rest.remove_prefix(std::min(rest.size(), line.size() + 1));
        const auto found = columns(line);
        if (!found || (*found)[State] != Listening)
            continue;
        const std::string_view address = (*found)[LocalAddress];
        const std::size_t colon = address.rfind(':');
        if (colon == std::string_view::npos)
            continue;
        const auto port = number<quint16>(address.substr(colon + 1), 16);
        const auto inode = number<quint64>((*found)[Inode], 10);
        if (port && inode)
            result.push_back({*inode, int(*port)});
    }
    return result;
}

} // namespace Bralto::TcpTable
