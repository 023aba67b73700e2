#include <fcntl.h>
#include <signal.h>
#include <sys/mman.h>
#include <unistd.h>
#include <QtGui/QImage>
#include <array>
#include <cstdlib>
#include <string>
#include <vector>

#include "platform/linux/passing/PacketSocket.h"
#include "platform/linux/passing/PassedPicture.h"
#include "platform/linux/passing/ReaderMessages.h"
#include "platform/linux/passing/SealedMemory.h"

using namespace quillmere;
using ReaderMessages::Answer;
using ReaderMessages::Request;
using ReaderMessages::Step;

namespace {

std::string setting(const char* name) {
  const char* value = std::getenv(name);
  return value ? value : "";
}

Answer begun() {
  Answer answer;
  answer.step = static_cast<uint32_t>(Step::begun);
  return answer;
}
Answer done() {
  Answer answer;
  answer.step = static_cast<uint32_t>(Step::done);
  answer.isDone = 1;
  return answer;
}

QImage picture() {
  QImage image(40, 30, QImage::Format_RGB32);
  image.fill(Qt::green);
  return image;
}

void answerWell(PacketSocket& socket) {
  const PassedPicture passed(picture());
  Answer answer = done();
  answer.shape = passed.shape();
  const auto memory = SealedMemory::of(passed.parts());
  socket.send(begun());
  socket.send(answer, memory->number());
}

/// In the place of the picture that was asked for.
void answerAs(const std::string& kind, PacketSocket& socket) {
  const PassedPicture passed(picture());
  const std::string rows(passed.parts().front());
  Answer answer = done();
  answer.shape = passed.shape();
  if (kind == "well" || kind == "leaves") {
    answerWell(socket);
    if (kind == "leaves") ::_exit(0);
  } else if (kind == "dies") {
    socket.send(begun());
    ::_exit(1);
  } else if (kind == "dies-once") {
    const std::string mark = setting("QUILLMERE_HOSTILE_MARK");
    if (::access(mark.c_str(), F_OK) != 0) {
      ::close(::open(mark.c_str(), O_WRONLY | O_CREAT, 0600));
      socket.send(begun());
      ::_exit(1);
    }
    answerWell(socket);
  } else if (kind == "takes-all-memory") {
    Answer first = begun();
    first.memory = int64_t{1} << 40;
    socket.send(first);
    if (!socket.receive<ReaderMessages::Turn>()) ::_exit(0);
    const std::string mark = setting("QUILLMERE_HOSTILE_MARK");
    const Descriptor busy(::open(mark.c_str(), O_WRONLY | O_CREAT | O_EXCL, 0600));
    ::usleep(20'000);
    if (!busy) ::_exit(1);
    ::unlink(mark.c_str());
    Answer answered = done();
    answered.shape = passed.shape();
    const auto memory = SealedMemory::of(passed.parts());
    socket.send(answered, memory->number());
  } else if (kind == "hangs") {
    socket.send(begun());
    ::pause();
  } else if (kind == "is-halted-once" || kind == "is-halted-at-work-once") {
    const std::string mark = setting("QUILLMERE_HOSTILE_MARK");
    if (::access(mark.c_str(), F_OK) != 0) {
      ::close(::open(mark.c_str(), O_WRONLY | O_CREAT, 0600));
      if (kind == "is-halted-at-work-once") socket.send(begun());
      ::raise(SIGSTOP);
    }
    answerWell(socket);
  } else if (kind == "hangs-before") {
    ::pause();
  } else if (kind == "stops-when-told") {
    socket.send(begun());
    const auto* signals = static_cast<const ReaderMessages::Signals*>(
        ::mmap(nullptr, sizeof(ReaderMessages::Signals), PROT_READ, MAP_SHARED, ReaderMessages::kSignals, 0));
    while (!signals->isStopped) ::usleep(1000);
    Answer failed = done();
    failed.isDone = 0;
    socket.send(failed);
  } else if (kind == "garbage") {
    socket.send(std::array<char, 33>{'x'});
  } else if (kind == "begins-twice") {
    socket.send(begun());
    socket.send(begun());
  } else if (kind == "unsealed") {
    const Descriptor memory(::memfd_create("unsealed", MFD_ALLOW_SEALING));
    [[maybe_unused]] const auto written = ::write(memory.number(), rows.data(), rows.size());
    socket.send(answer, memory.number());
  } else if (kind == "short") {
    const auto memory = SealedMemory::of({rows.substr(1)});
    socket.send(answer, memory->number());
  } else if (kind == "long") {
    const auto memory = SealedMemory::of({rows, "more"});
    socket.send(answer, memory->number());
  } else if (kind == "without-memory") {
    socket.send(answer);
  } else if (kind == "too-large") {
    answer.shape.height = 2'000'000'000;
    const auto memory = SealedMemory::of({rows});
    socket.send(answer, memory->number());
  } else if (kind == "too-much-beside") {
    answer.extraBytes = ~uint64_t{0} - rows.size() + 1;
    const auto memory = SealedMemory::of({rows});
    socket.send(answer, memory->number());
  } else if (kind == "wrong-windows") {
    ReaderMessages::Window window{};
    window.width = 1e9;
    window.height = 10;
    const std::string_view bytes(reinterpret_cast<const char*>(&window), sizeof window);
    answer.extraBytes = bytes.size();
    const auto memory = SealedMemory::of({rows, bytes});
    socket.send(answer, memory->number());
  } else if (kind == "unknown-reason") {
    Answer failed = done();
    failed.isDone = 0;
    failed.reason = 77;
    socket.send(failed);
  } else if (kind == "wrong-verdicts") {
    ReaderMessages::Verdicts verdicts;
    for (auto& verdict : verdicts.of) verdict = {.isJudged = 7, .isWhole = 1, .reason = 77};
    socket.send(verdicts);
  } else if (kind == "wrong-head") {
    answer.shape = {};
    answer.format = 77;
    answer.width = 10;
    answer.height = 10;
    socket.send(answer);
  }
}

}  // namespace

int main() {
  const std::string kind = setting("QUILLMERE_HOSTILE");
  if (kind == "ends-at-once") return 1;
  if (kind == "silent") ::pause();
  PacketSocket socket{Descriptor(ReaderMessages::kSocket)};
  const uint32_t version = kind == "other-version" ? ReaderMessages::kVersion + 1 : ReaderMessages::kVersion;
  socket.send(ReaderMessages::Greeting{ReaderMessages::kMagic, version, 0});
  std::vector<Descriptor> files;
  while (socket.receiveWith<Request>(files, ReaderMessages::kMostFiles)) {
    files.clear();
    answerAs(kind, socket);
  }
  return 0;
}
