#include "Kovalt/Search/SearchPattern.h"

#include <algorithm>
#include <array>
#include <ctime>

#define PCRE2_CODE_UNIT_WIDTH 8
#include <pcre2.h>

namespace Kovalt {

namespace {

/// Steps back that a match may take from one place where it could begin, and the memory for them.
constexpr std::uint32_t MatchLimit = 20'000;
constexpr std::uint32_t HeapLimitKilobytes = 4 << 10;
constexpr std::size_t FirstStack = 32 << 10;
constexpr std::size_t LargestStack = 512 << 10;
constexpr std::size_t LongestQuery = 8 << 10;
/// Places to begin at between two looks at the clock; a row of a screen is seldom longer.
constexpr std::size_t StretchBytes = 128;

struct Release {
    void operator()(pcre2_code* code) const { pcre2_code_free(code); }
    void operator()(pcre2_match_data* data) const { pcre2_match_data_free(data); }
    void operator()(pcre2_match_context* context) const { pcre2_match_context_free(context); }
    void operator()(pcre2_compile_context* context) const { pcre2_compile_context_free(context); }
    void operator()(pcre2_jit_stack* stack) const { pcre2_jit_stack_free(stack); }
};
using Code = std::unique_ptr<pcre2_code, Release>;

/// True where no word goes on, whatever kind of character stands on each side.
constexpr std::string_view WordEdge = R"((?:(?<!\w)|(?!\w)))";

PCRE2_SPTR units(std::string_view text)
{
    return reinterpret_cast<PCRE2_SPTR>(text.data());
}

/// The text as a pattern that means nothing but itself.
std::string quoted(std::string_view text)
{
    std::string pattern = "\\Q";
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = std::min(text.find("\\E", at), text.size());
        pattern += text.substr(at, end - at);
        if (end < text.size())
            pattern += "\\E\\\\E\\Q";
        at = end < text.size() ? end + 2 : end;
    }
    return pattern + "\\E";
}

bool continuesCharacter(char byte)
{
    return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
}

std::string describe(int error)
{
    std::array<PCRE2_UCHAR, 256> message{};
    pcre2_get_error_message(error, message.data(), message.size());
    return reinterpret_cast<const char*>(message.data());
}

Code compileText(std::string_view pattern, const SearchQuery& query, std::uint32_t extra,
                 SearchError& error)
{
    const std::unique_ptr<pcre2_compile_context, Release> context(
        pcre2_compile_context_create(nullptr));
    if (!context) {
        error = {"out of memory", 0};
        return nullptr;
    }
    pcre2_set_compile_extra_options(context.get(), extra);
    const std::uint32_t options = PCRE2_UTF | PCRE2_UCP | PCRE2_MATCH_INVALID_UTF |
                                  PCRE2_NEVER_BACKSLASH_C | PCRE2_USE_OFFSET_LIMIT |
                                  (query.isCaseSensitive ? 0 : PCRE2_CASELESS);
    int code = 0;
    PCRE2_SIZE offset = 0;
    Code compiled(
        pcre2_compile(units(pattern), pattern.size(), options, &code, &offset, context.get()));
    if (!compiled)
        error = {describe(code), std::min(offset, query.text.size())};
    return compiled;
}

Code compileQuery(const SearchQuery& query, SearchError& error)
{
    if (query.text.size() > LongestQuery) {
        error = {"the text to search for is too long", LongestQuery};
        return nullptr;
    }
    if (!query.isRegularExpression) {
        const std::string pattern = quoted(query.text);
        const std::string_view edge = query.isWholeWord ? WordEdge : std::string_view();
        return compileText(std::string(edge) + pattern + std::string(edge), query, 0, error);
    }
    // By itself first, so that errors and their places are those of the user's text.
    Code code = compileText(query.text, query, 0, error);
    if (!code || !query.isWholeWord)
        return code;
    const std::string edge(WordEdge);
    SearchError ignored;
    if (Code words = compileText(edge + "(?:" + query.text + ")" + edge, query, 0, ignored))
        return words;
    // Options at its start, or a comment at its end: only the library can put something around it.
    return compileText(query.text, query, PCRE2_EXTRA_MATCH_WORD, error);
}

} // namespace

bool SearchBudget::isSpent()
{
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    const auto spent = std::chrono::seconds(now.tv_sec) + std::chrono::nanoseconds(now.tv_nsec);
    if (!m_start)
        m_start = spent;
    return spent - *m_start >= m_time;
}

struct SearchPattern::Compiled {
    Code code;
    std::unique_ptr<pcre2_match_data, Release> data;
    std::unique_ptr<pcre2_match_context, Release> context;
    std::unique_ptr<pcre2_jit_stack, Release> stack;
};

SearchPattern::SearchPattern(std::unique_ptr<Compiled> compiled)
    : m_compiled(std::move(compiled))
{
}

SearchPattern::~SearchPattern() = default;

std::unique_ptr<SearchPattern> SearchPattern::compile(const SearchQuery& query, SearchError& error)
{
    auto compiled = std::make_unique<Compiled>();
    compiled->code = compileQuery(query, error);
    if (!compiled->code)
        return nullptr;
    compiled->data.reset(pcre2_match_data_create(1, nullptr));
    compiled->context.reset(pcre2_match_context_create(nullptr));
    if (!compiled->data || !compiled->context) {
        error = {"out of memory", 0};
        return nullptr;
    }
    pcre2_set_match_limit(compiled->context.get(), MatchLimit);
    pcre2_set_heap_limit(compiled->context.get(), HeapLimitKilobytes);
    // Where machine code may not be made, the library interprets the pattern.
    if (pcre2_jit_compile(compiled->code.get(), PCRE2_JIT_COMPLETE) == 0) {
        compiled->stack.reset(pcre2_jit_stack_create(FirstStack, LargestStack, nullptr));
        pcre2_jit_stack_assign(compiled->context.get(), nullptr, compiled->stack.get());
    }
    return std::unique_ptr<SearchPattern>(new SearchPattern(std::move(compiled)));
}

SearchPattern::Result SearchPattern::find(std::string_view text, std::size_t from, Ends ends,
                                          SearchBudget* budget) const
{
    while (from < text.size()) {
        std::size_t end = std::min(text.size(), from + StretchBytes);
        while (end < text.size() && continuesCharacter(text[end]))
            ++end;
        const Result result = findBeginning(text, from, end, ends);
        if (result.outcome != Outcome::Nothing)
            return result;
        from = end;
        if (from < text.size() && budget && budget->isSpent())
            return {Outcome::GaveUp, 0, 0};
    }
    return {};
}

/// A match that begins in the bytes `from` up to but without `end`.
SearchPattern::Result SearchPattern::findBeginning(std::string_view text, std::size_t from,
                                                   std::size_t end, Ends ends) const
{
    const std::uint32_t options =
        PCRE2_NOTEMPTY | (ends.beginsLine ? 0 : PCRE2_NOTBOL) | (ends.endsLine ? 0 : PCRE2_NOTEOL);
    pcre2_set_offset_limit(m_compiled->context.get(), end - 1);
    const int found = pcre2_match(m_compiled->code.get(), units(text), text.size(), from, options,
                                  m_compiled->data.get(), m_compiled->context.get());
    if (found == PCRE2_ERROR_NOMATCH)
        return {};
    if (found < 0)
        return {Outcome::GaveUp, 0, 0};
    const PCRE2_SIZE* const range = pcre2_get_ovector_pointer(m_compiled->data.get());
    if (range[0] >= range[1])
        return {};
    return {Outcome::Found, range[0], range[1]};
}

} // namespace Kovalt
