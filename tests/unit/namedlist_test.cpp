// The list of named items: order, search, and taking out.

#include "grammar/namedlist.h"
#include "report/configinfo.h"

#include <gtest/gtest.h>

namespace {

struct Item
{
    explicit Item(const char* name) { config.recordName = QLatin1String(name); }

    ConfigInfo config;
};

// Two items of one name between others.
class TwoOfOneName : public testing::Test
{
protected:
    TwoOfOneName()
    {
        for (Item* item : {&before, &first, &between, &second})
            list.append(item);
    }

    QList<Item*> takeOut(const Item* unwanted)
    {
        return list.takeUnless([unwanted](const Item* item) { return item != unwanted; });
    }

    Item before{"B"};
    Item first{"A"};
    Item between{"C"};
    Item second{"A"};
    NamedList<Item> list;
};

TEST_F(TwoOfOneName, TheFirstIsFound)
{
    EXPECT_EQ(list.search(u"A"), &first);
    EXPECT_EQ(list.size(), 4);
}

TEST_F(TwoOfOneName, TheSecondIsFoundOnceTheFirstIsTakenOut)
{
    EXPECT_EQ(takeOut(&first), QList<Item*>{&first});
    EXPECT_EQ(list.search(u"A"), &second);
    EXPECT_EQ(list.size(), 3);
}

TEST_F(TwoOfOneName, TheFirstIsStillFoundOnceTheSecondIsTakenOut)
{
    EXPECT_EQ(takeOut(&second), QList<Item*>{&second});
    EXPECT_EQ(list.search(u"A"), &first);
}

TEST_F(TwoOfOneName, NoneIsFoundOnceBothAreTakenOut)
{
    list.takeUnless([](const Item* item) { return item->config.recordName != QLatin1String("A"); });
    EXPECT_EQ(list.search(u"A"), nullptr);
    EXPECT_EQ(list.search(u"C"), &between);
    EXPECT_EQ(list.size(), 2);
}

TEST_F(TwoOfOneName, TheOthersAreFoundWhicheverIsTakenOut)
{
    takeOut(&between);
    EXPECT_EQ(list.search(u"C"), nullptr);
    EXPECT_EQ(list.search(u"B"), &before);
    EXPECT_EQ(list.search(u"A"), &first);
}

} // namespace
