/// window-states: follows the windows that the session shows, of sway where SWAYSOCK names it. For each line that it
/// reads, a path, it writes there what was shown lately, as detect-windows takes it, and answers with a line of how
/// many states that were.

#include <QtCore/QDateTime>
#include <cstdio>
#include <fstream>
#include <iostream>
#include <string>

#include "platform/linux/passing/PassedWindowStates.h"
#include "platform/linux/windows/WindowWatch.h"

int main() {
  using namespace quillmere;
  const auto now = [] { return Date::fromDateTime(QDateTime::currentDateTimeUtc()); };
  const auto watch = WindowWatch::ofSession(now);
  for (std::string path; std::getline(std::cin, path);) {
    const PassedWindowStates::Question question{.states = watch->states(), .closedAt = now()};
    std::ofstream(path, std::ios::binary) << PassedWindowStates::coded(question);
    std::printf("%zu\n", question.states.size());
    std::fflush(stdout);
  }
}
