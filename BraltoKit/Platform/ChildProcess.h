#pragma once

#include "Chat/AgentProcess.h"

namespace Bralto {

/// Starts real children. Each one has three pipes, a session and a process group of its own, and a
/// guardian (see ProcessGuardian.h): when the child ends, when its `AgentProcess` is destroyed, or
/// when this program ends in whatever way, everything that the child started ends too.
///
/// A child costs two threads: one reads its pipes and calls `AgentPipes`, one writes its input.
/// Neither outlives the child by more than a moment, and neither is waited for.
class ChildProcessLauncher final : public AgentLauncher {
public:
    Expected<std::shared_ptr<AgentProcess>, QString> launch(const AgentLaunch& launch,
                                                            AgentPipes pipes) override;
};

} // namespace Bralto
