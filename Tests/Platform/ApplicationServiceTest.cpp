#include "Platform/ApplicationService.h"

#include "Tests/Support/PrivateBus.h"

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QTest>

#include <gtest/gtest.h>

namespace Bralto {
namespace {

constexpr char Identifier[] = "com.tolvane.bralto.space.1a2b3c4d5e6f";
constexpr char BusName[] = "com.tolvane.bralto.space._1a2b3c4d5e6f";
constexpr char Path[] = "/com/tolvane/bralto/space/_1a2b3c4d5e6f";

class ServiceOnABus : public testing::Test {
protected:
    PrivateBus bus;
    QDBusConnection own = bus.connect();
    QDBusConnection other = bus.connect();
    std::optional<ApplicationService> service{std::in_place, own, Identifier};
    QStringList events;

    void SetUp() override
    {
        ASSERT_TRUE(own.registerService(BusName));
        QObject::connect(&*service, &ApplicationService::activateRequested, &*service,
                         [this] { events.append("activate"); });
        QObject::connect(
            &*service, &ApplicationService::openRequested, &*service,
            [this](const QStringList& addresses) { events.append("open " + addresses.join(' ')); });
    }
    /// Calls as another process does, and waits for the answer.
    QDBusMessage call(const QString& method, const QVariantList& arguments)
    {
        QDBusMessage message =
            QDBusMessage::createMethodCall(BusName, Path, "org.freedesktop.Application", method);
        message.setArguments(arguments);
        QDBusPendingCallWatcher watcher(other.asyncCall(message));
        EXPECT_TRUE(QTest::qWaitFor([&watcher] { return watcher.isFinished(); }, 60'000));
        return watcher.reply();
    }
};

TEST_F(ServiceOnABus, AddressesAreOpenedAsTheCallerWroteThem)
{
    const QDBusMessage answer = call(
        "Open", {QStringList{"https://a/ b", "/p", ""}, QVariantMap{{"desktop-startup-id", "x"}}});

    EXPECT_EQ(answer.type(), QDBusMessage::ReplyMessage) << qPrintable(answer.errorMessage());
    EXPECT_TRUE(QTest::qWaitFor([this] { return !events.isEmpty(); }));
    EXPECT_EQ(events, QStringList{"open https://a/ b /p "});
}

TEST_F(ServiceOnABus, TheApplicationIsActivated)
{
    EXPECT_EQ(call("Activate", {QVariantMap()}).type(), QDBusMessage::ReplyMessage);

    EXPECT_TRUE(QTest::qWaitFor([this] { return !events.isEmpty(); }));
    EXPECT_EQ(events, QStringList{"activate"});
}

TEST_F(ServiceOnABus, AnActionIsAnsweredAndDoesNothing)
{
    const QDBusMessage answer =
        call("ActivateAction",
             {"delete-everything", QVariantList{QVariant(QString("x"))}, QVariantMap()});

    EXPECT_EQ(answer.type(), QDBusMessage::ReplyMessage) << qPrintable(answer.errorMessage());
    EXPECT_EQ(events, QStringList());
}

TEST_F(ServiceOnABus, CallsThatAreNotInTheInterfaceAreErrors)
{
    EXPECT_EQ(call("Open", {}).type(), QDBusMessage::ErrorMessage);
    EXPECT_EQ(call("Open", {"https://a", QVariantMap()}).type(), QDBusMessage::ErrorMessage);
    EXPECT_EQ(call("deleteLater", {}).type(), QDBusMessage::ErrorMessage);
    EXPECT_EQ(events, QStringList());
}

TEST_F(ServiceOnABus, OnceItHasGoneNobodyAnswers)
{
    service.reset();

    EXPECT_EQ(call("Activate", {QVariantMap()}).type(), QDBusMessage::ErrorMessage);
}

TEST(ApplicationService, WithoutABusThereIsNothingToDo)
{
    const ApplicationService service(QDBusConnection("no such connection"), Identifier);
}

} // namespace
} // namespace Bralto
