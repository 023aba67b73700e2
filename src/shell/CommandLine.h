#pragma once

#include <QtCore/QStringList>
#include <cstdlib>
#include <variant>

namespace quillmere {

/// What stands behind the program's name when it is started. Read before there is an application object, which would
/// need a display.
namespace CommandLine {

struct Start {
  bool isLoginLaunch = false;  ///< started with the session, not by the person
  QString action;              ///< of the launcher entry, which is to be performed; empty without one
  bool isForRunning = false;   ///< only for a program that runs already: nothing is started for it
};

/// Printed instead of starting.
struct Answer {
  QString text;
  int status = EXIT_SUCCESS;  ///< what was asked for is no failure, what was not understood is one

  bool isComplaint() const { return status != EXIT_SUCCESS; }
  /// Gives the process's exit status.
  int print() const;
};

/// Without the program's name.
std::variant<Start, Answer> read(const QStringList& arguments);
std::variant<Start, Answer> read(int argc, char** argv);

}  // namespace CommandLine
}  // namespace quillmere
