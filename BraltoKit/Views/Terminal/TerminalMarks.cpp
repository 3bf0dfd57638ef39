#include "Views/Terminal/TerminalMarks.h"

#include "Kovalt/ShellMarks.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace Bralto::TerminalMarks {
namespace {

/// Takes places in ascending order, and none that stands on the pixel of the one before.
class Track {
public:
    Track(std::vector<ScrollMark>& marks, int pixels, int rows)
        : m_marks(marks)
        , m_pixels(std::max(1, pixels))
        , m_rows(std::max(1, rows))
    {
    }

    void add(std::int64_t row, ScrollMark::Kind kind)
    {
        const double place = double(row) / m_rows;
        const int pixel = int(place * m_pixels);
        if (pixel == m_last || row < 0 || row >= m_rows)
            return;
        m_last = pixel;
        m_marks.push_back({place, kind});
    }
    /// The first row of the next pixel.
    [[nodiscard]] std::int64_t nextRow() const
    {
        return (std::int64_t(m_last) + 1) * m_rows / m_pixels;
    }

private:
    std::vector<ScrollMark>& m_marks;
    int m_pixels;
    int m_rows;
    int m_last = -1;
};

void addHits(std::vector<ScrollMark>& marks, const Kovalt::SearchService& search,
             std::int64_t linesTop, int track, int rows)
{
    Track hits(marks, track, rows);
    // There may be half a million: from each pixel on, the first one of the next is looked up.
    std::size_t first = 0;
    const std::size_t count = search.count();
    while (first < count) {
        hits.add(search.match(first).begin.row - linesTop, ScrollMark::Kind::Hit);
        const std::int64_t next =
            std::max(hits.nextRow() + linesTop, search.match(first).begin.row + 1);
        std::size_t low = first + 1;
        std::size_t high = count;
        while (low < high) {
            const std::size_t middle = low + (high - low) / 2;
            if (search.match(middle).begin.row < next)
                low = middle + 1;
            else
                high = middle;
        }
        first = low;
    }
    if (const auto current = search.current()) {
        Track one(marks, track, rows);
        one.add(current->begin.row - linesTop, ScrollMark::Kind::CurrentHit);
    }
}

} // namespace

std::vector<ScrollMark> of(const Kovalt::Buffer& buffer, const Kovalt::SearchService& search,
                           int track, Prompts prompts)
{
    std::vector<ScrollMark> marks;
    const int rows = buffer.lines().count();
    if (prompts == Prompts::With) {
        Track places(marks, track, rows);
        for (auto prompt = Kovalt::ShellMarks::nextPrompt(buffer, -1); prompt;
             prompt = Kovalt::ShellMarks::nextPrompt(buffer, prompt->position.row))
            places.add(prompt->position.row, ScrollMark::Kind::Prompt);
    }
    addHits(marks, search, buffer.linesTop, track, rows);
    return marks;
}

} // namespace Bralto::TerminalMarks
