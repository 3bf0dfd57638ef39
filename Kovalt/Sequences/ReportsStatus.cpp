// What is set (DECRQSS), and what the terminal can do (XTGETTCAP): device-control strings with a
// question in them.

#include "Kovalt/Ascii.h"
#include "Kovalt/Hex.h"
#include "Kovalt/Terminal.h"

namespace Kovalt {

class Terminal::StatusRequest final : public DcsHandler {
public:
    explicit StatusRequest(Terminal& terminal)
        : m_terminal(terminal)
    {
    }

    void hook(std::span<const std::uint8_t> collect, std::span<const std::int32_t>,
              std::uint8_t) override
    {
        m_asksForCapabilities = Ascii::view(collect) == "+";
        m_question.clear();
        m_isTooLong = false;
    }
    void put(std::span<const std::uint8_t> data) override
    {
        m_isTooLong = m_isTooLong || data.size() > LongestQuestion - m_question.size();
        if (!m_isTooLong)
            m_question += Ascii::view(data);
    }
    void unhook() override
    {
        if (m_asksForCapabilities)
            answerCapabilities();
        else
            answerSetting();
    }

private:
    static constexpr std::size_t LongestQuestion = 4096;

    [[nodiscard]] std::optional<std::string> setting() const;
    void answerSetting() const;
    [[nodiscard]] std::optional<std::string> capability(std::string_view name) const;
    void answerCapabilities() const;

    Terminal& m_terminal;
    std::string m_question;
    bool m_asksForCapabilities = false;
    bool m_isTooLong = false;
};

std::optional<std::string> Terminal::StatusRequest::setting() const
{
    const Terminal& terminal = m_terminal;
    const Buffer& buffer = terminal.buffer();
    const auto range = [this](int first, int last) {
        return std::to_string(first + 1) + ';' + std::to_string(last + 1) + m_question;
    };
    if (m_isTooLong)
        return std::nullopt;
    if (m_question == "\"q")
        return m_question;
    if (m_question == "\"p")
        return "65;1\"p";
    if (m_question == "r")
        return range(buffer.scrollTop, buffer.scrollBottom);
    if (m_question == "s")
        return range(buffer.marginLeft, buffer.marginRight);
    if (m_question == "m")
        return terminal.m_curAttr.toSgr() + 'm';
    if (m_question == " q")
        return "2 q";
    // Lines of a page, columns of a page, lines of the screen.
    if (m_question == "t" || m_question == "*|")
        return std::to_string(terminal.m_rows) + m_question;
    if (m_question == "$|")
        return std::to_string(terminal.m_cols) + m_question;
    // There is no status line.
    if (m_question == "$}" || m_question == "$~")
        return '0' + m_question;
    return std::nullopt;
}

void Terminal::StatusRequest::answerSetting() const
{
    if (const auto body = setting())
        return m_terminal.sendDcs("1$r" + *body);
    m_terminal.log({"Unknown DCS + ", describe(Ascii::bytes(m_question))});
    m_terminal.sendDcs("0$r");
}

std::optional<std::string> Terminal::StatusRequest::capability(std::string_view name) const
{
    if (name == "Co" || name == "colors")
        return "256";
    if (name == "TN" || name == "name")
        return m_terminal.m_options.termName;
    if (name == "RGB")
        return "8/8/8";
    return std::nullopt;
}

void Terminal::StatusRequest::answerCapabilities() const
{
    std::string_view names = m_question;
    if (m_isTooLong || names.empty())
        return m_terminal.sendDcs("0+r");
    while (!names.empty()) {
        const auto digits = Ascii::takeField(names, ';');
        if (digits.empty())
            continue;
        const auto name = Hex::decode(digits);
        const auto value = name ? capability(*name) : std::nullopt;
        if (!name)
            m_terminal.sendDcs("0+r");
        else if (!value)
            m_terminal.sendDcs("0+r" + Hex::encode(*name));
        else
            m_terminal.sendDcs("1+r" + Hex::encode(*name) + '=' + Hex::encode(*value));
    }
}

DcsHandler* Terminal::dcsHandler(std::span<const std::uint8_t> collect, std::uint8_t code)
{
    const auto introducer = Ascii::view(collect);
    if (code != 'q' || (introducer != "$" && introducer != "+"))
        return nullptr;
    if (!m_dcsRequest)
        m_dcsRequest = std::make_unique<StatusRequest>(*this);
    return m_dcsRequest.get();
}

} // namespace Kovalt
