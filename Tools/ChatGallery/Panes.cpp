#include "Panes.h"

#include "Chat/ChatDraft.h"
#include "Views/Chat/ChatComposer.h"
#include "Views/Chat/ChatTranscriptView.h"
#include "Views/Chat/ChatView.h"

#include <QLineEdit>
#include <QUuid>

namespace Bralto {

namespace {

SpaceTheme look(bool dark)
{
    SpaceTheme space;
    space.appearance = dark ? SpaceAppearance::Dark : SpaceAppearance::Light;
    return space;
}

const char Permission[] =
    R"({"type":"control_request","request_id":"p1","request":{"subtype":"can_use_tool",)"
    R"("tool_name":"Bash","input":{"command":"git push --force-with-lease origin level-range"}}})";

const char Plan[] =
    R"({"type":"control_request","request_id":"p2","request":{"subtype":"can_use_tool",)"
    R"("tool_name":"ExitPlanMode","input":{"plan":"1. Give `Series` a `covers` test and use it in )"
    R"(the store\n2. Answer 404 with `out_of_range` in both routes\n3. Cover the edges in )"
    R"(`range_test.cpp`"}}})";

const char Questions[] =
    R"({"type":"control_request","request_id":"q1","request":{"subtype":"can_use_tool",)"
    R"("tool_name":"AskUserQuestion","input":{"questions":[)"
    R"({"header":"Blend","question":"Which blend should the level use between two samples?",)"
    R"("options":[{"label":"Half cosine","description":"As the printed tables do; already in the )"
    R"(store"},{"label":"Linear","description":"Faster, off by up to 9 cm near the turn"},)"
    R"({"label":"Harmonic constants","description":"Exact, but needs a new dependency, which has to )"
    R"(be built, packaged and kept up to date on every machine that runs the service"}]},)"
    R"({"header":"Stations","question":"Which stations get the new endpoint?","multiSelect":true,)"
    R"("options":[{"label":"Stations near the coast"},{"label":"River gauges"},)"
    R"({"label":"Virtual stations"}]}]}}})";

ChatAttachment attached(const char* path)
{
    return {QUuid::createUuid().toString(), ChatAttachment::File{QString::fromLatin1(path)}};
}

} // namespace

Pane::Pane(QString folder, bool dark)
    : m_theme({dark, true}, look(dark))
    , m_chat(std::make_unique<ClaudeChat>(
          std::move(folder), std::nullopt,
          ClaudeChat::Services{m_host, m_launcher, m_scheduler, m_clock, m_memory}))
    , m_view(std::make_unique<ChatView>(*m_chat, m_theme, m_clock, m_files))
{
}

Pane::~Pane() = default;

ChatDraft& Pane::draft() const
{
    return ChatDraft::of(*m_chat);
}

void Pane::say(const char* json)
{
    agent().sayLine(json);
}

void Pane::begin()
{
    m_chat->send(QStringLiteral("A time outside the range gives a 500. Make it a 404."));
    say(R"({"type":"system","subtype":"init","claude_code_version":"2.1.4",)"
        R"("model":"claude-opus-4-5","permissionMode":"acceptEdits"})");
    say(R"({"type":"assistant","message":{"id":"m1","content":[{"type":"text","text":)"
        R"("Between two samples there is more than one way to get a level, and the tables in the )"
        R"(repository don’t say which."}],"usage":{"input_tokens":76000}}})");
    say(R"({"type":"result","subtype":"success","total_cost_usd":0.42,)"
        R"("modelUsage":{"claude-opus-4-5":{"contextWindow":200000}}})");
    m_chat->setEffort(QStringLiteral("high"));
}

const std::vector<PaneSample>& paneSamples()
{
    static const std::vector<PaneSample> samples{
        {"pane-permission", {860, 560}, [](Pane& pane) { pane.say(Permission); }},
        {"pane-question", {440, 500}, [](Pane& pane) { pane.say(Questions); }},
        {"pane-question-many",
         {440, 500},
         [](Pane& pane) {
             pane.say(Questions);
             ChatDraft& draft = pane.draft();
             draft.choose({ChatQuestionFlow::Row::Kind::Option, 0});
             draft.choose({ChatQuestionFlow::Row::Kind::Option, 0});
             draft.choose({ChatQuestionFlow::Row::Kind::Option, 2});
             draft.choose({ChatQuestionFlow::Row::Kind::Other, 0});
             draft.setOtherAnswer(QStringLiteral("only those with a datum"));
         }},
        {"pane-palette", {440, 500}, [](Pane& pane) { pane.draft().append(QStringLiteral("/")); }},
        {"pane-plan", {440, 500}, [](Pane& pane) { pane.say(Plan); }},
        {"pane-mentions",
         {440, 500},
         [](Pane& pane) {
             pane.draft().attach({attached("/p/level-range.png"), attached("/p/trace.log")});
             pane.draft().setFiles(std::make_shared<ChatFileList>(QStringList{
                 QStringLiteral("src/routes.cpp"), QStringLiteral("tests/routes_test.cpp"),
                 QStringLiteral("include/tidal/routes.hpp"), QStringLiteral("docs/routes.md")}));
             pane.draft().append(QStringLiteral("Cover the same edges in @rou"));
         }},
        {"pane-failed",
         {440, 400},
         [](Pane& pane) {
             pane.say(R"({"type":"result","is_error":true,"result":"Claude stopped: the )"
                      R"(connection was lost."})");
         }},
        {"pane-working",
         {560, 400},
         [](Pane& pane) {
             pane.chat().send(QStringLiteral("Go on"));
             pane.say(R"({"type":"stream_event","event":{"type":"message_start",)"
                      R"("message":{"id":"m2"}}})");
             pane.say(R"({"type":"stream_event","event":{"type":"content_block_start","index":0,)"
                      R"("content_block":{"type":"text","text":"The suite passes. I’d also )"
                      R"(document the new reason in the README, next to the"}}})");
         }},
        {"pane-thinking",
         {560, 300},
         [](Pane& pane) { pane.chat().send(QStringLiteral("Go on")); }},
        {"pane-missing", {560, 400}, [](Pane& pane) { pane.agent().exit(127); }},
        {"pane-long-draft",
         {360, 420},
         [](Pane& pane) {
             pane.draft().append(
                 QStringLiteral("A long turn that wraps over many lines.\n").repeated(12));
         }},
        {"pane-narrow", {260, 360}, [](Pane& pane) { pane.say(Permission); }},
    };
    return samples;
}

} // namespace Bralto
