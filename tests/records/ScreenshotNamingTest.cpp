#include "records/ScreenshotNaming.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include "records/PictureFormat.h"
#include "support/Files.h"
#include "support/Printing.h"
#include "support/Records.h"
#include "support/TemporaryFolder.h"

namespace quillmere {
namespace {

using testing::TemporaryFolder;
using testing::writeFile;
using Outcome = NumberedSearchResult::Outcome;

std::optional<std::string> cleaned(const QString& name) {
  const auto stem = sanitizedFileStem(name);
  return stem ? std::optional(stem->toStdString()) : std::nullopt;
}
std::optional<std::string> cleaned(const char* name) {
  return cleaned(QString::fromUtf8(name));
}

// --- Cleaning ---

TEST(ScreenshotNaming, ANameThatIsFineStaysAsItIs) {
  for (const char* name : {"Shot", "Bücher 截图", "it’s, well; (done) [1] {2} & 100% ~ #3 'x' – y", "a.b"}) {
    EXPECT_EQ(cleaned(name), name);
  }
}

TEST(ScreenshotNaming, EveryForbiddenCharacterBecomesABlank) {
  for (const char* forbidden : {"/", "\\", ":", "?", "*", "\"", "<", ">", "|", "—", "“", "”"}) {
    EXPECT_EQ(cleaned(("a" + std::string(forbidden) + "b").c_str()), "a b") << forbidden;
  }
  EXPECT_EQ(cleaned("a/b:c"), "a b c");
}

TEST(ScreenshotNaming, TheEnDashAndSingleCurlyQuotesStay) {
  EXPECT_EQ(cleaned("a–b ‘c’"), "a–b ‘c’");
}

TEST(ScreenshotNaming, EveryControlCharacterBecomesABlank) {
  for (char16_t c = 0; c < 0x20; ++c) EXPECT_EQ(cleaned(QStringLiteral("a%1b").arg(QChar(c))), "a b") << int{c};
  for (char16_t c = 0x7f; c < 0xa0; ++c) EXPECT_EQ(cleaned(QStringLiteral("a%1b").arg(QChar(c))), "a b") << int{c};
}

TEST(ScreenshotNaming, InvisibleFormattingCharactersBecomeBlanks) {
  for (const char16_t c : {u'\u200b', u'\u200e', u'\u202e', u'\u2066', u'\ufeff'}) {
    EXPECT_EQ(cleaned(QStringLiteral("a%1b").arg(QChar(c))), "a b") << int{c};
  }
}

TEST(ScreenshotNaming, RunsOfWhitespaceBecomeOneBlank) {
  EXPECT_EQ(cleaned("  a \t\n  b\u00a0\u2003c  "), "a b c");
  EXPECT_EQ(cleaned("a/ : /b"), "a b");
}

TEST(ScreenshotNaming, FullStopsAndBlanksAreTrimmedFromBothEnds) {
  EXPECT_EQ(cleaned(". ..a.b. . ."), "a.b");
  EXPECT_EQ(cleaned("...hidden"), "hidden");
}

TEST(ScreenshotNaming, ANameOfOnlyStopsSlashesOrBlanksGivesNone) {
  for (const char* name : {"", " ", ".", "...", "/", "///", ". / .", "\t", "—"}) {
    EXPECT_EQ(cleaned(name), std::nullopt) << name;
  }
}

TEST(ScreenshotNaming, ANameThatIsAnExtensionAloneLosesItsStopAndStays) {
  // The stop goes before extensions are looked for, so there is none left to remove.
  EXPECT_EQ(cleaned(".png"), "png");
}

TEST(ScreenshotNaming, AnImageExtensionAtTheEndIsRemovedInAnyCase) {
  for (const char* extension : {".png", ".jpeg", ".jpg", ".heic", ".heif", ".PNG", ".Jpeg", ".HEIC"}) {
    EXPECT_EQ(cleaned(("shot" + std::string(extension)).c_str()), "shot") << extension;
  }
  EXPECT_EQ(cleaned("shot.PNG"), "shot");
  EXPECT_EQ(cleaned("shot.gif"), "shot.gif");
  EXPECT_EQ(cleaned("shot.png.txt"), "shot.png.txt");
  EXPECT_EQ(cleaned("shotpng"), "shotpng");
}

TEST(ScreenshotNaming, NoNameKeepsTheExtensionOfAPictureFormat) {
  for (const PictureFormat format : kPictureFormats) {
    for (const std::string_view extension : traits(format).extensions) {
      EXPECT_EQ(cleaned(("shot." + std::string(extension)).c_str()), "shot") << extension;
    }
  }
}

TEST(ScreenshotNaming, EachExtensionIsTriedOnceAndInOrder) {
  EXPECT_EQ(cleaned("shot.png.jpeg"), "shot.png");
  EXPECT_EQ(cleaned("shot.jpeg.png"), "shot");
  EXPECT_EQ(cleaned("shot.heif.heic.jpg.jpeg.png"), "shot");
  EXPECT_EQ(cleaned("shot.png.png"), "shot.png");
  EXPECT_EQ(cleaned("shot.jpg.jpeg"), "shot");
  EXPECT_EQ(cleaned("shot.heic.heif"), "shot.heic");
}

TEST(ScreenshotNaming, WhatIsLeftBeforeAnExtensionIsTrimmedAgain) {
  EXPECT_EQ(cleaned("shot . .png"), "shot");
  EXPECT_EQ(cleaned("a/.png"), "a");
}

TEST(ScreenshotNaming, TwoHundredLettersAreCutTo160Bytes) {
  EXPECT_EQ(cleaned(std::string(200, 'a').c_str()), std::string(160, 'a'));
  EXPECT_EQ(cleaned(std::string(161, 'a').c_str()), std::string(160, 'a'));
  EXPECT_EQ(cleaned(std::string(160, 'a').c_str()), std::string(160, 'a'));
}

TEST(ScreenshotNaming, SeventyFourByteCharactersAreCutToForty) {
  EXPECT_EQ(cleaned(QStringLiteral("𝔸").repeated(70)), QStringLiteral("𝔸").repeated(40).toStdString());
}

TEST(ScreenshotNaming, NoCharacterIsCutInTwo) {
  EXPECT_EQ(cleaned(QStringLiteral("ü").repeated(80) + QStringLiteral("x")),
            QStringLiteral("ü").repeated(80).toStdString());
  EXPECT_EQ(cleaned(QStringLiteral("x") + QStringLiteral("ü").repeated(90)),
            (QStringLiteral("x") + QStringLiteral("ü").repeated(79)).toStdString());
  // A letter with its combining marks is one character: 40 of four bytes are whole, the next would be cut.
  const QString marked = QStringLiteral("a\u0301\u0302");
  EXPECT_EQ(cleaned(marked.repeated(40)), marked.repeated(32).toStdString());
}

TEST(ScreenshotNaming, ACharacterLongerThanTheLimitLeavesNothing) {
  EXPECT_EQ(cleaned(QStringLiteral("a") + QStringLiteral("\u0301").repeated(100)), std::nullopt);
}

TEST(ScreenshotNaming, WhatTheCutLeavesAtTheEndIsTrimmed) {
  EXPECT_EQ(cleaned((std::string(159, 'a') + " bbb").c_str()), std::string(159, 'a'));
  EXPECT_EQ(cleaned((std::string(158, 'a') + ". bbb").c_str()), std::string(158, 'a'));
}

TEST(ScreenshotNaming, ExtensionsAreRemovedBeforeTheCut) {
  EXPECT_EQ(cleaned((std::string(160, 'a') + ".png").c_str()), std::string(160, 'a'));
  EXPECT_EQ(cleaned((std::string(156, 'a') + ".png.gif").c_str()), std::string(156, 'a') + ".png");
}

TEST(ScreenshotNaming, AVeryLongNameIsCutWithoutDelay) {
  EXPECT_EQ(cleaned(std::string(2'000'000, 'a').c_str()), std::string(160, 'a'));
}

TEST(ScreenshotNaming, HalfACharacterDoesNotReachTheFileSystem) {
  const QString half = QStringLiteral("a") + QChar(0xd800) + QStringLiteral("b");
  const auto stem = sanitizedFileStem(half);
  ASSERT_TRUE(stem);
  EXPECT_TRUE(stem->isValidUtf16());
}

TEST(ScreenshotNaming, AJoinerInsideACharacterOrAWordIsPartOfIt) {
  const QString family = QStringLiteral("👩‍👩‍👧 at home");
  EXPECT_EQ(sanitizedFileStem(family), family);
  const QString persian = QStringLiteral("می‌خواهم");
  EXPECT_EQ(sanitizedFileStem(persian), persian);
  EXPECT_EQ(sanitizedFileStem(QStringLiteral("\u200da")), QStringLiteral("a")) << "alone it joins nothing";
}

TEST(ScreenshotNaming, ALongNameIsCutBetweenWholeCharacters) {
  // A joiner before what is no picture joins nothing, and no character is taken for two halves.
  const QString name = (QStringLiteral("\U0001F469\u200d") + QStringLiteral("\U0002F800")).repeated(30);
  EXPECT_LE(cleaned(name)->size(), 160u);
  EXPECT_EQ(sanitizedFileStem(*sanitizedFileStem(name)), sanitizedFileStem(name));
}

TEST(ScreenshotNaming, AMarkOnTopDoesNotMakeASlashAnotherCharacter) {
  EXPECT_EQ(sanitizedFileStem(QStringLiteral("a/\u0301b")), QStringLiteral("a b"));
  // An Arabic number sign joins what follows it.
  EXPECT_EQ(sanitizedFileStem(QStringLiteral("a\u0600/b")), QStringLiteral("a b"));
  EXPECT_EQ(sanitizedFileStem(QStringLiteral("a\u202e\u0301b")), sanitizedFileStem(QStringLiteral("a \u0301b")));
}

// --- Display name ---

ScreenshotItem described() {
  ScreenshotItem item = testing::bareItem();
  item.url = FileURL::fromPath("/shots/Original.name.png");
  item.imageDescription = "A window";
  item.suggestedName = "Sugge/sted.png";
  return item;
}

TEST(DisplayName, IsTheCleanedSuggestionWhereItIsAskedFor) {
  EXPECT_EQ(displayName(described(), ScreenshotNaming::suggested).toStdString(), "Sugge sted");
}

TEST(DisplayName, IsTheFilesNameOtherwise) {
  ScreenshotItem withoutDescription = described();
  withoutDescription.imageDescription.reset();
  ScreenshotItem withoutName = described();
  withoutName.suggestedName.reset();
  ScreenshotItem withEmptyName = described();
  withEmptyName.suggestedName = " ... ";
  for (const auto& item : {withoutDescription, withoutName, withEmptyName}) {
    EXPECT_EQ(displayName(item, ScreenshotNaming::suggested).toStdString(), "Original.name");
  }
  EXPECT_EQ(displayName(described(), ScreenshotNaming::original).toStdString(), "Original.name");
}

// --- Numbered search ---

/// Renames for real, or answers what the test wants.
struct Mover {
  std::vector<std::string> tried;
  std::vector<MoveResult> answers;  // the first ones; then it moves
  std::function<MoveResult(const FileURL&, const FileURL&)> perform() {
    return [this](const FileURL& from, const FileURL& to) {
      tried.push_back(to.lastPathComponent());
      if (tried.size() <= answers.size()) return answers[tried.size() - 1];
      return ::rename(from.c_str(), to.c_str()) == 0 ? MoveResult::done : MoveResult::failed;
    };
  }
};

TEST(NumberedSearch, TakesTheNameThatIsFree) {
  const TemporaryFolder folder;
  writeFile(folder.file("old.png"), "x");
  Mover mover;
  const auto result = renameAvoidingCollision(folder.file("old.png"), QStringLiteral("Name"), mover.perform());
  EXPECT_EQ(result.outcome, Outcome::moved);
  EXPECT_EQ(result.url, folder.file("Name.png"));
  EXPECT_EQ(testing::namesIn(folder.url()), std::vector<std::string>{"Name.png"});
}

TEST(NumberedSearch, GoesOnToTheFirstNumberThatIsFree) {
  const TemporaryFolder folder;
  for (const char* name : {"old.png", "Name.png", "Name (1).png"}) writeFile(folder.file(name), name);
  Mover mover;
  const auto result = renameAvoidingCollision(folder.file("old.png"), QStringLiteral("Name"), mover.perform());
  EXPECT_EQ(result.url, folder.file("Name (2).png"));
  EXPECT_EQ(mover.tried, std::vector<std::string>{"Name (2).png"});
  EXPECT_EQ(testing::readBytes(folder.file("Name.png")), "Name.png");
  EXPECT_EQ(testing::readBytes(folder.file("Name (1).png")), "Name (1).png");
}

TEST(NumberedSearch, KeepsTheFilesOwnExtensionInItsCase) {
  const TemporaryFolder folder;
  writeFile(folder.file("old.JPeG"), "x");
  Mover mover;
  const auto result = renameAvoidingCollision(folder.file("old.JPeG"), QStringLiteral("a.b"), mover.perform());
  EXPECT_EQ(result.url.lastPathComponent(), "a.b.JPeG");
}

TEST(NumberedSearch, GivesAFileWithoutExtensionNone) {
  const TemporaryFolder folder;
  writeFile(folder.file("old"), "x");
  writeFile(folder.file("Name"), "y");
  Mover mover;
  const auto result = renameAvoidingCollision(folder.file("old"), QStringLiteral("Name"), mover.perform());
  EXPECT_EQ(result.url.lastPathComponent(), "Name (1)");
}

TEST(NumberedSearch, OfTheNameThatTheFileHasDoesNothing) {
  const TemporaryFolder folder;
  writeFile(folder.file("Shot.png"), "x");
  Mover mover;
  EXPECT_EQ(renameAvoidingCollision(folder.file("Shot.png"), QStringLiteral("Shot"), mover.perform()).outcome,
            Outcome::alreadyNamed);
  const auto roundabout = FileURL::fromPath(folder.path() + "/./x/../Shot.png");
  EXPECT_EQ(renameAvoidingCollision(roundabout, QStringLiteral("Shot"), mover.perform()).outcome,
            Outcome::alreadyNamed);
  EXPECT_TRUE(mover.tried.empty());
}

TEST(NumberedSearch, OfANumberedNameThatTheFileHasDoesNothing) {
  const TemporaryFolder folder;
  writeFile(folder.file("Name.png"), "x");
  writeFile(folder.file("Name (1).png"), "y");
  Mover mover;
  EXPECT_EQ(renameAvoidingCollision(folder.file("Name (1).png"), QStringLiteral("Name"), mover.perform()).outcome,
            Outcome::alreadyNamed);
  EXPECT_TRUE(mover.tried.empty());
}

TEST(NumberedSearch, ToAnotherCaseIsARenameOnAFileSystemThatTellsCasesApart) {
  const TemporaryFolder folder;
  writeFile(folder.file("Shot.png"), "x");
  Mover mover;
  const auto stem = sanitizedFileStem(QStringLiteral("shot.PNG"));
  ASSERT_TRUE(stem);
  const auto result = renameAvoidingCollision(folder.file("Shot.png"), *stem, mover.perform());
  EXPECT_EQ(result.url, folder.file("shot.png"));
}

TEST(NumberedSearch, GoesOnWhenAnotherProcessTookTheNameMeanwhile) {
  const TemporaryFolder folder;
  writeFile(folder.file("old.png"), "x");
  Mover mover;
  mover.answers = {MoveResult::destinationExists, MoveResult::destinationExists};
  const auto result = renameAvoidingCollision(folder.file("old.png"), QStringLiteral("Name"), mover.perform());
  EXPECT_EQ(result.url, folder.file("Name (2).png"));
  EXPECT_EQ(mover.tried, (std::vector<std::string>{"Name.png", "Name (1).png", "Name (2).png"}));
}

TEST(NumberedSearch, StopsAtAnyOtherFailure) {
  const TemporaryFolder folder;
  writeFile(folder.file("old.png"), "x");
  Mover mover;
  mover.answers = {MoveResult::destinationExists, MoveResult::failed};
  EXPECT_EQ(renameAvoidingCollision(folder.file("old.png"), QStringLiteral("Name"), mover.perform()).outcome,
            Outcome::failed);
  EXPECT_EQ(mover.tried.size(), 2u);
}

TEST(NumberedSearch, GivesUpAfter999) {
  const TemporaryFolder folder;
  writeFile(folder.file("old.png"), "x");
  Mover mover;
  mover.answers.assign(2000, MoveResult::destinationExists);
  EXPECT_EQ(renameAvoidingCollision(folder.file("old.png"), QStringLiteral("Name"), mover.perform()).outcome,
            Outcome::destinationExists);
  ASSERT_EQ(mover.tried.size(), 1000u);
  EXPECT_EQ(mover.tried.back(), "Name (999).png");
}

TEST(NumberedSearch, TakesALinkThatLeadsNowhereForTaken) {
  const TemporaryFolder folder;
  writeFile(folder.file("old.png"), "x");
  ASSERT_EQ(::symlink("nowhere", folder.file("Name.png").c_str()), 0);
  Mover mover;
  const auto result = renameAvoidingCollision(folder.file("old.png"), QStringLiteral("Name"), mover.perform());
  EXPECT_EQ(result.url, folder.file("Name (1).png"));
}

}  // namespace
}  // namespace quillmere
