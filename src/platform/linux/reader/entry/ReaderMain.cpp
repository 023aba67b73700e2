#include <fcntl.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <QtCore/QCoreApplication>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <optional>

#include "platform/linux/passing/PacketSocket.h"
#include "platform/linux/passing/ReaderMessages.h"
#include "platform/linux/reader/Confinement.h"
#include "platform/linux/reader/Reader.h"
#include "recognition/TextRecognizer.h"

using namespace quillmere;

namespace {

/// Text recognition gives way to everything else that wants the processor.
constexpr int kNiceness = 10;

/// Nothing that the program had open comes along, but what was meant to.
void closeOthers() {
  ::syscall(SYS_close_range, ReaderMessages::kSignals + 1, ~0u, 0u);
}

const ReaderMessages::Signals* mappedSignals() {
  void* page = ::mmap(nullptr, sizeof(ReaderMessages::Signals), PROT_READ, MAP_SHARED, ReaderMessages::kSignals, 0);
  ::close(ReaderMessages::kSignals);
  return page == MAP_FAILED ? nullptr : static_cast<const ReaderMessages::Signals*>(page);
}

}  // namespace

/// Reads pictures for the program that has started it, and can do nothing else.
int main(int argc, char** argv) {
  uint32_t missing = Confinement::begin();
  closeOthers();
  const auto* signals = mappedSignals();
  const bool isForTexts = argc == 2 && std::strcmp(argv[1], ReaderMessages::kTexts) == 0;
  const bool isForPictures = argc == 2 && std::strcmp(argv[1], ReaderMessages::kPictures) == 0;
  if (!signals || !(isForTexts || isForPictures)) {
    std::fprintf(stderr, "This program is started by quillmere alone.\n");
    return 2;
  }
  // It would want pipes for each of Qt's threads.
  ::setenv("QT_NO_GLIB", "1", 1);
  // Qt looks for its plug-ins relative to this.
  const QCoreApplication application(argc, argv);
  std::optional<TextRecognizer> recognizer;
  if (isForTexts) {
    ::setpriority(PRIO_PROCESS, 0, kNiceness);
    recognizer.emplace();
    if (!recognizer->load()) recognizer.reset();
  }
  Reader::warmUp();
  if (!Confinement::close(missing)) {
    std::fprintf(stderr, "quillmere: this kernel has no filters of system calls, so no picture is read.\n");
    return 1;
  }
  PacketSocket socket{Descriptor(ReaderMessages::kSocket)};
  socket.send(ReaderMessages::Greeting{ReaderMessages::kMagic, ReaderMessages::kVersion, missing});
  Reader(socket, *signals, recognizer ? &*recognizer : nullptr).run();
  // Without the libraries' farewells, which may want what is forbidden.
  ::_exit(0);
}
