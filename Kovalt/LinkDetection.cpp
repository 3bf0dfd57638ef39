#include "Kovalt/LinkDetection.h"

#include <cstdint>
#include <memory>

#define PCRE2_CODE_UNIT_WIDTH 8
#include <pcre2.h>

namespace Kovalt {

namespace {

constexpr char Pattern[] =
    // A scheme, then an address in brackets or what an address is made of.
    R"((?:https?://|mailto:|ftp://|file:|ssh:|git://|ssh://|tel:|magnet:|ipfs://|ipns://|gemini://|gopher://|news:))"
    R"((?:(?:\[[:0-9a-fA-F]+\](?::[0-9]+)?)|[\w\-.~:/?#@!$&*+,;=%](?:(?:[\(\[]\w*[\)\]]))?)+(?<![,.]))"
    // A path that begins with "../", "./", "~/", a variable, a hidden folder or "/".
    R"(|(?:\.\.\/|\.\/|(?<!\w)~\/|(?:[\w][\w\-.]*\/)*(?<!\w)\$[A-Za-z_]\w*\/|\.[\w][\w\-.]*\/|(?<![\w~\/])\/(?!\/)))"
    R"((?:(?=[\w\-.~:\/?#@!$&*+;=%]*\.)[\w\-.~:\/?#@!$&*+;=%]+(?:(?<!:) (?!\w+:\/\/)[\w\-.~:\/?#@!$&*+;=%]*[\/.])*(?<!:)(?: +(?= *$))?)"
    R"(|(?![\w\-.~:\/?#@!$&*+;=%]*\.)[\w\-.~:\/?#@!$&*+;=%]+(?:(?<!:) (?!\w+:\/\/)[\w\-.~:\/?#@!$&*+;=%]+)*(?<!:)(?: +(?= *$))?))"
    // A path from here, which shows itself by a folder and a dot.
    R"(|(?=[\w\-.~:\/?#@!$&*+;=%]*\.)(?<!\w)[\w][\w\-.]*\/[\w\-.~:\/?#@!$&*+;=%]+(?:(?<!:) (?!\w+:\/\/)[\w\-.~:\/?#@!$&*+;=%]*[\/.])*(?<!:)(?: +(?= *$))?)";

/// Steps back that one search for a match may take, and the memory for them.
constexpr std::uint32_t MatchLimit = 100'000;
constexpr std::uint32_t HeapLimitKilobytes = 8 << 10;
constexpr std::size_t FirstStack = 32 << 10;
constexpr std::size_t LargestStack = 1 << 20;

struct Release {
    void operator()(pcre2_code* code) const { pcre2_code_free(code); }
    void operator()(pcre2_match_data* data) const { pcre2_match_data_free(data); }
    void operator()(pcre2_match_context* context) const { pcre2_match_context_free(context); }
    void operator()(pcre2_jit_stack* stack) const { pcre2_jit_stack_free(stack); }
};

/// Made once; null would mean that the library can't read the pattern.
const pcre2_code* compiledPattern()
{
    static const std::unique_ptr<pcre2_code, Release> code = [] {
        int error = 0;
        PCRE2_SIZE place = 0;
        std::unique_ptr<pcre2_code, Release> compiled(pcre2_compile(
            reinterpret_cast<PCRE2_SPTR>(Pattern), sizeof Pattern - 1,
            PCRE2_UTF | PCRE2_UCP | PCRE2_MATCH_INVALID_UTF, &error, &place, nullptr));
        // Where machine code may not be made, the library interprets the pattern.
        if (compiled)
            pcre2_jit_compile(compiled.get(), PCRE2_JIT_COMPLETE);
        return compiled;
    }();
    return code.get();
}

class Search {
public:
    explicit Search(std::string_view text)
        : m_text(text)
        , m_data(pcre2_match_data_create(1, nullptr))
        , m_context(pcre2_match_context_create(nullptr))
        , m_stack(pcre2_jit_stack_create(FirstStack, LargestStack, nullptr))
    {
        if (!m_context)
            return;
        pcre2_set_match_limit(m_context.get(), MatchLimit);
        pcre2_set_heap_limit(m_context.get(), HeapLimitKilobytes);
        pcre2_jit_stack_assign(m_context.get(), nullptr, m_stack.get());
    }

    /// The next link; none at the end, or when looking for it took too much.
    std::optional<LinkDetection::Match> next()
    {
        if (!compiledPattern() || !m_data || !m_context ||
            m_text.size() > LinkDetection::LongestText)
            return std::nullopt;
        const int found =
            pcre2_match(compiledPattern(), reinterpret_cast<PCRE2_SPTR>(m_text.data()),
                        m_text.size(), m_at, 0, m_data.get(), m_context.get());
        if (found < 0)
            return std::nullopt;
        const PCRE2_SIZE* const range = pcre2_get_ovector_pointer(m_data.get());
        // Every alternative takes at least one character, so the search moves on.
        m_at = range[1];
        return LinkDetection::Match{range[0], range[1]};
    }

private:
    std::string_view m_text;
    std::unique_ptr<pcre2_match_data, Release> m_data;
    std::unique_ptr<pcre2_match_context, Release> m_context;
    std::unique_ptr<pcre2_jit_stack, Release> m_stack;
    std::size_t m_at = 0;
};

} // namespace

std::vector<LinkDetection::Match> LinkDetection::findAll(std::string_view text)
{
    std::vector<Match> matches;
    Search search(text);
    while (const auto match = search.next())
        matches.push_back(*match);
    return matches;
}

std::optional<LinkDetection::Match> LinkDetection::findAt(std::string_view text, std::size_t byte)
{
    Search search(text);
    while (const auto match = search.next()) {
        if (match->begin > byte)
            return std::nullopt;
        if (byte < match->end)
            return match;
    }
    return std::nullopt;
}

} // namespace Kovalt
