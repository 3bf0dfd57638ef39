#pragma once

#include <QString>

namespace Bralto {

/// Every place on disk that the program spells, built from one home folder. No other file knows
/// these names. All results are standardised paths; nothing here touches the disk.
class AppPaths {
public:
    explicit AppPaths(const QString& home);

    /// The paths of this process: `QDir::homePath()`, so that `HOME` moves everything.
    static AppPaths current();

    [[nodiscard]] const QString& home() const { return m_home; }

    [[nodiscard]] QString support() const;     ///< Library/Application Support/Bralto
    [[nodiscard]] QString preferences() const; ///< Preferences in the support folder
    [[nodiscard]] QString terminals() const;   ///< Terminals in the support folder
    [[nodiscard]] QString bin() const;         ///< bin in the support folder: what panes find first
    [[nodiscard]] QString zsh() const;     ///< zsh in the support folder: start-up files of panes
    [[nodiscard]] QString control() const; ///< control in the support folder: the sockets
    /// mcp.json in the support folder: how the agent starts the program's own server.
    [[nodiscard]] QString mcpConfig() const;
    /// Browser in the support folder: what pages keep, a folder for each application identifier.
    [[nodiscard]] QString browser(const QString& identifier) const;
    [[nodiscard]] QString
    applications() const; ///< Applications/Bralto, the bundles of the projects
    [[nodiscard]] QString
    projects() const; ///< Documents/Claude Projects, the default projects folder

    /// .claude/projects: the folders of the agent's stored conversations.
    [[nodiscard]] QString claudeProjects() const;
    /// .claude/settings.json: the agent's settings of this user.
    [[nodiscard]] QString claudeSettings() const;

private:
    QString m_home;
};

} // namespace Bralto
