#include "Platform/XkbKeyboardLayout.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QProcess>

#include <gtest/gtest.h>

#include <cstdlib>

#include <xcb/xcb.h>
#define explicit explicit_ // the name of a field
#include <xcb/xkb.h>
#undef explicit

namespace Bralto {
namespace {

// Scan codes by what is printed there on a US keyboard.
constexpr quint32 Key1 = 10;
constexpr quint32 KeyQ = 24;
constexpr quint32 KeyZ = 52;
constexpr quint32 KeyA = 38;
constexpr quint32 CapsLockKey = 66;

/// An X server of our own whose keyboard can be changed.
class XServer {
public:
    XServer()
    {
        m_server.start("Xvfb", {"-displayfd", "1", "-nolisten", "tcp", "-noreset"});
        while (!m_line.contains('\n') && m_server.waitForReadyRead())
            m_line += m_server.readAllStandardOutput();
    }
    ~XServer()
    {
        m_server.terminate();
        m_server.waitForFinished();
    }

    [[nodiscard]] QByteArray display() const { return ":" + m_line.trimmed(); }
    void setLayout(const QString& layout) const { run("setxkbmap", {"-layout", layout}); }
    /// As a key that chooses the next layout does.
    void lockGroup(int group) const
    {
        xcb_connection_t* const connection = xcb_connect(display().constData(), nullptr);
        std::free(xcb_xkb_use_extension_reply(connection, xcb_xkb_use_extension(connection, 1, 0),
                                              nullptr));
        xcb_xkb_latch_lock_state(connection, XCB_XKB_ID_USE_CORE_KBD, 0, 0, 1, uint8_t(group), 0, 0,
                                 0);
        std::free(xcb_get_input_focus_reply(connection, xcb_get_input_focus(connection), nullptr));
        xcb_disconnect(connection);
    }
    void tap(const QString& key) const { run("xdotool", {"key", key}); }

private:
    void run(const QString& program, const QStringList& arguments) const
    {
        QProcess process;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("DISPLAY", QString::fromLatin1(display()));
        process.setProcessEnvironment(environment);
        process.start(program, arguments);
        ASSERT_TRUE(process.waitForFinished());
        ASSERT_EQ(process.exitCode(), 0) << process.readAllStandardError().constData();
    }

    QProcess m_server;
    QByteArray m_line;
};

struct XkbKeyboardLayoutTest : testing::Test {
    /// Lets the layout hear of what another program did.
    template <typename Holds>
    static bool soon(Holds holds)
    {
        QElapsedTimer timer;
        timer.start();
        while (!holds() && timer.elapsed() < 30'000)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 50);
        return holds();
    }

    XServer server;
};

TEST_F(XkbKeyboardLayoutTest, TellsTheCharactersOfTheServersKeyboardAndThoseOfAUsOne)
{
    server.setLayout("de");

    const XkbKeyboardLayout layout(server.display());

    ASSERT_TRUE(layout.followsServer());
    EXPECT_EQ(layout.symbols(KeyZ, 0x79), (KeyboardLayout::Symbols{'y', 'Y', 'z', 'y'}));
    EXPECT_EQ(layout.symbols(Key1, 0x21), (KeyboardLayout::Symbols{'1', '!', '1', '!'}));
    EXPECT_EQ(layout.symbols(KeyQ, 0x40).typed, U'@') << "of the third level";
}

TEST_F(XkbKeyboardLayoutTest, FollowsAnotherLayout)
{
    server.setLayout("us");
    const XkbKeyboardLayout layout(server.display());
    ASSERT_EQ(layout.symbols(KeyA, 0).plain, U'a');

    server.setLayout("fr");

    EXPECT_TRUE(soon([&] { return layout.symbols(KeyA, 0).plain == U'q'; }));
    EXPECT_EQ(layout.symbols(Key1, 0), (KeyboardLayout::Symbols{'&', '1', '1', 0}));
}

TEST_F(XkbKeyboardLayoutTest, FollowsTheChosenGroup)
{
    server.setLayout("us,ru");
    const XkbKeyboardLayout layout(server.display());
    ASSERT_EQ(layout.symbols(KeyA, 0).plain, U'a');

    server.lockGroup(1);

    EXPECT_TRUE(soon([&] { return layout.symbols(KeyA, 0).plain == U'ф'; }));
    EXPECT_EQ(layout.symbols(KeyA, 0), (KeyboardLayout::Symbols{U'ф', U'Ф', 'a', 0}));
}

TEST_F(XkbKeyboardLayoutTest, KnowsWhichLocksAreOn)
{
    const XkbKeyboardLayout layout(server.display());
    ASSERT_EQ(layout.locks(), KeyboardLayout::Locks{});

    server.tap("Caps_Lock");
    EXPECT_TRUE(soon([&] { return layout.locks() == KeyboardLayout::Locks{true, false}; }));

    server.tap("Num_Lock");
    EXPECT_TRUE(soon([&] { return layout.locks() == KeyboardLayout::Locks{true, true}; }));
}

TEST(XkbKeyboardLayout, WithoutAServerTheEnvironmentNamesTheLayout)
{
    qputenv("XKB_DEFAULT_LAYOUT", "fr");

    const XkbKeyboardLayout layout(std::nullopt);

    EXPECT_FALSE(layout.followsServer());
    EXPECT_EQ(layout.symbols(Key1, 0), (KeyboardLayout::Symbols{'&', '1', '1', 0}));
    EXPECT_EQ(layout.symbols(CapsLockKey, 0), KeyboardLayout::Symbols{});
    EXPECT_EQ(layout.locks(), KeyboardLayout::Locks{});
    qunsetenv("XKB_DEFAULT_LAYOUT");
}

TEST(XkbKeyboardLayout, AServerThatCantBeReachedIsAsNone)
{
    const XkbKeyboardLayout layout(QByteArray(":9999"));

    EXPECT_FALSE(layout.followsServer());
    EXPECT_EQ(layout.symbols(KeyA, 0).plain, U'a');
}

} // namespace
} // namespace Bralto
