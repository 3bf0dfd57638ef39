#pragma once

namespace Kovalt {

/// A picture that touches a line. Lines hold and move pictures; what they show is not their matter.
class TerminalImage {
public:
    virtual ~TerminalImage() = default;
    /// The column of its left edge.
    [[nodiscard]] virtual int col() const = 0;
    /// Its size in cells.
    [[nodiscard]] virtual int columns() const = 0;
    [[nodiscard]] virtual int rows() const = 0;
};

} // namespace Kovalt
