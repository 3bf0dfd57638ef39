#include "Chat/ChatRemoteControl.h"

#include <gtest/gtest.h>

using namespace Bralto;

namespace {

ChatRemoteControl connected()
{
    ChatRemoteControl control;
    control.phase = ChatRemoteControl::On{true};
    control.sessionUrl = QUrl(QStringLiteral("https://x.example/s"));
    control.isAvailable = true;
    return control;
}

ChatRemoteControl after(const char* state, const std::optional<QString>& detail = std::nullopt)
{
    ChatRemoteControl control = connected();
    control.apply(QString::fromUtf8(state), detail);
    return control;
}

} // namespace

TEST(ChatRemoteControl, FollowsTheStatesThatTheAgentReports)
{
    EXPECT_EQ(after("ready").phase,
              decltype(ChatRemoteControl::phase)(ChatRemoteControl::On{false}));
    EXPECT_EQ(after("connected").phase,
              decltype(ChatRemoteControl::phase)(ChatRemoteControl::On{true}));
    for (const char* state : {"connecting", "reconnecting"}) {
        SCOPED_TRACE(state);
        EXPECT_TRUE(std::holds_alternative<ChatRemoteControl::Starting>(after(state).phase));
        EXPECT_TRUE(after(state).sessionUrl);
    }
}

TEST(ChatRemoteControl, AFailureAlwaysHasWords)
{
    EXPECT_EQ(std::get<ChatRemoteControl::Failed>(after("failed", QStringLiteral("No way")).phase),
              (ChatRemoteControl::Failed{QStringLiteral("No way")}));
    EXPECT_EQ(std::get<ChatRemoteControl::Failed>(after("failed").phase),
              (ChatRemoteControl::Failed{QStringLiteral("Remote Control stopped")}));
}

TEST(ChatRemoteControl, TurnedOffItHasNoLink)
{
    for (const char* state : {"off", "disabled", "closed"}) {
        SCOPED_TRACE(state);
        EXPECT_TRUE(std::holds_alternative<ChatRemoteControl::Off>(after(state).phase));
        EXPECT_EQ(after(state).sessionUrl, std::nullopt);
        EXPECT_TRUE(after(state).isAvailable);
    }
}

TEST(ChatRemoteControl, AnUnknownStateChangesNothing)
{
    EXPECT_EQ(after("dreaming"), connected());
    EXPECT_EQ(after(""), connected());
}
