#include "Projects/ProjectUse.h"
#include "Tests/Support/FixedClock.h"
#include "Tests/Support/MemoryDefaultsStore.h"

#include <gtest/gtest.h>

namespace Bralto {
namespace {

class UseOfProjects : public testing::Test {
protected:
    MemoryDefaultsStore shared;
    FixedClock clock;
    AppPaths paths{"/home/ann"};
};

TEST_F(UseOfProjects, AMarkIsKeptUnderTheStandardisedPathBesideTheOthers)
{
    ProjectUse::markUsed(shared, "/p/a/", clock.now());
    clock.advance(std::chrono::hours(1));
    ProjectUse::markUsed(shared, "/p/b", clock.now());
    ProjectUse::markUsed(shared, "/p/./b", clock.now().addSecs(5));

    EXPECT_EQ(ProjectUse::lastUsed(shared, "/p/a"), clock.now().addSecs(-3600));
    EXPECT_EQ(ProjectUse::lastUsed(shared, "/p/b"), clock.now().addSecs(5));
    EXPECT_EQ(ProjectUse::lastUsed(shared, "/p/c"), std::nullopt);
    EXPECT_EQ(shared.keys(), QStringList{"projectLastUsed"});
}

TEST_F(UseOfProjects, AnEntryThatIsNoDateIsNone)
{
    shared.set("projectLastUsed", QVariantMap{{"/p/a", QString("yesterday")}});

    EXPECT_EQ(ProjectUse::lastUsed(shared, "/p/a"), std::nullopt);
}

TEST_F(UseOfProjects, TheProjectsFolderIsTheChosenOneElseTheDefault)
{
    EXPECT_EQ(ProjectUse::currentRoot(shared, paths), "/home/ann/Documents/Claude Projects");
    EXPECT_EQ(ProjectUse::defaultRoot(paths), "/home/ann/Documents/Claude Projects");

    shared.set("projectsRoot", QString("/mnt/projects/"));
    EXPECT_EQ(ProjectUse::currentRoot(shared, paths), "/mnt/projects");

    shared.set("projectsRoot", QString(""));
    EXPECT_EQ(ProjectUse::currentRoot(shared, paths), "/home/ann/Documents/Claude Projects");
}

} // namespace
} // namespace Bralto
