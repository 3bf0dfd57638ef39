// click, type, press and scroll, on a real engine.

#include "Tests/Support/PageToolsHarness.h"

namespace Bralto {
namespace {

class ActionTools : public PageTools {
protected:
    QString click(const QString& selector) { return text("click", {{"selector", selector}}); }
    QString type(const QString& selector, const QString& what)
    {
        return text("type", {{"selector", selector}, {"text", what}});
    }
    QString press(const QString& key, const QString& selector = {})
    {
        QJsonObject arguments{{"key", key}};
        if (!selector.isEmpty())
            arguments["selector"] = selector;
        return text("press", arguments);
    }
    /// The events that the page of events.html saw since the last time.
    QString events() { return value("log.splice(0).join(', ')").remove('"'); }
};

// --- click

TEST_F(ActionTools, AClickIsAllThatAMouseDoes)
{
    open("/events.html");

    EXPECT_EQ(click("#target"), "Clicked button \"Press me\"");

    EXPECT_EQ(events(),
              "pointerover inside, pointerenter inside, mouseover inside, mouseenter inside, "
              "pointerdown inside buttons 1, mousedown inside buttons 1, focusin target, "
              "pointerup inside, mouseup inside, click inside");
}

TEST_F(ActionTools, ADoubleClickIsTwoClicksAndOneMore)
{
    open("/events.html");

    text("click", {{"selector", "#target"}, {"double", true}});

    EXPECT_TRUE(
        events().endsWith("mouseup inside, click inside, click inside, dblclick inside twice"));
}

TEST_F(ActionTools, WhatIsOnTopIsTold)
{
    open("/events.html");

    EXPECT_EQ(click("#covered"),
              "Clicked button \"Covered\" (note: div \"Cover\" was on top of it)");
    EXPECT_TRUE(events().endsWith("click covered"));
}

TEST_F(ActionTools, WhatIsFarAwayIsScrolledIntoView)
{
    open("/events.html");

    EXPECT_EQ(click("#far"), "Clicked button \"Far\"");

    EXPECT_GT(value("scrollY").toInt(), 3000);
}

TEST_F(ActionTools, ADrawingCanBeClicked)
{
    open("/events.html");
    click("#drawing");
    EXPECT_TRUE(events().endsWith("click dot"));
}

TEST_F(ActionTools, ClicksReachIntoShadowRoots)
{
    open("/shadow.html");
    EXPECT_EQ(text("click", {{"ref", refOf("Deep")}}), "Clicked button \"Deep\"");
    EXPECT_EQ(value("document.title"), "\"Deep clicked\"");
}

TEST_F(ActionTools, ControlsDoWhatTheyDoForAMouse)
{
    open("/controls.html");
    click("[name=box]");
    click("[name=pick][value=b]");
    EXPECT_EQ(value("form.box.checked && form.pick.value"), "\"b\"");
    EXPECT_TRUE(outline().contains("checkbox \"Box\" [ref=e8] [checked]"));

    click("form button");
    EXPECT_TRUE(value("document.title").contains("pick=b"));
}

TEST_F(ActionTools, AClickNeedsAnElement)
{
    show("<button>One</button>");
    EXPECT_EQ(error("click"), "Page script error: Pass a ref from snapshot or a CSS selector.");
    EXPECT_EQ(error("click", {{"selector", "#none"}}),
              "Page script error: Nothing on the page matches #none");
    EXPECT_TRUE(error("click", {{"selector", "#["}}).contains("not a valid selector"));
}

TEST_F(ActionTools, ANavigationThatFollowsAClickIsTold)
{
    for (const char* selector : {"a", "#go", "#later"}) {
        SCOPED_TRACE(selector);
        open("/leaving.html");
        const QString told = click(selector);
        EXPECT_TRUE(told.startsWith("Clicked ")) << told.toStdString();
        EXPECT_TRUE(told.contains("\nNow at tab ") && told.contains("Arrived — "))
            << told.toStdString();
    }
}

TEST_F(ActionTools, AnAddressThatThePagePushesIsTold)
{
    open("/leaving.html");
    EXPECT_TRUE(click("#push").endsWith("/leaving.html?pushed"));
}

TEST_F(ActionTools, ACardAndAZoneForDraggingAreFound)
{
    open("/drag.html");
    EXPECT_EQ(
        outline(),
        "- clickable \"Card\" [ref=e1]\n- listbox \"Zone\" [ref=e2]\n- slider \"Split\" [ref=e3]");
    EXPECT_EQ(click("#card"), "Clicked div \"Card\"");
}

TEST_F(ActionTools, AModalBoxIsAnElementLikeOthers)
{
    open("/dialogs.html");
    click("#open");
    EXPECT_TRUE(
        outline().contains("- dialog [ref=e4]\n  - form [ref=e5]\n    - paragraph: Really?\n    - "
                           "button \"Yes\" [ref=e6] [focused]"));
    click("dialog button");
    EXPECT_FALSE(outline().contains("dialog"));
}

TEST_F(ActionTools, AFrameIsSeenButNotEntered)
{
    open("/frames.html");
    EXPECT_EQ(outline(),
              "- heading [level=1] \"Frames\" [ref=e1]\n- iframe \"Same\" [ref=e2]\n- iframe "
              "\"Other\" [ref=e3]");
    EXPECT_EQ(text("click", {{"ref", "e3"}}), "Clicked iframe \"Other\"");
}

TEST_F(ActionTools, AHostilePageIsClickedAndTypedInto)
{
    open("/hostile.html");
    EXPECT_EQ(type("[name=children]", "x"), "Typed into input \"x\"");
    EXPECT_EQ(text("press", {{"key", "Tab"}, {"selector", "[name=shadowRoot]"}}),
              "Pressed Tab on input (focus moved to button \"Send\")");
    EXPECT_EQ(click("button"), "Clicked button \"Send\"");
    EXPECT_EQ(value("document.querySelector('[name=children]').value"), "\"x\"");
    EXPECT_EQ(value("[1, {a: [2]}]"), "[1,{\"a\":[2]}]");
    EXPECT_TRUE(text("wait", {{"text", "Still"}}).startsWith("Found"));
    EXPECT_TRUE(text("scroll", {{"dy", 10}}).startsWith("Scrolled"));
}

// --- type

TEST_F(ActionTools, TextReplacesWhatIsThere)
{
    open("/controls.html");

    EXPECT_EQ(type("[name=text]", "new"), "Typed into input \"new\"");
    EXPECT_EQ(value("form.text.value"), "\"new\"");

    text("type", {{"selector", "[name=text]"}, {"text", "er"}, {"clear", false}});
    EXPECT_EQ(value("form.text.value"), "\"newer\"");
}

TEST_F(ActionTools, EveryKindOfFieldTakesItsValue)
{
    open("/controls.html");
    const std::vector<std::pair<QString, QString>> rows{
        {"number", "42"}, {"date", "2026-11-21"}, {"color", "#ff0000"},
        {"range", "7"},   {"password", "pass"},   {"area", "one\ntwo"},
    };
    for (const auto& [name, what] : rows) {
        type("[name=" + name + "]", what);
        EXPECT_EQ(value("form." + name + ".value === " +
                        QString::fromUtf8(QJsonDocument(QJsonArray{what}).toJson()) + "[0]"),
                  "true")
            << name.toStdString();
    }
    EXPECT_EQ(type("[name=password]", "secret"), "Typed into input \"••••••\"");
}

TEST_F(ActionTools, AChoiceIsMadeByValueTextOrPart)
{
    open("/controls.html");
    for (const auto& [what, chosen] : std::vector<std::pair<QString, QString>>{
             {"fr", "fr"}, {"New Zealand", "nz"}, {"germ", "de"}}) {
        EXPECT_TRUE(type("select", what).startsWith("Typed into select"));
        EXPECT_EQ(value("form.choice.value"), '"' + chosen + '"');
    }
    EXPECT_EQ(error("type", {{"selector", "select"}, {"text", "Mars"}}),
              "Page script error: No option \"Mars\" . Options: Germany | France | New Zealand");
}

TEST_F(ActionTools, AnEditorTakesText)
{
    open("/controls.html");
    type("#editor", "New text");
    EXPECT_EQ(value("editor.textContent"), "\"New text\"");

    text("type", {{"selector", "#editor"}, {"text", " more"}, {"clear", false}});
    EXPECT_EQ(value("editor.textContent"), "\"New text more\"");
}

TEST_F(ActionTools, AFrameworkHearsOfTheValue)
{
    open("/framework.html");

    type("#controlled", "hello");
    EXPECT_EQ(value("state.textContent"), "\"state: hello\"");
    type("#area", "long");
    EXPECT_EQ(value("state.textContent"), "\"area: long\"");
}

TEST_F(ActionTools, TypingIsToldByItsEvents)
{
    open("/events.html");
    type("#field", "ab");
    EXPECT_EQ(events(), "focusin field, keydown field b, input field, keyup field b, change field");
}

TEST_F(ActionTools, TheFocusedFieldIsTakenWithoutANameOfOne)
{
    open("/controls.html");
    EXPECT_EQ(error("type", {{"text", "a"}}),
              "Page script error: Pass a ref from snapshot or a CSS selector for the field.");
    value("free.focus()");
    EXPECT_EQ(text("type", {{"text", "a"}}), "Typed into input \"a\"");
}

TEST_F(ActionTools, WhatIsNoFieldTakesNoText)
{
    open("/controls.html");
    for (const auto& [selector, name] :
         std::vector<std::pair<QString, QString>>{{"form button", "button \"Send\""},
                                                  {"[name=box]", "input \"Box\""},
                                                  {"form", "form"}}) {
        EXPECT_TRUE(error("type", {{"selector", selector}, {"text", "a"}})
                        .startsWith("Page script error: " + name))
            << selector.toStdString();
    }
    EXPECT_TRUE(error("type", {{"selector", "form button"}, {"text", "a"}})
                    .endsWith("isn't a text field."));
}

TEST_F(ActionTools, TypedTextCanBeSubmitted)
{
    open("/controls.html");
    EXPECT_EQ(text("type", {{"selector", "[name=text]"}, {"text", "x"}, {"submit", true}}),
              "Typed into input \"x\" and submitted the form");
    EXPECT_TRUE(value("document.title").startsWith("\"Sent text=x"));
    EXPECT_EQ(text("type", {{"selector", "#free"}, {"text", "x"}, {"submit", true}}),
              "Typed into input \"x\" and pressed Enter");

    value("form.addEventListener('keydown', (e) => e.preventDefault())");
    EXPECT_TRUE(text("type", {{"selector", "[name=text]"}, {"text", "y"}, {"submit", true}})
                    .endsWith(" and pressed Enter"));
}

TEST_F(ActionTools, ASubmittedFormThatLeavesIsTold)
{
    open("/leaving.html");
    const QString told = text("type", {{"selector", "[name=q]"}, {"text", "x"}, {"submit", true}});
    EXPECT_TRUE(told.contains("submitted the form\nNow at tab ")) << told.toStdString();
    EXPECT_TRUE(told.endsWith("/arrived.html?q=x"));
}

// --- press

TEST_F(ActionTools, AKeyIsToldByItsEvents)
{
    open("/events.html");
    EXPECT_EQ(press("a", "#field"), "Pressed a on input");
    EXPECT_EQ(events(),
              "focusin field, keydown field a, keypress field a, input field, keyup field a");
    EXPECT_EQ(press("Escape"), "Pressed Escape on input \"a\"");
    EXPECT_EQ(events(), "keydown field Escape, keyup field Escape");
}

TEST_F(ActionTools, KeysHaveTheirCodes)
{
    show("<input id=a><script>addEventListener('keydown', (e) => said = [e.key, e.code, e.keyCode, "
         "e.shiftKey, e.ctrlKey, e.altKey, e.metaKey].join())</script>");
    const std::vector<std::pair<QString, QString>> rows{
        {"Enter", "Enter,Enter,13,false,false,false,false"},
        {"return", "Enter,Enter,13,false,false,false,false"},
        {"esc", "Escape,Escape,27,false,false,false,false"},
        {"space", " ,Space,32,false,false,false,false"},
        {"down", "ArrowDown,ArrowDown,40,false,false,false,false"},
        {"del", "Delete,Delete,46,false,false,false,false"},
        {"x", "x,KeyX,88,false,false,false,false"},
        {"7", "7,Digit7,55,false,false,false,false"},
        {"F5", "F5,F5,0,false,false,false,false"},
        {"+", "+,+,43,false,false,false,false"},
        {"Control++", "+,+,43,false,true,false,false"},
        {"Shift+Tab", "Tab,Tab,9,true,false,false,false"},
        {"ctrl+alt+a", "a,KeyA,65,false,true,true,false"},
        {"Cmd+Option+k", "k,KeyK,75,false,false,true,true"},
    };
    for (const auto& [key, said] : rows) {
        press(key, "#a");
        EXPECT_EQ(value("said"), '"' + said + '"') << key.toStdString();
    }
}

TEST_F(ActionTools, EnterDoesWhatItDoesThere)
{
    open("/controls.html");
    EXPECT_EQ(press("Enter", "[name=text]"), "Pressed Enter on input \"old\" (submitted the form)");
    EXPECT_TRUE(value("document.title").startsWith("\"Sent"));
    value("form.area.value = 'a'");
    EXPECT_EQ(press("Enter", "[name=area]"), "Pressed Enter on textarea \"a\"");
    EXPECT_EQ(value("form.area.value"), "\"a\\n\"");
    EXPECT_EQ(press("Enter", "#editor"), "Pressed Enter on div \"Editor\"");
    EXPECT_GT(value("editor.childNodes.length").toInt(), 1);
    EXPECT_EQ(press("Enter", "#free"), "Pressed Enter on input \"Free\"");

    show("<button onclick='document.title = 1'>B</button><div role=option tabindex=0 "
         "onclick='document.title = 2'>O</div>");
    EXPECT_EQ(press("Enter", "button"), "Pressed Enter on button \"B\" (activated it)");
    EXPECT_EQ(press("Enter", "div"), "Pressed Enter on div \"O\" (activated it)");
    EXPECT_EQ(value("document.title"), "\"2\"");
}

TEST_F(ActionTools, SpacePressesButtonsAndBoxes)
{
    open("/controls.html");
    press("Space", "[name=box]");
    EXPECT_EQ(value("form.box.checked"), "true");
    press("Space", "[name=text]");
    EXPECT_EQ(value("form.text.value"), "\"old \"");

    show("<div role=switch tabindex=0 onclick='document.title = "
         "3'>S</div><details><summary>More</summary>x</details>");
    press("Space", "div");
    press("Space", "summary");
    EXPECT_EQ(value("document.title + document.querySelector('details').open"), "\"3true\"");
}

TEST_F(ActionTools, TabMovesTheFocusAroundThePage)
{
    show("<input id=a><button disabled>No</button><button hidden>No</button><a href='/x'>Link</a>"
         "<div tabindex=-1>No</div><div tabindex=0>Yes</div>");
    EXPECT_EQ(press("Tab", "#a"), "Pressed Tab on input (focus moved to a \"Link\")");
    EXPECT_EQ(press("Tab"), "Pressed Tab on a \"Link\" (focus moved to div \"Yes\")");
    EXPECT_EQ(press("Tab"), "Pressed Tab on div \"Yes\" (focus moved to input)");
    EXPECT_EQ(press("Shift+Tab"), "Pressed Shift+Tab on input (focus moved to div \"Yes\")");
}

TEST_F(ActionTools, TabGoesThroughShadowRoots)
{
    open("/shadow.html");
    EXPECT_TRUE(press("Tab").endsWith("(focus moved to button \"Deep\")"));
    EXPECT_TRUE(
        press("Tab").startsWith("Pressed Tab on button \"Deep\" (focus moved to a \"Slotted\")"));
}

TEST_F(ActionTools, KeysEditFields)
{
    open("/controls.html");
    press("Backspace", "[name=text]");
    EXPECT_EQ(value("form.text.value"), "\"ol\"");
    press("Shift+d", "[name=text]");
    EXPECT_EQ(value("form.text.value"), "\"olD\"");
    press("Meta+a", "[name=text]");
    press("Control+x", "[name=text]");
    EXPECT_EQ(value("form.text.value"), "\"olD\"");
    press("😀", "[name=text]");
    press("Backspace", "[name=text]");
    EXPECT_EQ(value("form.text.value"), "\"olD\"");
    press("x", "#editor");
    EXPECT_TRUE(value("editor.textContent").contains('x'));
}

TEST_F(ActionTools, ElsewhereKeysScroll)
{
    show("<div style='height:5000px'></div>");
    const std::vector<std::pair<QString, int>> rows{
        {"ArrowDown", 40}, {"PageDown", 720}, {"Space", 1400}, {"Shift+Space", 720},
        {"PageUp", 40},    {"ArrowUp", 0},    {"End", 4216},   {"Home", 0},
    };
    for (const auto& [key, at] : rows) {
        press(key);
        EXPECT_EQ(value("Math.round(scrollY)").toInt(), at) << key.toStdString();
    }
}

TEST_F(ActionTools, AKeyThatThePageTakesDoesNothingElse)
{
    show("<input id=a value=x><script>addEventListener('keydown', (e) => "
         "e.preventDefault())</script>");
    EXPECT_EQ(press("Backspace", "#a"), "Pressed Backspace on input \"x\" (the page handled it)");
    EXPECT_EQ(value("a.value"), "\"x\"");
}

// --- scroll

TEST_F(ActionTools, ThePageIsScrolledByPixels)
{
    show("<div style='height:3000px'></div>");
    EXPECT_EQ(text("scroll", {{"dy", 500}}), "Scrolled by 0, 500. Page is at 500 of 2216.");
    EXPECT_EQ(text("scroll", {{"dy", -9999}, {"dx", "5"}}),
              "Scrolled by 5, -9999. Page is at 0 of 2216.");
    EXPECT_EQ(text("scroll"), "Scrolled by 0, 0. Page is at 0 of 2216.");
}

TEST_F(ActionTools, AnElementIsScrolledOrBroughtIntoView)
{
    open("/controls.html");
    EXPECT_EQ(text("scroll", {{"selector", "#box"}, {"dy", 300}}),
              "Scrolled by 0, 300. div \"Scroller\" is at 300 of 900.");

    open("/events.html");
    const QString told = text("scroll", {{"selector", "#far"}});
    EXPECT_TRUE(told.startsWith("Scrolled button \"Far\" into view. Page is at 3"))
        << told.toStdString();
}

} // namespace
} // namespace Bralto
