#include "DemoAgent/LineReader.h"

#include "DemoAgent/Wire.h"

#include <gtest/gtest.h>

using namespace DemoAgent;

namespace {

QByteArrayList lines(LineReader& reader)
{
    QByteArrayList result;
    QByteArray line;
    while (reader.next(line))
        result.append(line);
    return result;
}

} // namespace

TEST(LineReader, LinesComeWholeHoweverTheyArrive)
{
    const QByteArray text = "one\n\ntwo Gr\xc3\xb6\xc3\x9f"
                            "e\nthree";
    for (qsizetype size = 1; size <= text.size(); ++size) {
        SCOPED_TRACE(size);
        LineReader reader;
        QByteArrayList result;

        for (qsizetype from = 0; from < text.size(); from += size) {
            reader.feed(text.mid(from, size));
            result += lines(reader);
        }

        EXPECT_EQ(result, (QByteArrayList{"one", "",
                                          "two Gr\xc3\xb6\xc3\x9f"
                                          "e"}));
        EXPECT_EQ(reader.finish(), "three");
        EXPECT_EQ(reader.finish(), "");
    }
}

TEST(LineReader, AfterItsEndItBeginsAnew)
{
    LineReader reader;
    reader.feed("half");
    EXPECT_TRUE(lines(reader).isEmpty());
    EXPECT_EQ(reader.finish(), "half");

    reader.feed("whole\n");

    EXPECT_EQ(lines(reader), QByteArrayList{"whole"});
}

TEST(Pieces, TogetherTheyAreTheTextAndNoneEndsWithinACharacter)
{
    const QString text = QString::fromUtf8("aé🌊🌊b👩‍💻");
    for (qsizetype size = 1; size <= text.size(); ++size) {
        SCOPED_TRACE(size);

        const QStringList result = pieces(text, size);

        EXPECT_EQ(result.join(QString()), text);
        for (const QString& piece : result) {
            EXPECT_FALSE(piece.isEmpty());
            EXPECT_FALSE(piece.front().isLowSurrogate());
            EXPECT_FALSE(piece.back().isHighSurrogate());
        }
    }
    EXPECT_TRUE(pieces({}, 5).isEmpty());
}
