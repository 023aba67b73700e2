#include "inbox/InboxPlace.h"

#include <gtest/gtest.h>

#include "support/TemporaryFolder.h"

namespace quillmere {
namespace {

using Place = InboxPlace::Place;
using Screen = InboxPlace::Screen;

const Screen kLeft{QStringLiteral("left"), QRect(0, 30, 1280, 770)};
const Screen kRight{QStringLiteral("right"), QRect(1280, 0, 1920, 1080)};
constexpr QSize kUsual(1000, 600);

class InboxPlaceTest : public ::testing::Test {
 protected:
  InboxPlace written(const InboxPlace& place) {
    place.write(defaults);
    return InboxPlace::read(UserDefaults(file));
  }
  testing::TemporaryFolder folder;
  QString file = folder.url().appending("settings.json").displayPath();
  UserDefaults defaults{file};
};

TEST_F(InboxPlaceTest, AtFirstItIsInTheMiddleOfTheFirstScreen) {
  const Place place = InboxPlace().place({kLeft, kRight}, kUsual);
  EXPECT_EQ(place.frame.size(), kUsual);
  EXPECT_EQ(place.frame.center(), kLeft.available.center());
}

TEST_F(InboxPlaceTest, ItComesBackWhereItWasWithItsSplit) {
  InboxPlace places;
  const Place place{QRect(1400, 50, 900, 700), false, 420};
  places.note(QStringLiteral("right"), place);
  EXPECT_EQ(written(places).place({kLeft, kRight}, kUsual), place);
}

TEST_F(InboxPlaceTest, EachScreenHasItsOwn) {
  InboxPlace places;
  const Place left{QRect(10, 40, 700, 500), false, 300};
  places.note(QStringLiteral("left"), left);
  places.note(QStringLiteral("right"), {QRect(1400, 50, 900, 700), true, 420});
  EXPECT_EQ(written(places).place({kLeft}, kUsual), left) << "the screen where it was last is away";
  EXPECT_TRUE(written(places).place({kLeft, kRight}, kUsual).isMaximized);
}

TEST_F(InboxPlaceTest, ItNeverOpensOutsideOfItsScreenNorLarger) {
  InboxPlace places;
  places.note(QStringLiteral("left"), {QRect(-5000, 9000, 4000, 3000), false, 0});
  EXPECT_EQ(places.place({kLeft}, kUsual).frame, kLeft.available);
  places.note(QStringLiteral("left"), {QRect(1200, 700, 600, 400), false, 0});
  EXPECT_EQ(places.place({kLeft}, kUsual).frame, QRect(680, 400, 600, 400));
}

TEST_F(InboxPlaceTest, WhatCannotBeReadIsAsIfItWereNotThere) {
  for (const char* text : {"", "{", "[]", R"({"last":3,"screens":[]})", R"({"screens":{"left":{"width":"wide"}}})",
                           R"({"screens":{"left":{"x":1,"y":2,"width":-3,"height":1e9}}})"}) {
    defaults.set(QLatin1String(InboxPlace::kKey), QString::fromUtf8(text));
    EXPECT_EQ(InboxPlace::read(defaults).place({kLeft}, kUsual).frame.size(), kUsual) << text;
  }
}

TEST_F(InboxPlaceTest, ManyScreensAreNotRememberedForEver) {
  InboxPlace places;
  for (int i = 0; i < 100; ++i) places.note(QString::number(i), {QRect(0, 0, 600, 400), false, 0});
  places.write(defaults);
  EXPECT_LT(defaults.text(QLatin1String(InboxPlace::kKey))->size(), 2000);
}

TEST_F(InboxPlaceTest, WithoutAScreenThereIsAPlaceAllTheSame) {
  EXPECT_EQ(InboxPlace().place({}, kUsual).frame.size(), kUsual);
}

}  // namespace
}  // namespace quillmere
