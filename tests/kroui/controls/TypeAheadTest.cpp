#include "kroui/controls/TypeAhead.h"

#include <gtest/gtest.h>

using kroui::controls::TypeAhead;

namespace {

constexpr std::u16string_view kItems[] = {u"Blackman", u"Blackman-Harris", u"", u"Ähnlich", u"Жанр",
                                          u"Hann",     u"Hamming"};

int Type(TypeAhead& typeAhead, std::u16string_view typed, double now, int current) {
    return typeAhead.Type(typed, now, current, static_cast<int>(std::size(kItems)), [](int i) { return kItems[i]; });
}

TEST(TypeAheadTest, LettersInQuickSuccessionMakeUpTheBeginning) {
    TypeAhead typeAhead;
    EXPECT_EQ(Type(typeAhead, u"h", 0, -1), 5);
    EXPECT_EQ(Type(typeAhead, u"A", 0.4, 5), 5);
    EXPECT_EQ(Type(typeAhead, u"M", 0.8, 5), 6);
    EXPECT_EQ(Type(typeAhead, u"b", 1.7, 6), -1) << "\"hamb\"";
    EXPECT_EQ(Type(typeAhead, u"b", 2.8, 6), 0) << "after a pause a new beginning";
}

TEST(TypeAheadTest, OneLetterGoesRound) {
    TypeAhead typeAhead;
    int item = 5;
    for (const int expected : {6, 5, 6}) {
        item = Type(typeAhead, u"h", 0, item);
        EXPECT_EQ(item, expected);
    }
}

TEST(TypeAheadTest, CaseDoesNotCountBeyondEnglish) {
    EXPECT_EQ(Type(*std::make_unique<TypeAhead>(), u"ä", 0, -1), 3);
    EXPECT_EQ(Type(*std::make_unique<TypeAhead>(), u"ж", 0, -1), 4);
}

} // namespace
