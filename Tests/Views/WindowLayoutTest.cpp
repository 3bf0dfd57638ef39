#include "Views/Window/WindowLayout.h"
#include "Views/Kit/WidthShares.h"
#include "Views/Window/WindowButtons.h"

#include <gtest/gtest.h>

#include <limits>

using namespace Bralto;
using WindowLayout::Role;
using WindowLayout::Screen;

TEST(WindowLayout, WithoutAProjectTheHomeApplicationShowsItsHomeScreen)
{
    EXPECT_EQ(WindowLayout::screen(Role::HomeApplication, false), Screen::Home);
}

TEST(WindowLayout, AProjectWhoseFolderHasGoneWelcomes)
{
    EXPECT_EQ(WindowLayout::screen(Role::FolderApplication, false), Screen::Welcome);
}

TEST(WindowLayout, WithAProjectTheWindowShowsIt)
{
    EXPECT_EQ(WindowLayout::screen(Role::FolderApplication, true), Screen::Project);
}

TEST(WindowLayout, AHiddenPanelLeavesTheEditorEverything)
{
    EXPECT_EQ(WindowLayout::target(false, false, true), EditorLayout::Full);
    EXPECT_EQ(WindowLayout::target(false, false, false), EditorLayout::Full);
}

TEST(WindowLayout, AMaximizedPanelThatIsHiddenLeavesTheEditorEverything)
{
    EXPECT_EQ(WindowLayout::target(true, true, true), EditorLayout::Hidden);
    EXPECT_EQ(WindowLayout::target(false, true, true), EditorLayout::Full);
}

TEST(WindowLayout, AVisiblePanelSharesWithATab)
{
    EXPECT_EQ(WindowLayout::target(true, false, true), EditorLayout::Shared);
}

TEST(WindowLayout, WithoutATabTheVisiblePanelFillsTheArea)
{
    EXPECT_EQ(WindowLayout::target(true, false, false), EditorLayout::Hidden);
}

TEST(WindowLayout, OnlyALaterLayoutShrinksTheEditor)
{
    EXPECT_TRUE(WindowLayout::shrinksEditor(EditorLayout::Full, EditorLayout::Shared));
    EXPECT_TRUE(WindowLayout::shrinksEditor(EditorLayout::Shared, EditorLayout::Hidden));
    EXPECT_FALSE(WindowLayout::shrinksEditor(EditorLayout::Hidden, EditorLayout::Shared));
    EXPECT_FALSE(WindowLayout::shrinksEditor(EditorLayout::Full, EditorLayout::Full));
}

TEST(WindowLayout, ASidebarDragStopsAtItsEnds)
{
    EXPECT_EQ(WindowLayout::draggedSidebar(244, -100), 190);
    EXPECT_EQ(WindowLayout::draggedSidebar(244, 300), 420);
    EXPECT_EQ(WindowLayout::draggedSidebar(244, 16), 260);
}

TEST(WindowLayout, AStoredSidebarWidthIsBroughtIntoItsRange)
{
    EXPECT_EQ(WindowLayout::sidebarWidth(std::nullopt), 244);
    EXPECT_EQ(WindowLayout::sidebarWidth(12), 190);
    EXPECT_EQ(WindowLayout::sidebarWidth(9000), 420);
    EXPECT_EQ(WindowLayout::sidebarWidth(std::numeric_limits<double>::quiet_NaN()), 244);
}

TEST(WindowLayout, ASeamDragCountsFromWhereItBegan)
{
    EXPECT_EQ(WindowLayout::draggedShare(0.5, 100, 400, 0.15, 0.85), 0.75);
}

TEST(WindowLayout, ASeamStopsAtItsLimits)
{
    EXPECT_EQ(WindowLayout::draggedShare(0.5, 5000, 400, 0.15, 0.85), 0.85);
    EXPECT_EQ(WindowLayout::draggedShare(0.5, -5000, 400, 0.15, 0.85), 0.15);
}

TEST(WindowLayout, ASeamOfAnAreaWithoutExtentDoesNothing)
{
    EXPECT_EQ(WindowLayout::draggedShare(0.5, 100, 0, 0.15, 0.85), std::nullopt);
    EXPECT_EQ(WindowLayout::draggedShare(0.5, 100, -3, 0.15, 0.85), std::nullopt);
}

TEST(WidthShares, WhatFitsIsAsWideAsItWants)
{
    EXPECT_EQ(widthShares({100, 60}, 200, 2, 40), (std::vector{100, 60}));
}

TEST(WidthShares, TheWidestGiveWayFirst)
{
    EXPECT_EQ(widthShares({200, 60, 200}, 264, 2, 40), (std::vector{100, 60, 100}));
}

TEST(WidthShares, NothingIsNarrowerThanTheLeast)
{
    EXPECT_EQ(widthShares({200, 60, 200}, 10, 2, 50), (std::vector{50, 50, 50}));
    EXPECT_EQ(widthShares({}, 10, 2, 50), std::vector<int>{});
}

TEST(WindowButtons, TheDesktopDecidesSideAndOrder)
{
    using enum WindowButton;
    EXPECT_EQ(WindowButtonLayout::parse("close,minimize:maximize"),
              (WindowButtonLayout{{Close, Minimize}, {Maximize}}));
    EXPECT_EQ(WindowButtonLayout::parse("appmenu:close"), (WindowButtonLayout{{}, {Close}}));
}

TEST(WindowButtons, WhatIsRepeatedOrUnknownIsPassedOver)
{
    using enum WindowButton;
    EXPECT_EQ(WindowButtonLayout::parse(":close, close,shade,icon"),
              (WindowButtonLayout{{}, {Close}}));
}

TEST(WindowButtons, ADesktopThatSaysNothingGetsAllThreeAtTheRight)
{
    using enum WindowButton;
    const WindowButtonLayout usual{{}, {Minimize, Maximize, Close}};
    EXPECT_EQ(WindowButtonLayout::parse(""), usual);
    EXPECT_EQ(WindowButtonLayout::parse("menu:"), usual);
}

TEST(WindowButtons, ANarrowWindowKeepsOnlyTheCloseButton)
{
    using enum WindowButton;
    const WindowButtonLayout usual;
    EXPECT_EQ(usual.fitting(720), usual);
    EXPECT_EQ(usual.fitting(719), (WindowButtonLayout{{}, {Close}}));
}
