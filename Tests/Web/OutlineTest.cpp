// What a snapshot makes of a page, element by element, on a real engine.

#include "Tests/Support/PageToolsHarness.h"

namespace Bralto {
namespace {

/// A page's body, and the outline that it must give; refs count from 1 on each page.
struct Row {
    const char* what;
    QString html;
    QString lines;
};

class Outline : public PageTools {
protected:
    void expectAll(const std::vector<Row>& rows)
    {
        for (const Row& row : rows) {
            SCOPED_TRACE(row.what);
            show(row.html);
            EXPECT_EQ(outline(), row.lines);
        }
    }
};

TEST_F(Outline, TheHeadTellsWhereThePageIs)
{
    show("<h1>Hi</h1><div style='height:3000px'></div>");
    EXPECT_EQ(text("snapshot"), "Tab " + tabs.tabs[0]->id().left(8).toLower() +
                                    "\nPage: Page\nURL: " + site.url("/shown").toString() +
                                    "\nViewport 1280×800, scrolled to 0 of " +
                                    value("document.scrollingElement.scrollHeight - innerHeight") +
                                    "\n\n- heading [level=1] \"Hi\" [ref=e1]");
}

TEST_F(Outline, LinksAndButtons)
{
    expectAll({
        {"a near link", "<a href='/a?b=1#c'>Go</a>", "- link \"Go\" [ref=e1] -> /a?b=1#c"},
        {"a far link", "<a href='https://far.test/a'>Go</a>",
         "- link \"Go\" [ref=e1] -> https://far.test/a"},
        {"an anchor", "<a name=x>Here</a>", "- text: Here"},
        {"a script link", "<a href='javascript:go()'>Go</a>",
         "- link \"Go\" [ref=e1] -> javascript:go()"},
        {"a button", "<button>Save <b>all</b></button>", "- button \"Save all\" [ref=e1]"},
        {"a disabled button", "<button disabled>Save</button>",
         "- button \"Save\" [ref=e1] [disabled]"},
        {"a button in a disabled group", "<fieldset disabled><button>Save</button></fieldset>",
         "- button \"Save\" [ref=e1] [disabled]"},
        {"an icon button", "<button><img alt='Close' src=''></button>",
         "- button \"Close\" [ref=e1]"},
        {"a drawing in a button", "<button><svg aria-label='Menu'></svg></button>",
         "- button \"Menu\" [ref=e1]"},
        {"a titled icon in a button", "<button><i title='Bold'></i></button>",
         "- button \"Bold\" [ref=e1]"},
        {"a button without a name", "<button></button>", "- button [ref=e1]"},
        {"buttons of inputs",
         "<input type=submit><input type=reset value=Clear><input type=image alt=''><input "
         "type=file>",
         "- button \"submit\" [ref=e1]\n- button \"Clear\" [ref=e2]\n- button \"Submit\" [ref=e3]\n"
         "- button \"file\" [ref=e4]"},
        {"a fold", "<details><summary>More</summary><p>Inside</p></details>",
         "- button \"More\" [ref=e1] [expanded=false]"},
        {"an open fold", "<details open><summary>More</summary><p>Inside</p></details>",
         "- button \"More\" [ref=e1] [expanded=true]\n- paragraph: Inside"},
    });
}

TEST_F(Outline, Fields)
{
    expectAll({
        {"a field with a hint", "<input placeholder=Name>", "- textbox \"Name\" [ref=e1]"},
        {"a field with a value", "<input name=q value='a  b'>",
         "- textbox \"q\" [ref=e1] value=\"a b\""},
        {"a label around a field", "<label>Name <input value=x></label>",
         "- text: Name\n- textbox \"Name\" [ref=e1] value=\"x\""},
        {"a label for a field", "<label for=a>Name</label><input id=a required>",
         "- text: Name\n- textbox \"Name\" [ref=e1] [required]"},
        {"a password", "<input type=password placeholder=Secret value=abc>",
         "- textbox \"Secret\" [ref=e1] value=\"•••\""},
        {"a search", "<input type=search title=Find>", "- searchbox \"Find\" [ref=e1]"},
        {"a number", "<input type=number name=n value=3>",
         "- spinbutton \"n\" [ref=e1] value=\"3\""},
        {"a slider", "<input type=range name=r value=30>", "- slider \"r\" [ref=e1] value=\"30\""},
        {"what is hidden", "<input type=hidden name=h value=1>", "(nothing visible)"},
        {"boxes", "<input type=checkbox name=a checked><input type=radio name=b>",
         "- checkbox \"a\" [ref=e1] [checked]\n- radio \"b\" [ref=e2]"},
        {"a text area", "<textarea placeholder=Note>one\ntwo</textarea>",
         "- textbox \"Note\" [ref=e1] value=\"one two\""},
        {"a choice", "<select name=s><option>A<option selected>B</select>",
         "- combobox \"s\" [ref=e1] value=\"B\" options: A | B"},
        {"a list", "<select name=s multiple><option selected>A<option selected>B</select>",
         "- listbox \"s\" [ref=e1] value=\"A, B\" options: A | B"},
        {"a choice in its label", "<label>Size <select><option>S<option>L</select></label>",
         "- text: Size\n- combobox \"Size\" [ref=e1] value=\"S\" options: S | L"},
        {"an editor", "<div contenteditable>Draft</div>", "- textbox \"Draft\" [ref=e1]"},
        {"no editor", "<div contenteditable=false>Draft</div>", "- text: Draft"},
        {"the focus", "<input name=a autofocus>", "- textbox \"a\" [ref=e1] [focused]"},
    });
}

TEST_F(Outline, ALongChoiceIsCut)
{
    QString options;
    for (int i = 1; i <= 15; ++i)
        options += QString("<option>%1").arg(i == 1 ? QString(50, 'x') : QString::number(i));
    show("<select name=s>" + options + "</select>");

    EXPECT_EQ(outline(), "- combobox \"s\" [ref=e1] value=\"" + QString(50, 'x') +
                             "\" options: " + QString(39, 'x') +
                             "… | 2 | 3 | 4 | 5 | 6 | 7 | 8 | 9 | 10 | 11 | 12 | … 3 more");
}

TEST_F(Outline, TextAndStructure)
{
    expectAll({
        {"paragraphs", "<p>One <b>bold</b> word</p><p></p><p>Two</p>",
         "- paragraph: One bold word\n- paragraph: Two"},
        {"a paragraph with a link", "<p>See <a href='/x'>this</a> now</p>",
         "- paragraph \"See this now\"\n  - text: See\n  - link \"this\" [ref=e1] -> /x\n  - text: "
         "now"},
        {"a list", "<ul><li>One<li>Two<li><a href='/x'>Three</a></ul>",
         "- list\n  - listitem: One\n  - listitem: Two\n  - listitem \"Three\"\n    - link "
         "\"Three\" "
         "[ref=e1] -> /x"},
        {"a table", "<table><tr><th>Name<th>Age<tr><td>Ann<td>7</table>",
         "- table\n  - row\n    - columnheader: Name\n    - columnheader: Age\n  - row\n    - "
         "cell: Ann\n"
         "    - cell: 7"},
        {"landmarks",
         "<header>a</header><nav>b</nav><main>c</main><aside>d</aside><footer>e</footer>",
         "- banner\n  - text: a\n- navigation\n  - text: b\n- main\n  - text: c\n- complementary\n "
         " - "
         "text: d\n- contentinfo\n  - text: e"},
        {"headings",
         "<h2>Two</h2><div role=heading aria-level=5>Five</div><div role=heading>So</div>",
         "- heading [level=2] \"Two\" [ref=e1]\n- heading [level=5] \"Five\" [ref=e2]\n- heading "
         "[level=2] \"So\" [ref=e3]"},
        {"a form and a dialog", "<form title=Login><p>x</p></form><dialog open>y</dialog>",
         "- form \"Login\" [ref=e1]\n  - paragraph: x\n- dialog [ref=e2]\n  - text: y"},
        {"pictures",
         "<img alt='A cat' src=''><svg aria-label='Chart'><title>t</title></svg><svg></svg>",
         "- img \"A cat\" [ref=e1]\n- img \"Chart\" [ref=e2]"},
        {"media", "<video title=Film>no video</video><audio controls></audio>",
         "- video \"Film\"\n- audio"},
        {"a frame", "<iframe src='about:blank#x' title=Ad></iframe>", "- iframe \"Ad\" [ref=e1]"},
        {"a frame without a title", "<iframe src='/none'></iframe>", "- iframe \"/none\" [ref=e1]"},
        {"texts side by side", "<div>One <span>two</span> <i>three</i></div>",
         "- text: One two three"},
        {"texts at other depths", "a<ul>b</ul>c", "- text: a\n- list\n  - text: b\n- text: c"},
        {"an empty item with a picture", "<ul><li><img alt='' src=''></ul>",
         "- list\n  - listitem"},
    });
}

TEST_F(Outline, Roles)
{
    expectAll({
        {"an explicit role", "<div role='tab other' aria-selected=true>One</div>",
         "- tab \"One\" [ref=e1] [selected]"},
        {"no role of its own", "<div role=generic><b>x</b></div><span role=none>y</span>",
         "- text: x y"},
        {"a switch", "<div role=switch aria-checked=true aria-label=Dark>x</div>",
         "- switch \"Dark\" [ref=e1] [checked]"},
        {"a menu", "<div role=menu><div role=menuitem aria-disabled=true>Cut</div></div>",
         "- menu\n  - menuitem \"Cut\" [ref=e1] [disabled]"},
        {"an expanded button", "<button aria-expanded=true>Menu</button>",
         "- button \"Menu\" [ref=e1] [expanded=true]"},
        {"an alert", "<div role=alert>Wrong</div><div role=status>Saved</div>",
         "- alert: Wrong [ref=e1]\n- status: Saved"},
        {"an outer name",
         "<b id=n>Outer</b><b id=m>name</b><button aria-labelledby='n m gone'>x</button>",
         "- text: Outer name\n- button \"Outer name\" [ref=e1]"},
        {"a label first", "<b id=n>no</b><button aria-label=Yes aria-labelledby=n>x</button>",
         "- text: no\n- button \"Yes\" [ref=e1]"},
        {"a group's title", "<div role=group title=Tools>x</div>",
         "- group \"Tools\"\n  - text: x"},
    });
}

TEST_F(Outline, ThingsToClick)
{
    expectAll({
        {"a handler", "<div onclick='x()'>Go</div>", "- clickable \"Go\" [ref=e1]"},
        {"a stop of the tab key", "<div tabindex=0>Go</div>", "- clickable \"Go\" [ref=e1]"},
        {"not by the tab key", "<div tabindex=-1>Go</div>", "- text: Go"},
        {"a pointing hand", "<div style='cursor:pointer'>Go</div>", "- clickable \"Go\" [ref=e1]"},
        {"a hand without text of its own", "<div style='cursor:pointer'><i>Go</i></div>",
         "- text: Go"},
        {"a hand that is inherited", "<div style='cursor:pointer'>Go <i>on</i></div>",
         "- clickable \"Go on\" [ref=e1]"},
        {"things within", "<div onclick='x()'>Row <button>Edit</button></div>",
         "- clickable \"Row Edit\" [ref=e1]\n  - text: Row\n  - button \"Edit\" [ref=e2]"},
    });
}

TEST_F(Outline, WhatIsNotSeenIsNotShown)
{
    expectAll({
        {"no box", "<p style='display:none'>x</p><p hidden>y</p>", "(nothing visible)"},
        {"invisible", "<p style='visibility:hidden'>x</p>", "(nothing visible)"},
        {"not for readers", "<p aria-hidden=true>x</p>", "(nothing visible)"},
        {"in a hidden part", "<div style='display:none'><button>x</button></div>",
         "(nothing visible)"},
        {"no box of its own", "<div style='display:contents'><p>x</p></div>", "- paragraph: x"},
        {"skipped content", "<div style='content-visibility:hidden;height:9px'><p>x</p></div>",
         "(nothing visible)"},
        {"code", "<script>x</script><style>y{}</style><template>z</template><noscript>n</noscript>",
         "(nothing visible)"},
        {"a closed dialog", "<dialog>x</dialog>", "(nothing visible)"},
        {"transparent", "<p style='opacity:0'>x</p>", "- paragraph: x"},
    });
}

TEST_F(Outline, BothWaysOfTellingWhatIsSeenAgree)
{
    const QString html =
        "<p hidden>a</p><p style='visibility:hidden'>b</p><p>c</p><div "
        "style='display:contents'><p>d</p></div>"
        "<details><summary>e</summary><p>f</p></details><div "
        "style='content-visibility:hidden'><p>g</p></div>"
        "<svg aria-hidden=false><title>h</title><text>i</text></svg><select><option>j</select>"
        "<div style='display:none'><p>k</p></div><div style='visibility:hidden'><p "
        "style='visibility:visible'>l</p></div>";
    // An engine's own way, and that of an engine without one.
    const QString own =
        "<script>const all = Element.prototype; all.checkVisibility = all.checkVisibility || "
        "function () {"
        "  for (let el = this; el; el = el.parentElement) {"
        "    const parent = el.parentElement;"
        "    const { display } = getComputedStyle(el);"
        "    if (display === 'none' || (el === this && display === 'contents')) return false;"
        "    if (parent && getComputedStyle(parent).contentVisibility === 'hidden') return false;"
        "    if (parent?.localName === 'details' && !parent.open && el.localName !== 'summary')"
        "      return false;"
        "    if (el.localName === 'title') return false;"
        "  }"
        "  return getComputedStyle(this).visibility === 'visible';"
        "};</script>";
    const QString none = "<script>delete Element.prototype.checkVisibility</script>";

    show(own + html);
    const QString natively = outline();
    show(none + html);

    EXPECT_EQ(outline(), natively);
    EXPECT_EQ(
        natively,
        "- paragraph: c\n- paragraph: d\n- button \"e\" [ref=e1] [expanded=false]\n- text: i\n- "
        "combobox [ref=e2] value=\"j\" options: j");
}

TEST_F(Outline, ShadowRootsAndSlots)
{
    open("/shadow.html");
    EXPECT_EQ(outline(), "- heading [level=1] \"Shadows\" [ref=e1]\n"
                         "- text: before\n"
                         "- button \"Deep\" [ref=e2]\n"
                         "- text: after\n"
                         "- list\n"
                         "  - listitem \"Slotted\"\n"
                         "    - link \"Slotted\" [ref=e3] -> /x\n"
                         "- list\n"
                         "  - text: fallback\n"
                         "- button \"Inner label\" [ref=e4]\n"
                         "- paragraph: In the shade");
}

TEST_F(Outline, RefsStayForAsLongAsTheirElement)
{
    show("<div id=a><button>One</button></div><button>Two</button>");
    EXPECT_EQ(refOf("One"), "e1");
    EXPECT_EQ(refOf("Two"), "e2");

    value("document.getElementById('a').innerHTML = '<button>New</button>'");

    EXPECT_EQ(outline(), "- button \"New\" [ref=e3]\n- button \"Two\" [ref=e2]");
}

TEST_F(Outline, ACopyOfAnElementGetsARefOfItsOwn)
{
    show("<button>One</button>");
    refOf("One");
    value("document.body.append(document.querySelector('button').cloneNode(true))");

    EXPECT_EQ(outline(), "- button \"One\" [ref=e1]\n- button \"One\" [ref=e2]");
}

TEST_F(Outline, RefsOfAPagesOwnMakingAreNotTaken)
{
    show("<script>window.__braltoRefs = { valueOf() { throw 1 } }</script>"
         "<button data-bralto-ref='e7] [x'>One</button><button data-bralto-ref=e9>Two</button>"
         "<button>Three</button>");

    EXPECT_EQ(outline(),
              "- button \"One\" [ref=e1]\n- button \"Two\" [ref=e9]\n- button \"Three\" [ref=e10]");
}

TEST_F(Outline, OnePartCanBeShownAlone)
{
    show("<p>Around</p><form id=f><input name=a></form>");
    const QString ref = refOf("form");

    EXPECT_TRUE(
        text("snapshot", {{"ref", ref}})
            .contains("\nShowing form only\n\n- form [ref=" + ref + "]\n  - textbox \"a\""));
    EXPECT_EQ(outline({{"selector", "input"}}), "- textbox \"a\" [ref=e2]");
    EXPECT_EQ(error("snapshot", {{"selector", "#none"}}),
              "Page script error: Nothing on the page matches #none");
    EXPECT_EQ(
        error("snapshot", {{"ref", "e99"}}),
        "Page script error: No element e99 on the page now. Take a new snapshot: refs go away "
        "when the page changes.");
}

TEST_F(Outline, ARefFromBeforeAReloadIsGone)
{
    show("<button>One</button>");
    const QString ref = refOf("One");
    text("navigate", {{"reload", true}});

    EXPECT_TRUE(error("click", {{"ref", ref}}).startsWith("Page script error: No element " + ref));
}

TEST_F(Outline, TextIsLeftOutBeforeWhatCanBeActedOn)
{
    QString html;
    for (int i = 0; i < 20; ++i)
        html += QString("<p>%1</p><button>B%2</button>").arg(QString(200, 'x')).arg(i);
    show(html);

    const QString lines = outline({{"maxChars", 1000}});

    EXPECT_EQ(lines.count("- button"), 20);
    EXPECT_EQ(lines.count("- paragraph"), 2);
    EXPECT_TRUE(lines.endsWith(
        "… 18 more lines left out to stay under 1000 characters. Pass a ref or selector to see one "
        "part in full, or raise maxChars."));
    EXPECT_LT(lines.size(), 1000 + 150);
}

TEST_F(Outline, WhatCanBeActedOnIsLeftOutLast)
{
    QString html;
    for (int i = 0; i < 100; ++i)
        html += QString("<button>Button number %1</button>").arg(i);
    show(html);

    const QString lines = outline({{"maxChars", 1000}});

    EXPECT_LE(lines.section("\n…", 0, 0).size(), 1000);
    EXPECT_GT(lines.count("- button"), 20);
    EXPECT_EQ(lines.section("… ", 1).section(' ', 0, 0).toInt(), 100 - lines.count("- button"));
}

TEST_F(Outline, AVeryLargePageIsCutShort)
{
    open("/large.html?50000");

    const QString lines = outline();

    EXPECT_TRUE(lines.endsWith("… page is very large; stopped after 20000 nodes."));
    EXPECT_LT(lines.size(), 17000);
}

TEST_F(Outline, ADeepPageIsWalkedToItsEnd)
{
    show("<script>let d = document.body; for (let i = 0; i < 8000; i++) d = "
         "d.appendChild(document.createElement('ul')); d.innerHTML = "
         "'<button>Deep</button>'</script>");

    EXPECT_FALSE(run("snapshot", {{"maxChars", 1000}}).isError);
}

TEST_F(Outline, AHostilePageIsReadAllTheSame)
{
    open("/hostile.html");

    EXPECT_EQ(outline(), "- form [ref=e1]\n"
                         "  - textbox \"children\" [ref=e2]\n"
                         "  - textbox \"tagName\" [ref=e3]\n"
                         "  - textbox \"getAttribute\" [ref=e4]\n"
                         "  - textbox \"parentNode\" [ref=e5]\n"
                         "  - textbox \"firstChild\" [ref=e6]\n"
                         "  - textbox \"hasAttribute\" [ref=e7]\n"
                         "  - textbox \"shadowRoot\" [ref=e8]\n"
                         "  - button \"Send\" [ref=e9]\n"
                         "- paragraph: Still here");
}

} // namespace
} // namespace Bralto
