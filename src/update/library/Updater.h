#pragma once

#include <memory>

#include "foundation/Executor.h"
#include "update/UpdateInterface.h"
#include "update/library/LiveUpdateWindows.h"
#include "update/library/UpdateDownload.h"
#include "update/library/UpdateSchedule.h"
#include "update/library/UpdateSession.h"

namespace quillmere {

/// All of the library: puts the parts together for the program that has loaded it. Main thread.
class Updater {
 public:
  /// Null where the configuration makes no sense.
  static std::unique_ptr<Updater> make(const QuillmereUpdateHost& host, const QuillmereUpdateConfiguration& given,
                                       Executor& executor);
  ~Updater();

  void check();
  void setChecksAutomatically(bool checks);

 private:
  Updater(const QuillmereUpdateHost& host, UpdateSession::Program program, const QuillmereUpdateConfiguration& given,
          Executor& executor);
  UpdateSession::World makeWorld(Executor& executor);
  UpdateSchedule::Memory makeMemory();
  void checkBySchedule();

  const QuillmereUpdateHost& host_;
  UpdateDownload transport_;
  std::unique_ptr<UpdateInstaller> installer_;
  LiveUpdateWindows windows_;
  UpdateSession session_;
  UpdateSchedule schedule_;
};

}  // namespace quillmere
