// The one symbol of the library that the program loads.

#include "platform/linux/common/QtExecutor.h"
#include "update/library/Updater.h"

struct QuillmereUpdater {
  quillmere::QtExecutor executor;
  std::unique_ptr<quillmere::Updater> updater;
};

namespace {

QuillmereUpdater* start(const QuillmereUpdateHost* host, const QuillmereUpdateConfiguration* configuration) {
  auto made = std::make_unique<QuillmereUpdater>();
  made->updater = quillmere::Updater::make(*host, *configuration, made->executor);
  return made->updater ? made.release() : nullptr;
}

void check(QuillmereUpdater* updater) {
  updater->updater->check();
}

void setChecksAutomatically(QuillmereUpdater* updater, bool checks) {
  updater->updater->setChecksAutomatically(checks);
}

void stop(QuillmereUpdater* updater) {
  delete updater;
}

constexpr QuillmereUpdateFunctions kFunctions{
    .interfaceNumber = kQuillmereUpdateInterface,
    .start = &start,
    .check = &check,
    .setChecksAutomatically = &setChecksAutomatically,
    .stop = &stop,
};

}  // namespace

extern "C" __attribute__((visibility("default"))) const QuillmereUpdateFunctions* quillmereUpdate(uint32_t number) {
  return number == kQuillmereUpdateInterface ? &kFunctions : nullptr;
}
