#pragma once

#include <QString>

namespace Bralto {

/// What a file of lines holds.
enum class ReplaySource {
    Unknown, ///< Told by the lines themselves.
    Stored,  ///< A conversation file of the agent.
    Stream,  ///< What the agent wrote to its standard output, or a recording of its pipes.
};

/// Prints the transcript that the lines in the file at `path` give, as JSON. The exit status: 1 if
/// the file can't be read.
int replay(const QString& path, ReplaySource source);

} // namespace Bralto
