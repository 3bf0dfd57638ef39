#include "Terminals/PaneStyle.h"
#include "Tests/Support/FakePanes.h"

#include <QJsonDocument>

#include <gtest/gtest.h>

using namespace Bralto;

namespace {

const QString DefaultKey = "paneStyleDefault";

PaneStyle styled(const QString& theme)
{
    PaneStyle style;
    style.theme = theme;
    return style;
}

} // namespace

TEST(PaneStyle, TheCatalogueStandsInItsOrder)
{
    QStringList ids;
    for (const PaneTheme& theme : PaneTheme::all())
        ids.append(theme.id);

    EXPECT_EQ(ids, QStringList({"default", "graphite", "midnight", "forest", "clay", "ocean",
                                "plum", "paper"}));
    EXPECT_EQ(PaneTheme::named("clay").background, 0x2A1C17U);
    EXPECT_EQ(PaneTheme::named("clay").foreground, 0xF2E3D9U);
    EXPECT_EQ(PaneTheme::named("clay").accent, 0xE8956FU);
}

TEST(PaneStyle, AnUnknownThemeShowsAsTheDefaultOne)
{
    EXPECT_STREQ(PaneTheme::named("sunset").id, "default");
    EXPECT_STREQ(PaneTheme::named({}).id, "default");
    EXPECT_STREQ(PaneTheme::named("Ocean").id, "default");
}

TEST(PaneStyle, TheColoursOfAThemeDecideItsScheme)
{
    using enum PaneTheme::Scheme;
    EXPECT_EQ(PaneTheme::named("default").colorScheme(), AsTheAppearance);
    EXPECT_EQ(PaneTheme::named("midnight").colorScheme(), Dark);
    EXPECT_EQ(PaneTheme::named("paper").colorScheme(), Light);
}

TEST(PaneStyle, AStyleComesBackFromItsJson)
{
    PaneStyle style = styled("plum");
    style.fontFamily = "Iosevka";
    style.fontSize = 13.5;

    EXPECT_EQ(PaneStyle::from(style.json()), style);
    EXPECT_EQ(PaneStyle::from(styled("default").json()), PaneStyle());
}

TEST(PaneStyle, AStyleWithoutFontHasOnlyItsThemeInItsJson)
{
    EXPECT_EQ(styled("plum").json().keys(), QStringList{"theme"});
}

TEST(PaneStyle, WhatIsNoStyleIsNotRead)
{
    EXPECT_EQ(PaneStyle::from({}), std::nullopt);
    EXPECT_EQ(PaneStyle::from({{"theme", 4}}), std::nullopt);
    EXPECT_EQ(PaneStyle::from({{"theme", "plum"}, {"fontSize", "large"}}), std::nullopt);
    EXPECT_EQ(PaneStyle::from({{"theme", "plum"}, {"fontFamily", 1}}), std::nullopt);
}

TEST(PaneStyle, ASnapshotKeepsTheIdOfAThemeThatIsGone)
{
    PaneMaker maker;
    const QString id = "3f2504e0-4f89-41d3-9a0c-0305e82c3301";
    PaneSnapshot pane;
    pane.kind = PaneKind::Chat;
    pane.directory = "/p";
    pane.claudeSessionId = id;
    pane.style = styled("sunset");
    PanelSnapshot snapshot;
    snapshot.groups.push_back({.panes = {pane}, .focusedIndex = 0, .name = {}});

    TerminalPanel panel("/p", snapshot, maker.panelServices());

    ConsolePane* restored = panel.groups().at(0)->panes().at(0).get();
    EXPECT_STREQ(PaneTheme::named(restored->style().theme).id, "default");
    ASSERT_TRUE(restored->snapshot().style.has_value());
    EXPECT_EQ(restored->snapshot().style->theme, "sunset");
    restored->setStyle(styled("ocean"));
    EXPECT_EQ(restored->snapshot().style->theme, "ocean");
}

TEST(PaneStyle, ANewPaneTakesTheDefault)
{
    MemoryDefaultsStore shared;
    PaneStyle style = styled("forest");
    style.fontSize = 15;

    PaneStyle::setNewPaneDefault(shared, style);

    EXPECT_EQ(PaneStyle::newPaneDefault(shared), style);
}

TEST(PaneStyle, TheDefaultThemeWithoutAFontLeavesNoKey)
{
    MemoryDefaultsStore shared;
    PaneStyle::setNewPaneDefault(shared, styled("forest"));
    ASSERT_TRUE(shared.data(DefaultKey).has_value());

    PaneStyle::setNewPaneDefault(shared, PaneStyle());

    EXPECT_FALSE(shared.data(DefaultKey).has_value());
    EXPECT_EQ(PaneStyle::newPaneDefault(shared), PaneStyle());
}

TEST(PaneStyle, TheDefaultThemeWithASizeIsKept)
{
    MemoryDefaultsStore shared;
    PaneStyle style;
    style.fontSize = 14;

    PaneStyle::setNewPaneDefault(shared, style);

    EXPECT_EQ(PaneStyle::newPaneDefault(shared), style);
}

TEST(PaneStyle, ADefaultThatCantBeReadIsThePlainOne)
{
    for (const char* bytes : {"", "not json", "[]", "{}", R"({"theme":7})", "{\"theme\":\"oc"}) {
        SCOPED_TRACE(bytes);
        MemoryDefaultsStore shared;
        shared.set(DefaultKey, QByteArray(bytes));
        EXPECT_EQ(PaneStyle::newPaneDefault(shared), PaneStyle());
    }
}
