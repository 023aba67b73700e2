#pragma once

#include <chrono>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "platform/linux/passing/PacketSocket.h"
#include "platform/linux/passing/ReaderMessages.h"
#include "reading/PictureMemory.h"

namespace quillmere {

/// A running reader, from the program's side. One request at a time; any thread.
class ReaderProcess {
 public:
  /// How long is waited for what.
  struct Patience {
    std::chrono::milliseconds start = std::chrono::minutes(2);    ///< until it has locked itself in
    std::chrono::milliseconds file = std::chrono::minutes(10);    ///< until a file is read, which a slow disk may take
    std::chrono::milliseconds work = std::chrono::seconds(60);    ///< on a picture
    std::chrono::milliseconds texts = std::chrono::seconds(180);  ///< on the text in one
    std::chrono::milliseconds stop = std::chrono::seconds(1);     ///< with one that was told to stop
    std::chrono::milliseconds many = std::chrono::seconds(5);     ///< on many files, of which each can be asked alone
  };

  /// Null where it cannot be started, or is no reader of this build. Waits until it is ready, or nobody wants it.
  static std::unique_ptr<ReaderProcess> start(const std::string& program, const char* task, const Patience& patience,
                                              const std::atomic<bool>& isStopped);
  /// Ends it.
  ~ReaderProcess();

  enum class End {
    answered,
    gone,  ///< it ended before it looked at the picture, or somebody halted it
    died,
    outlived,  ///< it took longer than anybody waits
    lied,      ///< what came back was no answer
    stopped,   ///< nobody waits any more, and it went on
  };
  struct Outcome {
    End end;
    ReaderMessages::Answer answer{};
    Descriptor memory{};
  };
  /// `files` are the picture's and what comes behind it. Of `memory` it takes what the picture needs, and waits for it;
  /// none is needed where that is null. A reader that did not answer is of no more use.
  Outcome ask(const ReaderMessages::Request& request, const std::vector<int>& files, PictureMemory* memory,
              const std::atomic<bool>& isStopped);

  /// Of many files, `kMostFiles` at most. None where it did not answer; then it is of no more use, and no file is to
  /// blame.
  std::optional<ReaderMessages::Verdicts> judge(const std::vector<int>& files);

  uint32_t missingProtections() const { return missing_; }
  pid_t process() const;
  /// From any thread, also while it is asked.
  void kill();

 private:
  class Child;
  ReaderProcess(PacketSocket socket, ReaderMessages::Signals* signals, std::shared_ptr<Child> child, Patience patience);
  bool hasSaidNothing() const;
  enum class Wait { ready, late, stopped, halted };
  Wait wait(std::chrono::milliseconds atMost, const std::atomic<bool>* isStopped);

  PacketSocket socket_;
  ReaderMessages::Signals* signals_;
  std::shared_ptr<Child> child_;
  Patience patience_;
  uint32_t missing_ = 0;
};

}  // namespace quillmere
