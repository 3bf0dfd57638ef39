#pragma once

#include "Base/AppPaths.h"
#include "Base/DefaultsStore.h"
#include "Base/LaunchRole.h"
#include "Browser/BrowserBridge.h"
#include "Chat/ChatHost.h"

#include <optional>

namespace Bralto {

/// What the program gives its conversations: the user's command, the pane's environment, the
/// agent's files. Main thread, unless a function says otherwise.
class ProgramChatHost final : public ChatHost {
public:
    /// What doesn't change while the program runs.
    struct Surroundings {
        AppPaths paths;
        LaunchRole role;
        QStringList environment; ///< The program's own, "NAME=value".
        bool isDemo = false;
        /// The agent's command for this run, whatever the user's settings say.
        std::optional<QString> command = std::nullopt;
    };

    /// `defaults` outlives this object.
    ProgramChatHost(Defaults defaults, Surroundings surroundings);

    [[nodiscard]] QString baseCommand() const override;
    [[nodiscard]] bool hasTranscript(const QString& sessionId) const override;
    [[nodiscard]] QStringList mcpConfigFlags() const override;
    [[nodiscard]] QString shell() const override;
    [[nodiscard]] QStringList environment(const QString& pane, const QString& project,
                                          const QString& shell) const override;
    void installHooks() override;
    void clearAttention(const QString& pane) override;
    void ingestRateLimits(const QByteArray& info, const QDateTime& at) override;
    [[nodiscard]] bool isDemo() const override;
    [[nodiscard]] QString home() const override;
    [[nodiscard]] std::optional<QByteArray> readFile(const QString& path) const override;
    [[nodiscard]] std::optional<QString> transcriptPath(const QString& sessionId) const override;

private:
    Defaults m_defaults;
    Surroundings m_surroundings;
    BrowserBridge m_bridge;
};

} // namespace Bralto
