#pragma once

#include <optional>
#include <string_view>

namespace Bralto {

/// Walks over the values of an object or an array as text: what a parser would change on the way,
/// such as a number of many digits, can be handed on as it came. For text that a parser has taken;
/// in any other the slices have no meaning, but lie inside it.
class JsonSlices {
public:
    /// `container` begins with the bracket of an object or an array, maybe behind blanks.
    explicit JsonSlices(std::string_view container);

    /// The next value without the blanks around it, in the order of the text. Absent behind the
    /// last one.
    [[nodiscard]] std::optional<std::string_view> next();

private:
    void skipBlanks();
    void skipString();
    void skipValue();

    std::string_view m_text;
    std::size_t m_at = 0;
    bool m_hasKeys = false;
};

} // namespace Bralto
