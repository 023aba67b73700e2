// An update library that only asks: for a place as if it showed a window when a check begins, and for the program's end
// when it is to check by itself, which it takes as on where the program doesn't end. Told not to, it gives the place
// back.

#include "update/UpdateInterface.h"

struct QuillmereUpdater {
  const QuillmereUpdateHost& host;
};

namespace {

QuillmereUpdater* start(const QuillmereUpdateHost* host, const QuillmereUpdateConfiguration*) {
  host->setCanCheck(host->context, true);
  return new QuillmereUpdater{*host};
}

void check(QuillmereUpdater* updater) {
  updater->host.borrowActivation(updater->host.context);
}

void setChecksAutomatically(QuillmereUpdater* updater, bool checks) {
  const QuillmereUpdateHost& host = updater->host;
  if (!checks) return host.repayActivation(host.context);
  host.setChecksAutomatically(host.context, !host.quit(host.context));
}

void stop(QuillmereUpdater* updater) {
  delete updater;
}

constexpr QuillmereUpdateFunctions kFunctions{.interfaceNumber = kQuillmereUpdateInterface,
                                              .start = &start,
                                              .check = &check,
                                              .setChecksAutomatically = &setChecksAutomatically,
                                              .stop = &stop};

}  // namespace

extern "C" __attribute__((visibility("default"))) const QuillmereUpdateFunctions* quillmereUpdate(uint32_t) {
  return &kFunctions;
}
