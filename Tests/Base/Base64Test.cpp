#include "Base/Base64.h"

#include <gtest/gtest.h>

#include <random>

using namespace Bralto;

namespace {

std::string_view view(const QByteArray& bytes)
{
    return {bytes.constData(), std::size_t(bytes.size())};
}

QByteArray randomBytes(qsizetype size)
{
    std::mt19937 random(unsigned(size) + 1);
    QByteArray bytes(size, Qt::Uninitialized);
    std::generate(bytes.begin(), bytes.end(), [&] { return char(random()); });
    return bytes;
}

} // namespace

TEST(Base64, DecodesTextsOfEveryLength)
{
    for (qsizetype size = 0; size < 200; ++size) {
        SCOPED_TRACE(size);
        const QByteArray bytes = randomBytes(size);

        EXPECT_EQ(Base64::decode(view(bytes.toBase64())), bytes);
        EXPECT_EQ(Base64::decode(view(bytes.toBase64(QByteArray::OmitTrailingEquals))), bytes);
    }
}

TEST(Base64, DecodesAPictureOfAMegabyte)
{
    const QByteArray bytes = randomBytes(1024 * 1024 + 1);

    EXPECT_EQ(Base64::decode(view(bytes.toBase64())), bytes);
}

TEST(Base64, KnowsEveryCharacterOfTheAlphabetAndNoOther)
{
    for (int character = 0; character < 256; ++character) {
        for (const std::size_t place : {0u, 5u, 31u, 63u, 99u}) {
            SCOPED_TRACE(character);
            SCOPED_TRACE(place);
            QByteArray text(100, 'A');
            text[qsizetype(place)] = char(character);
            const bool isKnown = std::isalnum(character) && character < 128;
            const bool isRight = isKnown || character == '+' || character == '/' ||
                                 (character == '=' && place == 99);

            EXPECT_EQ(Base64::decode(view(text)).has_value(), isRight);
        }
    }
}

TEST(Base64, RefusesWhatIsNoWholeText)
{
    for (const char* text : {"A", "AAAAA", "A===", "AA=A", "AA AA", "AAAA\n", "-_-_"}) {
        SCOPED_TRACE(text);
        EXPECT_FALSE(Base64::decode(text));
    }
}
