#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace Kovalt {

/// What is looked for.
struct SearchQuery {
    std::string text; ///< UTF-8; nothing is found if it is empty.
    bool isRegularExpression = false;
    bool isCaseSensitive = false;
    /// Not where a word goes on before or behind it.
    bool isWholeWord = false;

    bool operator==(const SearchQuery&) const = default;
};

/// Why a query can't be used.
struct SearchError {
    std::string message;    ///< One sentence in English, as the regular expression library says it.
    std::size_t offset = 0; ///< The byte of the query where reading it stopped.

    bool operator==(const SearchError&) const = default;
};

/// Processor time of this thread that searches in one text may take. It begins with the first look,
/// and a busy machine takes nothing of it.
class SearchBudget {
public:
    explicit SearchBudget(std::chrono::nanoseconds time)
        : m_time(time)
    {
    }
    [[nodiscard]] bool isSpent();

private:
    std::chrono::nanoseconds m_time;
    std::optional<std::chrono::nanoseconds> m_start;
};

/// A query made ready. Any text may be searched, and each search is bounded: a pattern that was
/// made to be slow gives up. One thread at a time.
class SearchPattern {
public:
    /// What is known of the text's ends.
    struct Ends {
        bool beginsLine = true;
        bool endsLine = true;
    };
    enum class Outcome : std::uint8_t { Found, Nothing, GaveUp };
    /// Bytes `begin` up to but without `end`, at least one.
    struct Result {
        Outcome outcome = Outcome::Nothing;
        std::size_t begin = 0;
        std::size_t end = 0;
    };

    /// Null, and an error, if the query can't be used.
    [[nodiscard]] static std::unique_ptr<SearchPattern> compile(const SearchQuery& query,
                                                                SearchError& error);
    ~SearchPattern();

    /// The first match from the byte `from` on; what stands before it is seen, but not matched.
    /// Empty matches are none. In a long text it gives up when the budget is spent.
    [[nodiscard]] Result find(std::string_view text, std::size_t from, Ends ends,
                              SearchBudget* budget = nullptr) const;

private:
    [[nodiscard]] Result findBeginning(std::string_view text, std::size_t from, std::size_t end,
                                       Ends ends) const;

    struct Compiled;
    explicit SearchPattern(std::unique_ptr<Compiled> compiled);

    std::unique_ptr<Compiled> m_compiled;
};

} // namespace Kovalt
