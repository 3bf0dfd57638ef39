#pragma once

#include "DemoAgent/Recorder.h"
#include "DemoAgent/Script/ScriptInbox.h"
#include "DemoAgent/Script/ScriptText.h"
#include "DemoAgent/Turn.h"

#include <QHash>
#include <QSet>

#include <memory>

namespace DemoAgent {

/// What a script needs of the session that plays it.
class ScriptHost {
public:
    virtual ~ScriptHost() = default;

    /// Answers the prompt as without a script; `ended` comes with the turn's end.
    virtual void runTurn(const Prompt& prompt, Later<bool>& ended) = 0;
    virtual void stopReading() = 0;
    /// Ends the process in an orderly way.
    virtual void endProcess(int status) = 0;
};

/// What the steps of a script share.
struct ScriptContext {
    Conversation& conversation;
    ScriptHost& host;
    Recorder& recorder;
    /// Of the script's file, for the names of other files.
    QString folder;

    ScriptInbox inbox = {};
    /// Subtypes of control requests that the script answers itself.
    QSet<QString> held = {};
    /// Subtypes that nobody answers.
    QSet<QString> muted = {};
    /// Ids of the script's own requests to the app.
    QSet<QString> asked = {};

    /// The turn that the script plays, with the prompt that began it.
    std::unique_ptr<Turn> turn = {};
    Prompt prompt = {};
    /// The tool call that the next steps are about, and all of the script so far.
    ToolUse tool = {};
    std::vector<ToolUse> tools = {};
    QJsonObject answer = {};
    /// For `${name}`.
    QHash<QString, QString> values = {};

    /// The step's words with its variables filled in.
    [[nodiscard]] QString text(const ScriptStep& step);
    /// The same, with escapes replaced.
    [[nodiscard]] QString plainText(const ScriptStep& step);
    /// Begins a turn with the prompt that waits, without a line.
    Turn& beginTurn();
    /// The turn that runs; if none does, one is begun and announced.
    Turn& ensureTurn();
};

/// Carries one step out.
using ScriptVerb = Task<> (*)(ScriptContext&, const ScriptStep&);
using ScriptVerbs = QHash<QString, ScriptVerb>;

/// Waiting for the app, and answering its requests.
[[nodiscard]] const ScriptVerbs& waitingVerbs();
/// What a turn consists of.
[[nodiscard]] const ScriptVerbs& speakingVerbs();
/// What a broken agent does.
[[nodiscard]] const ScriptVerbs& faultVerbs();
/// `replay FILE`.
[[nodiscard]] Task<> replayRecording(ScriptContext& context, const ScriptStep& step);

/// The subtypes of control requests that a recording answers.
[[nodiscard]] QSet<QString> subtypesInRecording(const QString& path);

} // namespace DemoAgent
