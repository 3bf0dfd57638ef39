// kovalt as a process: programs run on it, screens come out.

#include <QCryptographicHash>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <csignal>

namespace {

constexpr int Patience = 60000;

struct Result {
    int status = -1;
    QByteArray output;
    QByteArray errors;

    /// The lines of a screen as text, without blanks at their ends.
    [[nodiscard]] QStringList lines() const
    {
        QStringList all = QString::fromUtf8(output).split('\n');
        all.removeLast();
        for (QString& line : all)
            line.replace(QRegularExpression(QStringLiteral("\\s+$")), {});
        return all;
    }
    [[nodiscard]] QJsonObject json() const
    {
        QJsonParseError error{};
        const QJsonDocument document = QJsonDocument::fromJson(output, &error);
        EXPECT_EQ(error.error, QJsonParseError::NoError) << output.toStdString();
        return document.object();
    }
};

class KovaltTool : public testing::Test {
protected:
    KovaltTool()
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("HOME", m_folder.path());
        environment.insert("LC_ALL", "C.UTF-8");
        m_process.setProcessEnvironment(environment);
        m_process.setWorkingDirectory(m_folder.path());
    }

    void start(const QStringList& arguments)
    {
        m_process.start(BRALTO_BIN "/kovalt", arguments);
        ASSERT_TRUE(m_process.waitForStarted());
    }
    Result finish()
    {
        EXPECT_TRUE(m_process.waitForFinished(Patience));
        EXPECT_EQ(m_process.exitStatus(), QProcess::NormalExit);
        return {m_process.exitCode(), m_process.readAllStandardOutput(),
                m_process.readAllStandardError()};
    }
    Result run(const QStringList& arguments, const QByteArray& input = {})
    {
        start(arguments);
        m_process.write(input);
        m_process.closeWriteChannel();
        return finish();
    }
    Result runScript(const QStringList& options, const QString& script)
    {
        return run(options + QStringList{"--", "sh", "-c", script});
    }
    /// What a program reads after it wrote `query`, controls as in "^[". A program that hears of no
    /// line end takes what comes until the answer's last character.
    QString replyTo(const QString& query, char last)
    {
        const Result result = runScript({"--dump", "text"},
                                        "stty raw -echo; printf '" + query +
                                            "'; r=; while c=$(dd bs=1 count=1 "
                                            "2>/dev/null); do r=$r$c; [ \"$c\" = '" +
                                            last +
                                            "' ] && break; done; "
                                            "printf '\\033[2J\\033[H'; printf %s \"$r\" | cat -v");
        EXPECT_EQ(result.status, 0) << result.errors.toStdString();
        return result.lines().value(0);
    }
    [[nodiscard]] QString path(const QString& name) const { return m_folder.filePath(name); }
    void write(const QString& name, const QByteArray& content) const
    {
        QFile file(path(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
    }
    [[nodiscard]] QByteArray read(const QString& name) const
    {
        QFile file(path(name));
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        return file.readAll();
    }

    QTemporaryDir m_folder;
    QProcess m_process;
};

// Options

TEST_F(KovaltTool, ExplainsItself)
{
    const Result result = run({"--help"});

    EXPECT_EQ(result.status, 0);
    EXPECT_TRUE(result.errors.isEmpty());
    for (const char* option : {"--cols", "--rows", "--scrollback", "--term", "--record", "--replay",
                               "--dump", "--history", "--after", "--send", "--timeout"})
        EXPECT_TRUE(result.output.contains(option)) << option;
}

TEST_F(KovaltTool, TellsItsVersion)
{
    const Result result = run({"--version"});

    EXPECT_EQ(result.status, 0);
    EXPECT_TRUE(result.output.startsWith("kovalt ")) << result.output.toStdString();
}

TEST_F(KovaltTool, RefusesOptionsThatMeanNothing)
{
    const std::pair<QStringList, const char*> cases[] = {
        {{}, "no command"},
        {{"--"}, "no command"},
        {{"--", ""}, "no command"},
        {{"--nonsense", "--", "true"}, "--nonsense"},
        {{"true"}, "true"},
        {{"--cols"}, "--cols needs a value"},
        {{"--cols", "1", "--", "true"}, "--cols can't be \"1\""},
        {{"--cols", "10001", "--", "true"}, "--cols"},
        {{"--cols", "80x", "--", "true"}, "--cols"},
        {{"--rows", "0", "--", "true"}, "--rows"},
        {{"--rows=-4", "--", "true"}, "--rows"},
        {{"--scrollback", "-1", "--", "true"}, "--scrollback"},
        {{"--dump", "html", "--", "true"}, "--dump"},
        {{"--after", "soon", "--", "true"}, "--after"},
        {{"--timeout", "99999999999", "--", "true"}, "--timeout"},
        {{"--term=", "--", "true"}, "--term"},
        {{"--send", "<Nonsense>", "--", "true"}, "--send"},
        {{"--send", "<Enter", "--", "true"}, "--send"},
        {{"--replay", "x", "--", "true"}, "a replay has no command"},
        {{"--replay", "x", "--send", "y"}, "a replay takes no"},
        {{"--replay", "x", "--record", "y"}, "a replay takes no"},
    };
    for (const auto& [arguments, message] : cases) {
        SCOPED_TRACE(arguments.join(' ').toStdString());
        const Result result = run(arguments);

        EXPECT_EQ(result.status, 2);
        EXPECT_TRUE(result.output.isEmpty());
        EXPECT_TRUE(result.errors.startsWith("kovalt: "));
        EXPECT_TRUE(result.errors.contains(message)) << result.errors.toStdString();
    }
}

TEST_F(KovaltTool, GivesTheProgramTheSizeAndTheTerminalThatItWasTold)
{
    const QString script = "stty size; echo $TERM $COLORTERM; echo ${COLUMNS-none} ${LINES-none}";

    EXPECT_EQ(runScript({"--dump", "text"}, script).lines().mid(0, 3),
              (QStringList{"25 80", "xterm-256color truecolor", "none none"}));
    EXPECT_EQ(runScript({"--dump=text", "--cols=33", "--rows=9", "--term=linux"}, script)
                  .lines()
                  .mid(0, 2),
              (QStringList{"9 33", "linux truecolor"}));
}

TEST_F(KovaltTool, KeepsAsMuchHistoryAsItWasTold)
{
    const QStringList options{"--rows", "2", "--dump", "text", "--history", "--scrollback"};

    EXPECT_EQ(runScript(options + QStringList{"3"}, "seq 1 10").lines(),
              (QStringList{"7", "8", "9", "10", ""}));
    EXPECT_EQ(runScript(options + QStringList{"0"}, "seq 1 10").lines(), (QStringList{"10", ""}));
    EXPECT_EQ(runScript({"--rows", "2", "--dump", "text"}, "seq 1 10").lines(),
              (QStringList{"10", ""}));
}

// Statuses

TEST_F(KovaltTool, EndsWithTheStatusOfItsProgram)
{
    EXPECT_EQ(runScript({}, "exit 0").status, 0);
    EXPECT_EQ(runScript({}, "exit 7").status, 7);
    EXPECT_EQ(runScript({}, "kill -TERM $$").status, 128 + SIGTERM);
    EXPECT_EQ(runScript({}, "kill -KILL $$").status, 128 + SIGKILL);
}

TEST_F(KovaltTool, SaysWhatCantBeRun)
{
    write("notes", "no program");
    const std::pair<QString, int> cases[] = {{"no-such-program", 127},
                                             {"/no/such/program", 127},
                                             {path("notes"), 126},
                                             {m_folder.path(), 126}};
    for (const auto& [program, status] : cases) {
        const Result result = run({"--", program});

        EXPECT_EQ(result.status, status);
        EXPECT_TRUE(result.errors.contains(program.toUtf8())) << result.errors.toStdString();
    }
}

TEST_F(KovaltTool, SaysWhatCantBeReadOrWritten)
{
    const QStringList cases[] = {{"--replay", path("missing")},
                                 {"--replay", m_folder.path()},
                                 {"--record", path("no/such/folder"), "--", "true"},
                                 {"--record", "/dev/full", "--", "echo", "x"}};
    for (const QStringList& arguments : cases) {
        const Result result = run(arguments);

        EXPECT_EQ(result.status, 1) << arguments.join(' ').toStdString();
        EXPECT_TRUE(result.errors.contains(arguments[1].toUtf8())) << result.errors.toStdString();
    }
}

TEST_F(KovaltTool, FailsIfNobodyTakesTheScreen)
{
    m_process.setStandardOutputFile("/dev/full");
    const Result result = run({"--dump", "text", "--", "echo", "x"});

    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(result.errors.contains("the screen")) << result.errors.toStdString();
}

TEST_F(KovaltTool, EndsAfterItsTimeWithTheScreenThatIsThereThen)
{
    const QString script = "echo here; exec sleep 600";

    const Result after = runScript({"--after", "2500", "--dump", "text"}, script);
    const Result timeout = runScript({"--timeout", "2500", "--dump", "text"}, script);

    EXPECT_EQ(after.status, 0);
    EXPECT_EQ(after.lines().value(0), "here");
    EXPECT_EQ(timeout.status, 124);
    EXPECT_EQ(timeout.lines().value(0), "here");
}

TEST_F(KovaltTool, WhatAProgramSaysToItsEndIsNotOnTheScreen)
{
    const Result result =
        runScript({"--rows", "2", "--after", "2500"},
                  "trap 'echo farewell; exit' TERM HUP; echo here; while :; do sleep 0.01; done");

    EXPECT_EQ(result.output, "here\n\n");
}

TEST_F(KovaltTool, AProgramThatCannotStartHasNoScreen)
{
    const Result result = run({"--", "no-such-program"});

    EXPECT_EQ(result.status, 127);
    EXPECT_TRUE(result.output.isEmpty());
}

TEST_F(KovaltTool, DoesNotWaitForItsTimeWhenTheProgramEndsBefore)
{
    EXPECT_EQ(runScript({"--after", "600000", "--timeout", "600000"}, "exit 3").status, 3);
}

TEST_F(KovaltTool, EndsWithTheSignalThatEndsIt)
{
    const Result result =
        runScript({"--dump", "text"}, "echo here; kill -TERM $PPID; exec sleep 600");

    EXPECT_EQ(result.status, 128 + SIGTERM);
    EXPECT_EQ(result.lines().size(), 25);
}

TEST_F(KovaltTool, HangsItsProgramUpWhenItEnds)
{
    ASSERT_EQ(mkfifo(path("gone").toLocal8Bit().constData(), 0600), 0);
    start({"--after", "300", "--", "sh", "-c", "exec 9> gone; exec sleep 600"});
    QFile gone(path("gone"));
    ASSERT_TRUE(gone.open(QIODevice::ReadOnly));

    // Ends when nobody holds the other side any longer.
    EXPECT_TRUE(gone.readAll().isEmpty());
    EXPECT_EQ(finish().status, 0);
}

// Screens

TEST_F(KovaltTool, WritesTheScreenAsText)
{
    const Result result = run({"--cols", "12", "--rows", "3", "--dump", "text", "--", "printf",
                               "one\\r\\n\\033[1mtwo 漢字\\r\\n"});

    EXPECT_EQ(result.output, "one\ntwo 漢字\n\n");
}

TEST_F(KovaltTool, WritesTheTextUnlessToldOtherwise)
{
    EXPECT_EQ(run({"--rows", "2", "--", "echo", "x"}).output, "x\n\n");
    EXPECT_TRUE(run({"--dump", "none", "--", "echo", "x"}).output.isEmpty());
}

TEST_F(KovaltTool, WritesTheScreenAsSequencesThatMakeItAgain)
{
    const QStringList size{"--cols", "20", "--rows", "4", "--dump", "sgr"};
    const Result first = run(size + QStringList{"--", "printf",
                                                "\\033[1;31mred\\033[m plain\\r\\n"
                                                "\\033[4:3;58;5;9mcurly\\033[m "
                                                "\\033[48;2;1;2;3mdeep"});
    write("screen", first.output.chopped(1));

    const Result second = run(size + QStringList{"--replay", path("screen")});

    EXPECT_EQ(second.output, first.output);
    EXPECT_TRUE(first.output.contains("\x1B[0;1;38;5;1mred"));
}

TEST_F(KovaltTool, WritesTheScreenAsJson)
{
    const QJsonObject screen =
        run({"--cols", "30", "--rows", "4", "--dump", "json", "--", "printf",
             "\\033]2;the \\042title\\042\\007\\033]1;icon\\007\\033]133;A\\007\\044 "
             "\\033]133;B\\007ls\\r\\n\\033]133;C\\007\\033]8;;http://a.b/"
             "c\\033\\\\\\033[1;4;31mlink"
             "\\033]8;;\\033\\\\\\033[m 漢\\033[?2004h\\033[?25l\\033[3 q\\033[2;3r\\033[3;2H"})
            .json();

    EXPECT_EQ(screen["cols"], 30);
    EXPECT_EQ(screen["rows"], 4);
    EXPECT_EQ(screen["buffer"], "normal");
    EXPECT_EQ(screen["title"], "the \"title\"");
    EXPECT_EQ(screen["iconTitle"], "icon");
    EXPECT_EQ(
        screen["cursor"],
        (QJsonObject{{"column", 1}, {"row", 2}, {"hidden", true}, {"style", "blinkUnderline"}}));
    EXPECT_EQ(screen["modes"]["bracketedPasteMode"], true);
    EXPECT_EQ(screen["modes"]["originMode"], false);
    EXPECT_EQ(screen["margins"]["top"], 1);
    EXPECT_EQ(screen["margins"]["bottom"], 2);
    const QJsonArray lines = screen["lines"].toArray();
    ASSERT_EQ(lines.size(), 4);
    EXPECT_EQ(lines[0]["text"], "$ ls");
    EXPECT_EQ(lines[0]["marks"][0]["kind"], "prompt");
    EXPECT_EQ(lines[0]["marks"][1]["kind"], "input");
    EXPECT_EQ(lines[0]["marks"][1]["column"], 2);
    EXPECT_EQ(lines[1]["marks"][0]["kind"], "output");
    const QJsonValue link = lines[1]["cells"][0];
    EXPECT_EQ(link["text"], "link");
    EXPECT_EQ(link["column"], 0);
    EXPECT_EQ(link["count"], 4);
    EXPECT_EQ(link["fg"], 1);
    EXPECT_EQ(link["bold"], true);
    EXPECT_EQ(link["underline"], "single");
    EXPECT_EQ(link["link"], ";http://a.b/c");
    EXPECT_EQ(lines[1]["cells"][2]["text"], "漢");
    EXPECT_EQ(lines[1]["cells"][2]["width"], 2);
}

TEST_F(KovaltTool, JsonStaysJsonWhateverAProgramWrites)
{
    constexpr char Noise[] = "\x1B]2;\x01\"\\\xC3\xA4\xFF\x07\x1B]8;;x\xFEy\"\\\x7F\x07"
                             "a\"\\\xFF\xC2\x1B]8;;\x07\x1B]7;file://h/\xFF%00\"\x07\x00\x85\x9Bm";
    write("noise", QByteArray(Noise, sizeof(Noise) - 1));

    const Result result = run({"--replay", path("noise"), "--dump", "json"});

    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.json()["lines"].toArray().size(), 25);
}

TEST_F(KovaltTool, WritesTheScreenWhenSignalled)
{
    // The answer to its question tells the program that what it wrote before is on the screen.
    const Result result =
        runScript({"--rows", "2", "--dump", "text"},
                  "stty raw -echo; printf 'early\\033[6n'; dd bs=1 count=6 2>/dev/null >&2; "
                  "kill -USR1 $PPID; printf '\\033[6n'; dd bs=1 count=6 2>/dev/null >&2; "
                  "printf '\\033[2J\\033[Hlate'");

    EXPECT_TRUE(result.output.startsWith("early")) << result.output.toStdString();
    EXPECT_EQ(result.lines().mid(2), (QStringList{"late", ""}));
}

// Replies

TEST_F(KovaltTool, AnswersReportsAtOnce)
{
    EXPECT_EQ(replyTo("\\033[5n", 'n'), "^[[0n");
    EXPECT_EQ(replyTo("\\033[3;7H\\033[6n", 'R'), "^[[3;7R");
    EXPECT_TRUE(replyTo("\\033[c", 'c').startsWith("^[[?65;"));
}

TEST_F(KovaltTool, KeepsClipboardAndSpecialColours)
{
    EXPECT_EQ(replyTo("\\033]52;c;SGk=\\007\\033]52;c;?\\007", '\\'), "^[]52;c;SGk=^[\\");
    EXPECT_EQ(replyTo("\\033]5;0;#abcdef\\007\\033]5;0;?\\007", '\\'),
              "^[]5;0;rgb:abab/cdcd/efef^[\\");
}

TEST_F(KovaltTool, ReportsTheWindowThatItPretends)
{
    const std::tuple<const char*, char, const char*> cases[] = {
        {"\\033[11t", 't', "^[[1t"},
        {"\\033[2t\\033[11t", 't', "^[[2t"},
        {"\\033[2t\\033[1t\\033[11t", 't', "^[[1t"},
        {"\\033[13t", 't', "^[[3;0;0t"},
        {"\\033[3;30;40t\\033[13t", 't', "^[[3;30;40t"},
        {"\\033[3;30;40t\\033[13;2t", 't', "^[[3;30;40t"},
        {"\\033[14t", 't', "^[[4;400;640t"},
        {"\\033[14;2t", 't', "^[[4;400;640t"},
        {"\\033[4;320;800t\\033[14t", 't', "^[[4;320;800t"},
        {"\\033[4;320;800t\\033[18t", 't', "^[[8;20;100t"},
        {"\\033[15t", 't', "^[[5;1200;1920t"},
        {"\\033[16t", 't', "^[[6;16;8t"},
        {"\\033[18t", 't', "^[[8;25;80t"},
        {"\\033[8;30;90t\\033[18t", 't', "^[[8;30;90t"},
        {"\\033[8;30;90t\\033[14t", 't', "^[[4;480;720t"},
        {"\\033[8;5000;5000t\\033[18t", 't', "^[[8;75;240t"},
        {"\\033[19t", 't', "^[[9;75;240t"},
        {"\\033[9;1t\\033[18t", 't', "^[[8;75;240t"},
        {"\\033[3;30;40t\\033[9;1t\\033[13t", 't', "^[[3;0;0t"},
        {"\\033[9;2t\\033[18t", 't', "^[[8;75;80t"},
        {"\\033[9;3t\\033[18t", 't', "^[[8;25;240t"},
        {"\\033[3;30;40t\\033[9;1t\\033[9;0t\\033[13t", 't', "^[[3;30;40t"},
        {"\\033[9;1t\\033[9;0t\\033[18t", 't', "^[[8;25;80t"},
        {"\\033[10;1t\\033[18t", 't', "^[[8;75;240t"},
        {"\\033[10;2t\\033[10;2t\\033[18t", 't', "^[[8;25;80t"},
        {"\\033[9;3t\\033[10;1t\\033[10;0t\\033[18t", 't', "^[[8;25;240t"},
        {"\\033[10;1t\\033[8;30;90t\\033[10;0t\\033[9;0t\\033[18t", 't', "^[[8;30;90t"},
        {"\\033[10;1t\\033[8;30;90t\\033[10;1t\\033[18t", 't', "^[[8;75;240t"},
        {"\\033]1;small\\007\\033[20t", '\\', "^[]Lsmall^[\\"},
        {"\\033]2;large\\007\\033[21t", '\\', "^[]llarge^[\\"},
    };
    for (const auto& [query, last, reply] : cases) {
        SCOPED_TRACE(query);
        EXPECT_EQ(replyTo(query, last), reply);
    }
}

TEST_F(KovaltTool, TellsTheProgramWhenItsWindowChanges)
{
    const Result result =
        runScript({"--dump", "json"}, "stty raw -echo; printf '\\033[8;30;90t\\033[6n'; dd bs=1 "
                                      "count=6 2>/dev/null >/dev/null; stty size");

    const QJsonObject screen = result.json();
    EXPECT_EQ(screen["cols"], 90);
    EXPECT_EQ(screen["rows"], 30);
    EXPECT_EQ(screen["lines"][0]["text"], "30 90");
}

// Keys

TEST_F(KovaltTool, SendsTextAndKeys)
{
    const std::pair<const char*, const char*> cases[] = {
        {"plain text", "plain text"},
        {"<lt>b>", "<b>"},
        {"<Enter>", "^M"},
        {"<Tab><S-Tab>", "^I^[[Z"},
        {"<Esc><BS>", "^[^?"},
        {"<C-c><C-d><A-x>", "^C^D^[x"},
        {"<Up><Down><Right><Left>", "^[[A^[[B^[[C^[[D"},
        {"<C-Up><S-A-Left>", "^[[1;5A^[[1;4D"},
        {"<Home><End><Ins><Del><PgUp><PgDn>", "^[[H^[[F^[[2~^[[3~^[[5~^[[6~"},
        {"<F1><F5><F12>", "^[OP^[[15~^[[24~"},
        {"a<Space>b<Wait 1>c", "a bc"},
    };
    for (const auto& [keys, bytes] : cases) {
        SCOPED_TRACE(keys);
        const Result result =
            run({"--dump", "text", "--send", "<Until $>" + QString(keys) + '|', "--", "sh", "-c",
                 "stty raw -echo; printf '$'; r=; while c=$(dd bs=1 count=1 2>/dev/null | od -An "
                 "-tx1); do "
                 "[ $c = 7c ] && break; r=$r\\\\$(printf %o 0x${c# }); done; "
                 "printf '\\033[2J\\033[H'; printf $r | cat -vT"});

        EXPECT_EQ(result.lines().value(0), bytes);
    }
}

TEST_F(KovaltTool, SendsKeysInTheFormThatTheProgramAskedFor)
{
    const Result result =
        run({"--dump", "text", "--send", "<Until asked><Up>|", "--", "sh", "-c",
             "stty raw -echo; printf '\\033[?1hasked'; dd bs=1 count=4 2>/dev/null "
             "> keys; printf '\\033[2J\\033[H'; cat -v keys"});

    EXPECT_EQ(result.lines().value(0), "^[OA|");
}

TEST_F(KovaltTool, PassesStandardInputOn)
{
    const Result result =
        run({"--dump", "text", "--", "sh", "-c", "read -r line; echo got $line"}, "typed\n");

    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.lines().mid(0, 2), (QStringList{"typed", "got typed"}));
}

TEST_F(KovaltTool, PassesALotOfStandardInputOnWithoutALoss)
{
    QByteArray input;
    while (input.size() < 3'000'000)
        input += QByteArray::number(input.size()) + ' ';
    ASSERT_EQ(mkfifo(path("ready").toLocal8Bit().constData(), 0600), 0);
    start({"--dump", "text", "--", "sh", "-c",
           "stty raw -echo; echo > ready; head -c " + QString::number(input.size()) + " | md5sum"});
    // A terminal that edits lines takes no more than a line of some 4000 bytes.
    EXPECT_EQ(read("ready"), "\n");

    m_process.write(input);
    m_process.closeWriteChannel();
    const Result result = finish();

    const QByteArray sum = QCryptographicHash::hash(input, QCryptographicHash::Md5).toHex();
    EXPECT_EQ(result.status, 0);
    EXPECT_TRUE(result.output.startsWith(sum)) << result.output.toStdString();
}

TEST_F(KovaltTool, RunsOnWhileItsProgramReadsNothing)
{
    const Result result = run({"--after", "2500", "--dump", "text", "--", "sh", "-c",
                               "stty raw -echo; printf shown; exec sleep 600"},
                              QByteArray(8'000'000, 'x'));

    EXPECT_EQ(result.status, 0);
    EXPECT_TRUE(result.output.contains("shown"));
}

TEST_F(KovaltTool, WorksWithoutStandardInputAndError)
{
    m_process.start("sh", {"-c", BRALTO_BIN "/kovalt --rows 2 --dump text -- echo x <&- 2>&-"});
    const Result result = finish();

    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.output, "x\n\n");
}

TEST_F(KovaltTool, LeavesTheTerminalThatItRunsOnAsItWas)
{
    // The outer one is the terminal of the inner one: a key arrives alone, and ^C as a key.
    const Result result =
        run({"--dump", "text", "--send", "<Until ready>q<C-c>", "--", "sh", "-c",
             "export T=$(tty); stty -a > before; " BRALTO_BIN
             "/kovalt -- sh -c 'stty raw -echo; echo ready > $T; dd bs=1 count=2 2>/dev/null"
             " | od -An -tx1 > keys'; echo $?; stty -a > after; cmp before after && cat keys"});

    EXPECT_TRUE(result.lines().contains("0")) << result.output.toStdString();
    EXPECT_TRUE(result.lines().contains(" 71 03")) << result.output.toStdString();
}

// Recordings

TEST_F(KovaltTool, ReplaysWhatItRecorded)
{
    for (const char* form : {"text", "sgr", "json"}) {
        SCOPED_TRACE(form);
        const QStringList options{"--cols", "40", "--rows", "7", "--dump", form, "--history"};
        const Result live =
            run(options + QStringList{"--record", path("recorded"), "--", "sh", "-c",
                                      "seq 1 20; printf '\\033[1;3;35mlooks\\033[m "
                                      "\\033]2;named\\007 漢字 \\033[4;9Hthere'"});

        const Result replayed = run(options + QStringList{"--replay", path("recorded")});

        EXPECT_EQ(live.status, 0);
        EXPECT_EQ(replayed.status, 0);
        EXPECT_EQ(replayed.output, live.output);
    }
    EXPECT_TRUE(read("recorded").startsWith("1\r\n2\r\n"));
}

TEST_F(KovaltTool, ReplaysAFileThatHoldsNothing)
{
    write("empty", {});

    EXPECT_EQ(run({"--rows", "2", "--replay", path("empty"), "--dump", "text"}).output, "\n\n");
}

// A real shell

TEST_F(KovaltTool, RunsAnInteractiveShell)
{
    write(".zshrc",
          "PROMPT='%F{green}here%f> '\nRPROMPT='%B%?%b'\nunsetopt prompt_sp\n"
          "precmd() { print -n '\\e]133;A\\a' }\npreexec() { print -n '\\e]133;C\\a' }\n");

    const Result result =
        run({"--cols", "40", "--rows", "9", "--dump", "json", "--send",
             "<Until here>print -P '%F{13}pi''nk%f'<Enter><Until pink>exit 5<Enter>", "--", "zsh",
             "-i"});

    const QJsonObject screen = result.json();
    QStringList lines;
    for (const QJsonValue& line : screen["lines"].toArray())
        lines += line["text"].toString();
    EXPECT_EQ(result.status, 5);
    EXPECT_TRUE(lines.contains("pink")) << lines.join('\n').toStdString();
    const int at = int(lines.indexOf("pink"));
    ASSERT_GT(at, 0);
    EXPECT_EQ(screen["lines"][at]["cells"][0]["fg"], 13);
    EXPECT_EQ(screen["lines"][at]["marks"][0]["kind"], "output");
    EXPECT_TRUE(lines[at - 1].startsWith("here> print -P")) << result.output.toStdString();
    EXPECT_EQ(screen["lines"][at - 1]["cells"][0]["fg"], 2);
    EXPECT_EQ(screen["lines"][at - 1]["marks"][0]["kind"], "prompt");
}

} // namespace
