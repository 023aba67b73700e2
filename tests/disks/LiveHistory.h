#pragma once

#include <map>
#include <optional>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "faults/LiveModel.h"

namespace quillmere::testing {

/// A random history of a watched folder, played over the live services and a real file system: a person with a file
/// manager, a capture tool, decisions, time, ends and starts of the program. Judged by three rules: no file is lost or
/// thrown away that nobody gave up; every screenshot that came while the program ran has its record; the list on the
/// disk is the list in memory.
///
/// Each file is known by the number that its bytes begin with, wherever it is.
class LiveHistory {
 public:
  explicit LiveHistory(uint64_t seed);

  /// What went wrong first, with all that happened before; empty for a good history.
  std::string play();

 private:
  enum class Choice { none, temporary, kept };
  struct File {
    bool isGone = false;        ///< the person deleted it or wrote over it
    bool mayBeTrashed = false;  ///< by a decision or by hand
    bool isExpected = true;     ///< the program has heard of it and could follow it
    bool isWrittenTo = false;   ///< since the person dealt with it in the program
    bool wasWrittenTo = false;  ///< ever
    Choice choice = Choice::none;
    Date expiresAt;
  };
  using Places = std::map<int, std::vector<FileURL>>;

  // Steps.
  void capture();
  void captureUnderAnOldName();
  void renameByHand();
  void moveElsewhere();
  void moveToAnotherDisk();
  void moveBack();
  void deleteByHand();
  void trashByHand();
  void replace();
  void writeTo();
  void makeTemporary();
  void keep();
  void throwAway();
  void renameInProgram();
  void moveInProgram();
  void pass();
  void wake();
  void quit();
  void kill();
  void start();

  void settle();
  void judge();
  void judgeSettled();
  void hear();
  void end(bool isKilled);
  bool isRunning() const { return live_.model != nullptr; }
  Places places() const;
  std::optional<std::pair<int, FileURL>> pick(const FileURL& folder);
  std::optional<ScreenshotItem> pickRecord();
  std::optional<int> numberAt(const FileURL& url) const;
  void setExpected(int number, bool isExpected) { files_[number].isExpected = isExpected; }
  void write(int number, const FileURL& url, const std::string& more = {});
  uint32_t below(uint32_t limit) { return static_cast<uint32_t>(random_() % limit); }
  void say(const std::string& line) { story_ += "\n  " + line; }
  void fail(const std::string& text) {
    if (failure_.empty()) failure_ = text;
  }

  std::mt19937_64 random_;
  TemporaryFolder home_{privateHome().path()};
  TemporaryFolder otherDisk_;
  const FileURL shots_ = home_.file("shots");
  const FileURL elsewhere_ = home_.file("Documents");
  LiveModel live_;
  std::map<int, File> files_;
  int lastNumber_ = 3;
  int names_ = 0;
  std::string story_;
  std::string failure_;
};

}  // namespace quillmere::testing
