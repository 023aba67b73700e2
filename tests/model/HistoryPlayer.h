#pragma once

#include "model/HistoryOracle.h"

namespace quillmere::testing {

/// One thing that happens. What it happens to is chosen by numbers that mean something in any state of the world, so
/// that steps before it can be left out.
struct HistoryStep {
  size_t rule = 0;  ///< the place in `HistoryPlayer::rules()`
  uint32_t which = 0;
  uint32_t how = 0;
  /// Happens when the next background work asks its question of this number; 0: at once.
  uint32_t atQuestion = 0;
};

/// Plays steps in a world of its own and says what went wrong first.
class HistoryPlayer {
 public:
  struct Rule {
    const char* name;
    uint32_t weight;
    void (HistoryPlayer::*perform)(const HistoryStep& step);
    bool canInterrupt = false;  ///< can happen while background work runs
  };
  static const std::vector<Rule>& rules();

  explicit HistoryPlayer(HistoryWorld::BookmarkReach reach);
  ~HistoryPlayer();
  HistoryPlayer(const HistoryPlayer&) = delete;
  HistoryPlayer& operator=(const HistoryPlayer&) = delete;

  void play(const std::vector<HistoryStep>& steps);
  const std::optional<HistoryFailure>& failure() const { return oracle_.failure(); }
  /// What happened, a line each.
  const std::vector<std::string>& story() const { return story_; }

 private:
  using File = HistoryWorld::File;

  // The steps stand in HistorySteps.cpp. A person in a file manager, and a capture tool:
  void capture(const HistoryStep& step);
  void captureUnderAnOldName(const HistoryStep& step);
  void captureSlowly(const HistoryStep& step);
  void finishWriting(const HistoryStep& step);
  void copyFromElsewhere(const HistoryStep& step);
  void renameFile(const HistoryStep& step);
  void renameUnseen(const HistoryStep& step);
  void swapNames(const HistoryStep& step);
  void moveOut(const HistoryStep& step);
  void moveBack(const HistoryStep& step);
  void trashOutside(const HistoryStep& step);
  void restoreFromTrash(const HistoryStep& step);
  void deleteFile(const HistoryStep& step);
  void replaceFile(const HistoryStep& step);
  void reuseInode(const HistoryStep& step);
  void editInPlace(const HistoryStep& step);
  void evict(const HistoryStep& step);
  void bringBack(const HistoryStep& step);
  void eject(const HistoryStep& step);
  void connect(const HistoryStep& step);
  void renameFolder(const HistoryStep& step);

  // A person in the program:
  void makeTemporary(const HistoryStep& step);
  void makeTemporaryBatch(const HistoryStep& step);
  void keep(const HistoryStep& step);
  void keepBatch(const HistoryStep& step);
  void moveToTrash(const HistoryStep& step);
  void deleteImmediately(const HistoryStep& step);
  void trashBatch(const HistoryStep& step);
  void closePopup(const HistoryStep& step);
  void review(const HistoryStep& step);
  void renameInProgram(const HistoryStep& step);
  void openEditor(const HistoryStep& step);
  void closeEditor(const HistoryStep& step);
  void dismissBanner(const HistoryStep& step);
  void switchAutoSave(const HistoryStep& step);

  // The machine:
  void refuseTrash(const HistoryStep& step);
  void allowTrash(const HistoryStep& step);
  void passMoments(const HistoryStep& step);
  void passMinutes(const HistoryStep& step);
  void passHours(const HistoryStep& step);
  void sleepAndWake(const HistoryStep& step);
  void setClock(const HistoryStep& step);
  void comeToFront(const HistoryStep& step);
  void reconcile(const HistoryStep& step);
  void holdWork(const HistoryStep& step);
  void runWork(const HistoryStep& step);
  void deliverResult(const HistoryStep& step);
  void releaseWork(const HistoryStep& step);
  void quit(const HistoryStep& step);
  void kill(const HistoryStep& step);
  void killDuringNextFileOperation(const HistoryStep& step);
  void start(const HistoryStep& step);

  // The course of a history.
  void perform(const HistoryStep& step);
  void interrupt();
  void settle();
  void pass(double bySeconds);
  void finishStep();
  void startProgram();
  void closeEditors();
  void endProgram(bool isKilled);
  void say(const std::string& line);
  void tellChange(const HistoryStep& step);
  std::optional<ScreenshotItem> pickRecord(const HistoryStep& step, std::optional<ScreenshotItem::State> state = {});
  std::vector<ScreenshotItem> pickRecords(const HistoryStep& step);
  File* pickFile(const HistoryStep& step, const FileURL& place);
  File* pickWatched(const HistoryStep& step);
  void moveByPerson(File& file, const FileURL& to, const HistoryStep& step, const std::string& verb);
  void noteTemporary(const ScreenshotItem& item, TemporaryDuration duration);
  void disposing(const std::vector<ScreenshotItem>& items, const std::function<Task<>()>& work);

  HistoryWorld world_;
  HistoryProgram program_{world_};
  HistoryOracle oracle_{world_, program_};
  std::vector<std::string> story_;
  int captures_ = 0;
  int renames_ = 0;
  UUIDSet openEditors_;
  /// Under way, with the numbers of the files.
  struct Disposal {
    Task<> task;
    std::vector<int> files;
  };
  std::vector<Disposal> disposals_;
  std::optional<HistoryStep> waiting_;  ///< for a question of background work
  uint32_t questionsLeft_ = 0;

  std::optional<FileStatus> list_;  ///< the list file as it was last seen
  Date lastSave_;
  std::optional<Date> aliveUntil_;  ///< of a run that was killed
  bool killsDuringFileOperation_ = false;
  /// The list as it stood when the program was killed.
  struct Death {
    std::optional<std::string> list;
    Date lastSave;
  };
  std::optional<Death> death_;
};

}  // namespace quillmere::testing
