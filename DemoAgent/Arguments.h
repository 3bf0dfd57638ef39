#pragma once

#include <QString>
#include <QStringList>

#include <optional>

namespace DemoAgent {

/// What the command line asks for.
struct Arguments {
    bool wantsVersion = false;
    bool wantsHelp = false;
    /// `-p`: speak stream-json over the pipes. The only thing this program can do.
    bool isHeadless = false;
    bool includesPartialMessages = false;
    bool maySkipPermissions = false;
    /// The conversation to go on with; absent for a new one.
    std::optional<QString> resume;
    /// The id for a new conversation; absent for one of our own making.
    std::optional<QString> sessionId;
    QString permissionMode;
    QString effort;
    QString model;
    QStringList mcpConfigs;
    /// Played instead of the ordinary behaviour.
    std::optional<QString> script;
    /// What arrives on stdin is appended to this file.
    std::optional<QString> record;

    /// Never fails: a flag that isn't known is skipped, and so is a word that belongs to none.
    /// `words` is without the program's name.
    [[nodiscard]] static Arguments parse(const QStringList& words);
};

/// What `--help` prints.
[[nodiscard]] QString helpText();

/// What `--version` prints, and what the agent tells about itself.
inline constexpr const char* Version = "1.0.0";

} // namespace DemoAgent
