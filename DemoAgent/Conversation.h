#pragma once

#include "DemoAgent/ConversationStore.h"
#include "DemoAgent/Ledger.h"
#include "DemoAgent/LineWriter.h"
#include "DemoAgent/Pace.h"
#include "DemoAgent/PendingRequests.h"
#include "DemoAgent/Settings.h"
#include "DemoAgent/Task.h"
#include "DemoAgent/Wire.h"

#include <QJsonArray>

#include <optional>
#include <vector>

namespace DemoAgent {

/// One thing that the user wrote.
struct Prompt {
    /// The text blocks, joined.
    QString text;
    int images = 0;
    /// As it came: a string or an array of blocks.
    QJsonValue content;

    [[nodiscard]] static Prompt fromContent(const QJsonValue& content);
};

/// Work that goes on after its turn.
struct BackgroundJob {
    QString taskId;
    /// Adds to `announcements` as its last step. Destroyed before that, it tells that it stopped.
    Task<> work;
};

/// What a turn, a control request and a background task share. It outlives all of them.
struct Conversation {
    Conversation(const Arguments& arguments, QString sessionId, QString home, QString folder,
                 Pace pace, int output);

    /// Remembers what the user wrote, before the turn that it begins.
    void notePrompt(const QString& text);

    const QString sessionId;
    const QString home;
    /// The folder that the agent works in, absolute.
    const QString folder;
    const Pace pace;
    /// Servers of `--mcp-config`, by name; they are listed and not started.
    const QStringList mcpServers;
    /// False: no stream events, only whole lines.
    const bool streams;

    LineWriter out;
    ConversationStore store;
    Ledger ledger;
    Settings settings;
    PendingRequests requests;

    /// User turns so far, with those of earlier processes.
    int turns = 0;
    QString firstPrompt;
    QString lastPrompt;
    /// The one before the last.
    QString previousPrompt;
    /// Result lines so far in this process.
    int results = 0;
    bool lastResultFailed = false;

    /// Jobs that begin after the turn that runs now.
    std::vector<BackgroundJob> comingJobs;
    /// Ended jobs, each a prompt for a turn that the agent begins by itself.
    QStringList announcements;
};

} // namespace DemoAgent
