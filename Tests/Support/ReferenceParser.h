#pragma once

#include "Kovalt/EscapeSequenceParser.h"

#include <cstdlib>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

namespace Kovalt {

/// The transitions, told state by state: ranges of codes, what is done, where it leads.
/// The C1 codes, 0x18, 0x1A, 0x1B and everything that is not told are the same in each state.
inline const char* referenceTransitions(ParserState state)
{
    switch (state) {
    case ParserState::Ground:
        return "00-17 execute 0, 18 execute 0, 1C-1F execute 0, 20-7E print 0";
    case ParserState::Escape:
        return "00-18 execute 1, 1C-1F execute 1, 20-2F collect 2, 30-4F esc 0, 50 clear 10, "
               "51-57 esc 0, 58 ignore 7, 59-5A esc 0, 5B clear 3, 5C esc 0, 5D begin 8, "
               "5E ignore 7, 5F begin 9, 60-7E esc 0, 7F ignore 1";
    case ParserState::EscapeIntermediate:
        return "00-18 execute 2, 1C-1F execute 2, 20-2F collect 2, 30-7E esc 0, 7F ignore 2";
    case ParserState::CsiEntry:
        return "00-18 execute 3, 1C-1F execute 3, 20-2F collect 5, 30-39 param 4, 3B param 4, "
               "3C-3F collect 4, 40-7E csi 0, 7F ignore 3";
    case ParserState::CsiParam:
        return "00-18 execute 4, 1C-1F execute 4, 20-2F collect 5, 30-3B param 4, 3C-3F ignore 6, "
               "40-7E csi 0, 7F ignore 4";
    case ParserState::CsiIntermediate:
        return "00-18 execute 5, 1C-1F execute 5, 20-2F collect 5, 30-3F ignore 6, 40-7E csi 0, "
               "7F ignore 5";
    case ParserState::CsiIgnore:
        return "00-18 execute 6, 1C-1F execute 6, 20-3F ignore 6, 40-7E ignore 0, 7F ignore 6";
    case ParserState::SosPmApcString:
        return "00-18 ignore 7, 1C-1F ignore 7, 20-7F ignore 7";
    case ParserState::OscString:
        return "00-06 ignore 8, 07 end 0, 08-17 ignore 8, 18 end 0, 1A-1B end 0, 1C-1F ignore 8, "
               "20-7F put 8, 9C end 0, A0 put 8";
    case ParserState::ApcString:
        return "00-06 ignore 9, 07 end 0, 08-17 ignore 9, 18 end 0, 1A-1B end 0, 1C-1F ignore 9, "
               "20-7F put 9, 9C end 0, A0 put 9";
    case ParserState::DcsEntry:
        return "00-18 ignore 10, 1C-1F ignore 10, 20-2F collect 13, 30-39 param 11, 3A ignore 12, "
               "3B param 11, 3C-3F collect 11, 40-7E hook 14, 7F ignore 10";
    case ParserState::DcsParam:
        return "00-18 ignore 11, 1C-1F ignore 11, 20-2F collect 13, 30-39 param 11, 3A ignore 12, "
               "3B param 11, 3C-3F ignore 12, 40-7E hook 14, 7F ignore 11";
    case ParserState::DcsIgnore:
        return "00-18 ignore 12, 1C-1F ignore 12, 20-7F ignore 12";
    case ParserState::DcsIntermediate:
        return "00-18 ignore 13, 1C-1F ignore 13, 20-2F collect 13, 30-3F ignore 12, "
               "40-7E hook 14, 7F ignore 13";
    case ParserState::DcsPassthrough:
        return "00-18 dcsput 14, 1B unhook 0, 1C-1F dcsput 14, 20-7E dcsput 14, 7F ignore 14, "
               "9C unhook 0";
    }
    return "";
}

struct ReferenceEntry {
    std::string action;
    int next = 0;
};

inline std::optional<ReferenceEntry> referenceEntryIn(const std::string& transitions, int code)
{
    std::istringstream rows(transitions);
    for (std::string row; std::getline(rows, row, ',');) {
        std::istringstream fields(row);
        std::string range;
        ReferenceEntry entry;
        fields >> range >> entry.action >> entry.next;
        const auto first = std::stoi(range, nullptr, 16);
        const auto last = range.size() > 2 ? std::stoi(range.substr(3), nullptr, 16) : first;
        if (code >= first && code <= last)
            return entry;
    }
    return std::nullopt;
}

/// `code` is at most 0xA0.
inline ReferenceEntry referenceEntry(ParserState state, int code)
{
    if (auto entry = referenceEntryIn(referenceTransitions(state), code))
        return *entry;
    const char* const everywhere =
        "18 execute 0, 1A execute 0, 1B clear 1, 80-8F execute 0, 90 clear 10, 91-97 execute 0, "
        "98 ignore 7, 99-9A execute 0, 9B clear 3, 9C ignore 0, 9D begin 8, 9E ignore 7, 9F begin "
        "9";
    return referenceEntryIn(everywhere, code).value_or(ReferenceEntry{"error", 0});
}

/// The machine in its plainest form: every byte asks the rows above, nothing is taken in runs.
class ReferenceParser {
public:
    explicit ReferenceParser(ParserHandlers& handlers)
        : m_handlers(handlers)
    {
    }

    void parse(std::span<const std::uint8_t> data)
    {
        m_data = data;
        m_print = m_dcs = -1;
        bool inString = false;
        for (m_at = 0; m_at < data.size(); ++m_at) {
            const auto code = data[m_at];
            if (m_state == 0 && code > 0x1F) {
                open(m_print);
                continue;
            }
            const auto isString = m_state == 8 || m_state == 9;
            if (m_at == 0 && isString && code >= 0x80 && code < 0xC0 && halfCharacter())
                inString = true;
            if (inString && isString && code != 0x07 && code != 0x18 && code != 0x1B) {
                put(code);
                continue;
            }
            inString = false;
            const auto& entry = entries()[static_cast<std::size_t>(m_state * 0xA1) +
                                          std::min<std::size_t>(code, 0xA0)];
            inString = entry.action == "put";
            act(entry.action, entry.next, code);
        }
        if (m_state == 0)
            flushPrint();
        if (m_state == 14)
            flushDcs();
    }

private:
    static const std::vector<ReferenceEntry>& entries()
    {
        static const auto all = [] {
            std::vector<ReferenceEntry> result;
            for (int state = 0; state < 15; ++state) {
                for (int code = 0; code <= 0xA0; ++code)
                    result.push_back(referenceEntry(static_cast<ParserState>(state), code));
            }
            return result;
        }();
        return all;
    }

    void act(const std::string& action, int next, std::uint8_t code)
    {
        if (action == "ignore") {
            if (m_print >= 0)
                flushPrint();
            else
                flushDcs();
            m_print = m_dcs = -1;
        } else if (action == "error") {
            if (code >= 0xA0 && (m_state == 6 || m_state == 12))
                return;
            if (code >= 0xA0 && m_state == 14)
                return open(m_dcs);
            ParsingState record;
            record.position = m_at;
            record.code = code;
            record.currentState = static_cast<ParserState>(m_state);
            record.print = m_print;
            record.dcs = m_dcs;
            m_handlers.error(record);
        } else if (action == "execute") {
            flushPrint();
            m_handlers.execute(code);
        } else if (action == "begin") {
            flushPrint();
            m_string.clear();
        } else if (action == "put") {
            put(code);
        } else if (action == "end") {
            if (code != 0x18 && code != 0x1A)
                dispatchString();
            clear();
            next = code == 0x1B ? 1 : 0;
        } else if (action == "csi") {
            if (!m_exceeded && m_collect.size() <= EscapeSequenceParser::MaximumCollected)
                m_handlers.csi({m_pars, m_separators, m_collect, code});
        } else if (action == "param") {
            addParameter(code);
        } else if (action == "collect") {
            m_collect.push_back(code);
        } else if (action == "esc") {
            if (m_collect.size() <= EscapeSequenceParser::MaximumCollected)
                m_handlers.esc(m_collect, code);
        } else if (action == "clear") {
            flushPrint();
            clear();
        } else if (action == "hook") {
            m_handler = nullptr;
            if (!m_exceeded && m_collect.size() <= EscapeSequenceParser::MaximumCollected)
                m_handler = m_handlers.dcsHandler(m_collect, code);
            if (m_handler != nullptr)
                m_handler->hook(m_collect, m_pars, code);
        } else if (action == "dcsput") {
            open(m_dcs);
        } else if (action == "unhook") {
            flushDcs();
            if (m_handler != nullptr)
                m_handler->unhook();
            m_handler = nullptr;
            clear();
            next = code == 0x1B ? 1 : 0;
        } else {
            std::abort();
        }
        m_state = next;
    }

    void addParameter(std::uint8_t code)
    {
        if (m_exceeded)
            return;
        if (code >= '0' && code <= '9')
            m_pars.back() = std::min(m_pars.back() * 10 + code - '0', 65535);
        else if (m_pars.size() == 24)
            m_exceeded = true;
        else {
            m_separators.push_back(code);
            m_pars.push_back(0);
        }
    }
    void put(std::uint8_t code)
    {
        if (code >= 0x20)
            m_string.push_back(code);
    }
    [[nodiscard]] bool halfCharacter() const
    {
        std::size_t behind = 0;
        while (behind < m_string.size() && m_string[m_string.size() - 1 - behind] >= 0x80 &&
               m_string[m_string.size() - 1 - behind] < 0xC0)
            ++behind;
        if (behind == m_string.size())
            return false;
        const auto lead = m_string[m_string.size() - 1 - behind];
        const std::size_t wanted = lead < 0xC2   ? 0
                                   : lead < 0xE0 ? 1
                                   : lead < 0xF0 ? 2
                                   : lead < 0xF5 ? 3
                                                 : 0;
        return behind < wanted;
    }
    void dispatchString()
    {
        const std::span<const std::uint8_t> bytes = m_string;
        if (m_state == 9) {
            if (!bytes.empty())
                m_handlers.apc(bytes[0], bytes.subspan(1));
            return;
        }
        const std::string text(bytes.begin(), bytes.end());
        const auto code = text.substr(0, text.find(';'));
        if (code.empty() || code.find_first_not_of("0123456789") != std::string::npos)
            return;
        try {
            m_handlers.osc(std::stoll(code), bytes.subspan(std::min(code.size() + 1, text.size())));
        } catch (const std::out_of_range&) {
            return;
        }
    }
    void open(std::ptrdiff_t& run) const
    {
        if (run < 0)
            run = static_cast<std::ptrdiff_t>(m_at);
    }
    [[nodiscard]] std::span<const std::uint8_t> since(std::ptrdiff_t start) const
    {
        return m_data.subspan(static_cast<std::size_t>(start),
                              m_at - static_cast<std::size_t>(start));
    }
    void flushPrint()
    {
        if (m_print >= 0) {
            const auto text = since(m_print);
            bool ascii = true;
            for (const auto code : text)
                ascii = ascii && code >= 0x20 && code < 0x7F;
            m_handlers.print(text, ascii ? TextKind::PrintableAscii : TextKind::Mixed);
        }
        m_print = -1;
    }
    void flushDcs()
    {
        if (m_dcs >= 0 && m_handler != nullptr)
            m_handler->put(since(m_dcs));
    }
    void clear()
    {
        m_pars = {0};
        m_separators.clear();
        m_collect.clear();
        m_string.clear();
        m_exceeded = false;
        m_print = m_dcs = -1;
        m_handlers.printStateReset();
    }

    ParserHandlers& m_handlers;
    std::span<const std::uint8_t> m_data;
    std::size_t m_at = 0;
    std::ptrdiff_t m_print = -1;
    std::ptrdiff_t m_dcs = -1;
    int m_state = 0;
    bool m_exceeded = false;
    DcsHandler* m_handler = nullptr;
    std::vector<std::int32_t> m_pars = {0};
    std::vector<std::uint8_t> m_separators;
    std::vector<std::uint8_t> m_collect;
    std::vector<std::uint8_t> m_string;
};

} // namespace Kovalt
