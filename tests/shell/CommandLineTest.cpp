#include "shell/CommandLine.h"

#include <gmock/gmock.h>

#include "support/Printing.h"

namespace quillmere {
namespace {

using CommandLine::Answer;
using CommandLine::Start;
using ::testing::HasSubstr;
using ::testing::StartsWith;

Start startOf(const QStringList& arguments) {
  const auto request = CommandLine::read(arguments);
  const auto* start = std::get_if<Start>(&request);
  EXPECT_TRUE(start) << arguments.join(QLatin1Char(' ')).toStdString();
  return start ? *start : Start{};
}

std::string answerOf(const QStringList& arguments, bool isComplaint) {
  const auto request = CommandLine::read(arguments);
  const auto* answer = std::get_if<Answer>(&request);
  EXPECT_TRUE(answer) << arguments.join(QLatin1Char(' ')).toStdString();
  if (!answer) return {};
  EXPECT_EQ(answer->isComplaint(), isComplaint);
  return answer->text.toStdString();
}

TEST(CommandLine, WithoutArgumentsThePersonStartsTheProgram) {
  EXPECT_FALSE(startOf({}).isLoginLaunch);
}

TEST(CommandLine, AutostartIsAStartWithTheSession) {
  EXPECT_TRUE(startOf({"--autostart"}).isLoginLaunch);
}

TEST(CommandLine, WhatASessionManagerAddsIsUnderstood) {
  EXPECT_FALSE(startOf({"-session", "1017a1_2"}).isLoginLaunch);
  EXPECT_TRUE(startOf({"--autostart", "-session", "1017a1_2"}).isLoginLaunch);
}

TEST(CommandLine, ShowAndReviewAreActionsOfTheLauncherEntry) {
  EXPECT_EQ(startOf({}).action, QString());
  EXPECT_EQ(startOf({"--show", "inbox"}).action, QStringLiteral("inbox"));
  EXPECT_EQ(startOf({"--show=settings"}).action, QStringLiteral("settings"));
  EXPECT_EQ(startOf({"--show", "about"}).action, QStringLiteral("about"));
  EXPECT_EQ(startOf({"--show", "welcome"}).action, QStringLiteral("welcome"));
  EXPECT_EQ(startOf({"--review"}).action, QStringLiteral("review"));
  EXPECT_TRUE(startOf({"--autostart", "--show", "inbox"}).isLoginLaunch);
}

TEST(CommandLine, AWindowIsClosedOnlyByAProgramThatRuns) {
  EXPECT_EQ(startOf({"--close-window"}).action, QStringLiteral("close-window"));
  EXPECT_TRUE(startOf({"--close-window"}).isForRunning);
  EXPECT_FALSE(startOf({"--review"}).isForRunning);
  EXPECT_FALSE(startOf({}).isForRunning);
}

TEST(CommandLine, AWindowThatIsNotThereIsAFailureOfItsOwn) {
  const auto status = [](const QStringList& arguments) {
    return std::get<Answer>(CommandLine::read(arguments)).status;
  };
  EXPECT_EQ(status({"--show", "quit"}), 1);
  EXPECT_EQ(status({"--inbox"}), 2);
  EXPECT_EQ(status({"--help"}), 0);
}

TEST(CommandLine, HelpNamesEveryOptionForPeopleAndNoOther) {
  for (const QString option : {"-h", "--help"}) {
    const std::string text = answerOf({option}, false);
    EXPECT_THAT(text, StartsWith("Usage: quillmere [options]\nWatches"));
    for (const char* name : {"--autostart", "--show <window>", "inbox, settings, about or welcome", "--review",
                             "--close-window", "-h, --help", "-v, --version"})
      EXPECT_THAT(text, HasSubstr(name));
    EXPECT_THAT(text, Not(HasSubstr("session")));
  }
}

TEST(CommandLine, TheVersionIsALineWithTheProgramsName) {
  for (const QString option : {"-v", "--version"}) {
    EXPECT_EQ(answerOf({option}, false), "Quillmere " QUILLMERE_VERSION "\n");
  }
}

TEST(CommandLine, HelpAndVersionGoBeforeStarting) {
  EXPECT_THAT(answerOf({"--autostart", "--help"}, false), StartsWith("Usage"));
  EXPECT_THAT(answerOf({"--version", "--autostart"}, false), StartsWith("Quillmere"));
}

struct Misunderstood {
  const char* why;
  QStringList arguments;
  const char* line;
};

class MisunderstoodArguments : public ::testing::TestWithParam<Misunderstood> {};

TEST_P(MisunderstoodArguments, AreNamedInOneLine) {
  EXPECT_EQ(answerOf(GetParam().arguments, true), GetParam().line) << GetParam().why;
}

INSTANTIATE_TEST_SUITE_P(
    CommandLine, MisunderstoodArguments,
    ::testing::Values(
        Misunderstood{"an unknown option", {"--inbox"}, "quillmere: Unknown option 'inbox'. Try: quillmere --help\n"},
        Misunderstood{"an unknown letter", {"-x"}, "quillmere: Unknown option 'x'. Try: quillmere --help\n"},
        Misunderstood{
            "beside known ones", {"--help", "--inbox"}, "quillmere: Unknown option 'inbox'. Try: quillmere --help\n"},
        Misunderstood{"a value where none belongs",
                      {"--autostart=yes"},
                      "quillmere: Unexpected value after '--autostart'. Try: quillmere --help\n"},
        Misunderstood{
            "no window of ours", {"--show", "quit"}, "quillmere: Unknown window 'quit'. Try: quillmere --help\n"},
        Misunderstood{"no window at all", {"--show="}, "quillmere: Unknown window ''. Try: quillmere --help\n"},
        Misunderstood{"a window's name of two lines",
                      {"--show", "in\nbox"},
                      "quillmere: Unknown window 'in box'. Try: quillmere --help\n"},
        Misunderstood{
            "the value left out", {"--show"}, "quillmere: Missing value after '--show'. Try: quillmere --help\n"},
        Misunderstood{"two things at once",
                      {"--review", "--show", "inbox"},
                      "quillmere: Both '--show' and '--review' are given. Try: quillmere --help\n"},
        Misunderstood{"two others",
                      {"--close-window", "--review"},
                      "quillmere: Both '--review' and '--close-window' are given. Try: quillmere --help\n"},
        Misunderstood{"a window to open and one to close",
                      {"--close-window", "--show", "inbox"},
                      "quillmere: Both '--show' and '--close-window' are given. Try: quillmere --help\n"},
        Misunderstood{"a file", {"a.png"}, "quillmere: Unexpected argument 'a.png'. Try: quillmere --help\n"},
        Misunderstood{"a session without its name",
                      {"-session"},
                      "quillmere: Missing value after '-session'. Try: quillmere --help\n"}));

TEST(CommandLine, ArgumentsOfTheProcessAreReadWithoutItsName) {
  std::string name = "--help";
  std::string autostart = "--autostart";
  std::array<char*, 3> arguments{name.data(), autostart.data(), nullptr};
  const auto request = CommandLine::read(2, arguments.data());
  ASSERT_TRUE(std::holds_alternative<Start>(request));
  EXPECT_TRUE(std::get<Start>(request).isLoginLaunch);
}

}  // namespace
}  // namespace quillmere
