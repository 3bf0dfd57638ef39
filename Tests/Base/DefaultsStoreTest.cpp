#include "Tests/Support/MemoryDefaultsStore.h"

#include <gtest/gtest.h>

#include <limits>

namespace Bralto {
namespace {

class DefaultsStoreTypes : public testing::Test {
protected:
    MemoryDefaultsStore store;
};

TEST_F(DefaultsStoreTypes, AValueIsFoundUnderItsOwnTypeOnly)
{
    store.set("flag", true);
    store.set("count", 1LL);
    store.set("text", QString("1"));
    store.set("bytes", QByteArray("1"));

    EXPECT_EQ(store.boolean("flag"), true);
    EXPECT_EQ(store.boolean("count"), std::nullopt);
    EXPECT_EQ(store.boolean("text"), std::nullopt);
    EXPECT_EQ(store.string("text"), "1");
    EXPECT_EQ(store.string("bytes"), std::nullopt);
    EXPECT_EQ(store.data("bytes"), QByteArray("1"));
    EXPECT_EQ(store.data("text"), std::nullopt);
    EXPECT_EQ(store.dictionary("text"), std::nullopt);
}

TEST_F(DefaultsStoreTypes, ANumberIsAnIntegerOrADoubleButNoFlag)
{
    store.set("count", 3LL);
    store.set("share", 0.25);
    store.set("flag", true);
    store.set("text", QString("3"));

    EXPECT_EQ(store.number("count"), 3.0);
    EXPECT_EQ(store.number("share"), 0.25);
    EXPECT_EQ(store.number("flag"), std::nullopt);
    EXPECT_EQ(store.number("text"), std::nullopt);
    EXPECT_EQ(store.number("absent"), std::nullopt);
}

TEST_F(DefaultsStoreTypes, StringsAreAnArrayOfNothingElse)
{
    store.setStrings("paths", {"/a", "/b"});
    store.setStrings("none", {});
    store.set("mixed", QVariantList{QString("/a"), 1LL});

    EXPECT_EQ(store.strings("paths"), (QStringList{"/a", "/b"}));
    EXPECT_EQ(store.strings("none"), QStringList());
    EXPECT_EQ(store.strings("mixed"), std::nullopt);
    EXPECT_EQ(store.strings("absent"), std::nullopt);
}

TEST_F(DefaultsStoreTypes, AnotherTypeIsAnotherValueEvenWhenItLooksEqual)
{
    const QVariant one = 1LL;

    EXPECT_TRUE(DefaultsStore::isSame(one, 1LL));
    EXPECT_FALSE(DefaultsStore::isSame(one, true));
    EXPECT_FALSE(DefaultsStore::isSame(one, 1.0));
    EXPECT_FALSE(DefaultsStore::isSame(one, QString("1")));
    EXPECT_FALSE(DefaultsStore::isSame(QVariantList{1LL}, QVariantList{1.0}));
    EXPECT_FALSE(DefaultsStore::isSame(QVariantMap{{"a", 1LL}}, QVariantMap{{"a", true}}));
    EXPECT_FALSE(DefaultsStore::isSame(QVariantMap{{"a", 1LL}}, QVariantMap{{"b", 1LL}}));
    EXPECT_TRUE(DefaultsStore::isSame(QVariantMap{{"a", QVariantList{one}}},
                                      QVariantMap{{"a", QVariantList{one}}}));
    EXPECT_TRUE(DefaultsStore::isSame(QVariant(), QVariant()));
    EXPECT_FALSE(DefaultsStore::isSame(QVariant(), one));
}

TEST_F(DefaultsStoreTypes, OnlyTheListedTypesCanBeStored)
{
    EXPECT_TRUE(DefaultsStore::isStorable(QVariantMap{{"a", QVariantList{1LL, QString("x")}}}));
    EXPECT_TRUE(DefaultsStore::isStorable(QDateTime::fromMSecsSinceEpoch(0, Qt::UTC)));
    EXPECT_FALSE(DefaultsStore::isStorable(QDateTime()));
    EXPECT_FALSE(DefaultsStore::isStorable(QVariant()));
    EXPECT_FALSE(DefaultsStore::isStorable(int(1)));
    EXPECT_FALSE(DefaultsStore::isStorable(QStringList{"a"}));
    EXPECT_FALSE(DefaultsStore::isStorable(QVariantList{int(1)}));
    EXPECT_FALSE(DefaultsStore::isStorable(std::numeric_limits<double>::infinity()));
}

TEST_F(DefaultsStoreTypes, OnlyAChangeIsTold)
{
    QStringList told;
    QObject::connect(&store, &DefaultsStore::changed, &store,
                     [&](const QString& key) { told.append(key); });

    store.set("a", 1LL);
    store.set("a", 1LL);
    store.set("a", 1.0);
    store.remove("b");
    store.remove("a");

    EXPECT_EQ(told, (QStringList{"a", "a", "a"}));
    EXPECT_FALSE(store.contains("a"));
}

} // namespace
} // namespace Bralto
