#pragma once

#include <QtCore/QObject>
#include <QtDBus/QDBusConnection>

#include "foundation/Executor.h"
#include "foundation/Weak.h"
#include "platform/linux/informing/HelpPages.h"

namespace quillmere {

/// Opens pages of the help in the desktop's program for such pages: by the portal where the program runs in a sandbox,
/// else directly. A page that is not there does nothing. Main thread, which waits for nobody.
class LiveHelp {
 public:
  enum class Surroundings { desktop, sandbox };
  LiveHelp(Executor& executor, const QDBusConnection& bus, HelpPages pages, Surroundings surroundings)
      : executor_(executor), bus_(bus), pages_(std::move(pages)), surroundings_(surroundings) {}
  /// Those in which this process runs.
  static Surroundings ofThisProcess();

  void open(HelpAnchor anchor);

 private:
  static Task<> open(Weak<LiveHelp> self, HelpAnchor anchor);
  void askPortal(const FileURL& page);
  void openDirectly(const FileURL& page);

  Executor& executor_;
  QDBusConnection bus_;
  HelpPages pages_;
  Surroundings surroundings_;
  QObject calls_;  ///< parent of the calls that are under way
  Lifetime lifetime_;
};

}  // namespace quillmere
