#include "Base/Zoom.h"
#include "Tests/Support/MemoryDefaultsStore.h"

#include <gtest/gtest.h>

namespace Bralto {
namespace {

using Area = Zoom::Area;

class ZoomLevels : public testing::Test {
protected:
    MemoryDefaultsStore shared;
    QList<Area> told;

    /// A model that reads what is stored now.
    std::unique_ptr<Zoom> zoom()
    {
        auto made = std::make_unique<Zoom>(shared);
        QObject::connect(made.get(), &Zoom::changed, made.get(),
                         [this](Area area) { told.append(area); });
        return made;
    }
};

TEST_F(ZoomLevels, AnAreaNobodyZoomedIsAtItsActualSize)
{
    for (const Area area : Zoom::AllAreas)
        EXPECT_EQ(zoom()->level(area), 1.0);
}

TEST_F(ZoomLevels, StoredLevelsAreReadPerArea)
{
    shared.set("zoom.files", 1.2);
    shared.set("zoom.editor", 0.8);
    shared.set("zoom.browser", 2LL);
    shared.set("zoom.terminal", 1.5);

    EXPECT_EQ(zoom()->level(Area::Files), 1.2);
    EXPECT_EQ(zoom()->level(Area::Editor), 0.8);
    EXPECT_EQ(zoom()->level(Area::Browser), 2.0);
    EXPECT_EQ(zoom()->level(Area::Terminal), 1.5);
}

TEST_F(ZoomLevels, AStoredLevelThatIsNotPositiveReadsAsOne)
{
    shared.set("zoom.editor", 0.0);
    shared.set("zoom.files", -1.0);
    shared.set("zoom.browser", QString("2"));

    EXPECT_EQ(zoom()->level(Area::Editor), 1.0);
    EXPECT_EQ(zoom()->level(Area::Files), 1.0);
    EXPECT_EQ(zoom()->level(Area::Browser), 1.0);
}

TEST_F(ZoomLevels, ZoomingInStepsThroughTheListAndStopsAtItsEnd)
{
    shared.set("zoom.editor", 0.6);
    const auto model = zoom();
    QList<double> levels;

    for (std::size_t step = 0; step <= Zoom::Steps.size(); ++step) {
        levels.append(model->level(Area::Editor));
        model->zoomIn(Area::Editor);
    }

    EXPECT_EQ(levels,
              (QList<double>{0.6, 0.7, 0.8, 0.9, 1.0, 1.1, 1.2, 1.35, 1.5, 1.75, 2.0, 2.5, 2.5}));
    EXPECT_EQ(told.size(), 11);
}

TEST_F(ZoomLevels, ZoomingOutStepsThroughTheListAndStopsAtItsStart)
{
    shared.set("zoom.editor", 2.5);
    const auto model = zoom();
    QList<double> levels;

    for (std::size_t step = 0; step <= Zoom::Steps.size(); ++step) {
        levels.append(model->level(Area::Editor));
        model->zoomOut(Area::Editor);
    }

    EXPECT_EQ(levels,
              (QList<double>{2.5, 2.0, 1.75, 1.5, 1.35, 1.2, 1.1, 1.0, 0.9, 0.8, 0.7, 0.6, 0.6}));
}

TEST_F(ZoomLevels, ALevelBetweenTwoStepsGoesToTheNextOneOnItsWay)
{
    shared.set("zoom.editor", 1.05);
    const auto in = zoom();
    const auto out = zoom();

    in->zoomIn(Area::Editor);
    out->zoomOut(Area::Editor);

    EXPECT_EQ(in->level(Area::Editor), 1.1);
    EXPECT_EQ(out->level(Area::Editor), 1.0);
}

TEST_F(ZoomLevels, ALevelBesideTheListComesBackToIt)
{
    shared.set("zoom.editor", 9.0);
    shared.set("zoom.files", 0.1);
    const auto model = zoom();

    model->zoomIn(Area::Editor);
    model->zoomOut(Area::Files);
    EXPECT_EQ(told, QList<Area>());

    model->zoomOut(Area::Editor);
    model->zoomIn(Area::Files);
    EXPECT_EQ(model->level(Area::Editor), 2.5);
    EXPECT_EQ(model->level(Area::Files), 0.6);
}

TEST_F(ZoomLevels, ALevelThatIsNearlyAStepCountsAsThatStep)
{
    shared.set("zoom.editor", 1.0995);
    const auto model = zoom();

    model->zoomIn(Area::Editor);

    EXPECT_EQ(model->level(Area::Editor), 1.2);
}

TEST_F(ZoomLevels, AChangeIsStoredAndTold)
{
    const auto model = zoom();

    model->set(Area::Terminal, 1.35);

    EXPECT_EQ(shared.value("zoom.terminal"), QVariant(1.35));
    EXPECT_EQ(told, QList<Area>{Area::Terminal});
    EXPECT_EQ(model->level(Area::Editor), 1.0);
}

TEST_F(ZoomLevels, SettingThePresentLevelDoesNothing)
{
    const auto model = zoom();

    model->set(Area::Files, 1.0);

    EXPECT_EQ(shared.keys(), QStringList());
    EXPECT_EQ(told, QList<Area>());
}

} // namespace
} // namespace Bralto
