#include "Views/Kit/Glide.h"
#include "Views/Kit/Theme.h"

#include <QSignalSpy>
#include <QTest>

#include <gtest/gtest.h>

using namespace Bralto;

namespace {

struct GlideTest : testing::Test {
    GlideTest()
    {
        window.resize(400, 100);
        one = new QWidget(&window);
        two = new QWidget(&window);
        one->setGeometry(0, 0, 400, 100);
        two->setGeometry(400, 0, 0, 100);
    }

    /// One gives half of the room to two.
    [[nodiscard]] std::vector<Glide::Way> halves() const
    {
        return {{.widget = one, .goal = {0, 0, 200, 100}},
                {.widget = two, .goal = {200, 0, 200, 100}}};
    }

    Theme theme{{.dark = true, .reducedMotion = false}};
    QWidget window;
    QWidget* one;
    QWidget* two;
    Glide glide{theme, nullptr};
    QSignalSpy started{&glide, &Glide::started};
    QSignalSpy settled{&glide, &Glide::settled};
};

} // namespace

TEST_F(GlideTest, NeighboursStayTogetherOnTheirWay)
{
    glide.moveTo(halves(), Motions::Panel);
    EXPECT_TRUE(glide.isMoving());
    bool wasBetween = false;
    const bool arrived = QTest::qWaitFor([&] {
        EXPECT_EQ(one->x() + one->width(), two->x());
        wasBetween = wasBetween || (two->width() > 0 && two->width() < 200);
        return !glide.isMoving();
    });

    EXPECT_TRUE(arrived);
    EXPECT_TRUE(wasBetween);
    EXPECT_EQ(one->geometry(), QRect(0, 0, 200, 100));
    EXPECT_EQ(two->geometry(), QRect(200, 0, 200, 100));
    EXPECT_EQ(started.size(), 1);
    EXPECT_EQ(settled.size(), 1);
}

TEST_F(GlideTest, WithReducedMotionEverythingIsThereAtOnce)
{
    theme.setSystem({.dark = true, .reducedMotion = true});

    glide.moveTo(halves(), Motions::Panel);

    EXPECT_EQ(two->geometry(), QRect(200, 0, 200, 100));
    EXPECT_EQ(started.size(), 0);
}

TEST_F(GlideTest, TheSameWayIsNotBegunAgain)
{
    glide.moveTo(halves(), Motions::Panel);
    glide.moveTo(halves(), Motions::Panel);

    EXPECT_EQ(started.size(), 1);
}

TEST_F(GlideTest, AnotherWayGoesOnFromWhereThingsAre)
{
    glide.moveTo(halves(), Motions::Panel);
    ASSERT_TRUE(QTest::qWaitFor([this] { return one->width() < 390; }));
    const int width = one->width();

    glide.moveTo({{.widget = one, .goal = {0, 0, 400, 100}}}, Motions::Panel);

    EXPECT_EQ(one->width(), width);
    EXPECT_EQ(started.size(), 1);
    EXPECT_EQ(settled.size(), 0);
    ASSERT_TRUE(QTest::qWaitFor([this] { return !glide.isMoving(); }));
    EXPECT_EQ(one->width(), 400);
    EXPECT_EQ(settled.size(), 1);
}

TEST_F(GlideTest, JumpingEndsAWay)
{
    glide.moveTo(halves(), Motions::Panel);

    glide.jumpTo(halves());

    EXPECT_FALSE(glide.isMoving());
    EXPECT_EQ(two->geometry(), QRect(200, 0, 200, 100));
    EXPECT_EQ(settled.size(), 1);
}

TEST_F(GlideTest, AWidgetMayGoOnItsWay)
{
    glide.moveTo(halves(), Motions::Panel);
    delete two;

    ASSERT_TRUE(QTest::qWaitFor([this] { return !glide.isMoving(); }));

    EXPECT_EQ(one->width(), 200);
}
