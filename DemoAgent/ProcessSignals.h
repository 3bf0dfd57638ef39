#pragma once

/// How the process takes signals, as the real agent does: SIGTERM ends it at once with 143, SIGINT
/// with 0, and a reader that has gone is seen at the write. A command that runs is ended with it.
namespace DemoAgent::ProcessSignals {

void install();
/// From now on SIGTERM does nothing.
void ignoreTermination();
/// From now on SIGINT does nothing.
void ignoreInterrupt();

} // namespace DemoAgent::ProcessSignals
