#include "platform/linux/reader/Confinement.h"

#include <gmock/gmock.h>
#include <array>
#include <cstdio>

#include "foundation/FileStatus.h"
#include "support/Files.h"
#include "support/TemporaryFolder.h"

namespace quillmere::testing {
namespace {

using ::testing::HasSubstr;

class ConfinementTest : public ::testing::Test {
 protected:
  /// What the program says that locks itself in.
  std::string told(const std::string& how) {
    writeFile(home.file("file"), "its content");
    const std::string command = std::string(QUILLMERE_LOCKED_IN) + " " + how + " '" + home.url().path() + "'";
    FILE* output = ::popen(command.c_str(), "r");
    std::string text;
    std::array<char, 256> part{};
    while (const size_t count = std::fread(part.data(), 1, part.size(), output)) text.append(part.data(), count);
    EXPECT_EQ(::pclose(output), 0) << text;
    return text;
  }
  static constexpr std::array kPossible = {"reading what was given", "memory", "a thread"};
  static constexpr std::array kImpossible = {"opening a file",
                                             "opening a file for writing",
                                             "making a file",
                                             "listing a folder",
                                             "looking for a file",
                                             "removing a file",
                                             "a connection",
                                             "a local connection",
                                             "a program",
                                             "a process",
                                             "a signal to another process",
                                             "a look into another process",
                                             "executable memory",
                                             "a core file"};
  TemporaryFolder home;
};

TEST_F(ConfinementTest, LeavesWhatComputingNeeds) {
  const std::string text = told("all");
  for (const char* what : kPossible) EXPECT_THAT(text, HasSubstr(std::string(what) + " succeeds\n"));
}

TEST_F(ConfinementTest, TakesFilesConnectionsProgramsAndOtherProcesses) {
  const std::string text = told("all");
  for (const char* what : kImpossible) EXPECT_THAT(text, HasSubstr(std::string(what) + " fails\n"));
  EXPECT_EQ(readBytes(home.file("file")), "its content");
  EXPECT_FALSE(fileExists(home.file("other")));
}

TEST_F(ConfinementTest, AllowsMemoryForAWhile) {
  const std::string text = told("all");
  EXPECT_THAT(text, HasSubstr("memory that is allowed succeeds\n"));
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
  // Sanitizers end whoever gets none, so those are given what they want.
  EXPECT_THAT(text, HasSubstr("more memory than is allowed fails\n"));
#endif
  EXPECT_THAT(text, HasSubstr("memory afterwards succeeds\n"));
}

TEST_F(ConfinementTest, TakesThemByTheFilterAloneToo) {
  const std::string text = told("filter");
  for (const char* what : kPossible) EXPECT_THAT(text, HasSubstr(std::string(what) + " succeeds\n"));
  for (const char* what : kImpossible) {
    // A look at what is there; the empty root takes that.
    if (std::string_view(what) == "looking for a file") continue;
    EXPECT_THAT(text, HasSubstr(std::string(what) + " fails\n"));
  }
}

TEST_F(ConfinementTest, WouldBeMissed) {
  const std::string text = told("nothing");
  for (const char* what : {"opening a file", "making a file", "removing a file", "a connection", "a program",
                           "a process", "executable memory"}) {
    EXPECT_THAT(text, HasSubstr(std::string(what) + " succeeds\n"));
  }
}

}  // namespace
}  // namespace quillmere::testing
