#include <poll.h>
#include <sys/mman.h>
#include <unistd.h>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string_view>
#include <thread>

#include "PictureFuzzing.h"
#include "platform/linux/passing/PassedPicture.h"
#include "platform/linux/passing/SealedMemory.h"
#include "platform/linux/reader/Reader.h"
#include "reading/PictureError.h"

using namespace quillmere;
using ReaderMessages::Answer;
using ReaderMessages::Request;
using ReaderMessages::Step;
using ReaderMessages::Work;

namespace {

/// A reader that answers in a thread of this process, without being locked in.
class RunningReader {
 public:
  RunningReader() {
    std::thread([this] { Reader(ends_->other, signals_, nullptr).run(); }).detach();
  }

  /// What it answers at last, with the right words before it.
  Answer ask(const Request& request, std::string_view bytes, Descriptor& memory) {
    const auto file = SealedMemory::of({bytes});
    if (!file || !ends_->one.send(request, file->number())) std::abort();
    bool hasBegun = false;
    while (true) {
      pollfd socket{ends_->one.number(), POLLIN, 0};
      ::poll(&socket, 1, -1);
      const auto answer = ends_->one.receive<Answer>(&memory);
      if (!answer) std::abort();
      if (answer->step == static_cast<uint32_t>(Step::done)) return *answer;
      if (hasBegun || answer->step != static_cast<uint32_t>(Step::begun) || answer->memory < 0) std::abort();
      hasBegun = true;
      if (answer->memory > 0) ends_->one.send(ReaderMessages::Turn());
    }
  }

 private:
  std::optional<PacketSocket::Pair> ends_ = PacketSocket::pair();
  ReaderMessages::Signals signals_{};
};

/// What is answered fits what comes beside it, as the program wants it, and says why there is nothing.
void askFor(RunningReader& reader, const Request& request, std::string_view bytes) {
  Descriptor memory;
  const Answer answer = reader.ask(request, bytes, memory);
  const auto picture = PassedPicture::bytesOf(answer.shape);
  if (!picture || answer.reason > static_cast<uint32_t>(PictureError::tooCostly)) std::abort();
  if (*picture + answer.extraBytes == 0) {
    if (memory) std::abort();
    return;
  }
  const auto mapped = SealedMemory::mapped(memory, *picture + answer.extraBytes);
  if (!mapped || !answer.isDone) std::abort();
  if (*picture > 0 && PassedPicture::in(mapped, answer.shape).isNull()) std::abort();
}

}  // namespace

/// The input is a picture file of which all is asked, and then a picture to be encoded, behind its shape.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static auto* reader = new RunningReader;
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  for (const Work work : {Work::head, Work::wholeness, Work::picture, Work::thumbnail, Work::windows, Work::text}) {
    constexpr int kSmall = 64;
    askFor(*reader, {.work = static_cast<uint32_t>(work), .number = kSmall}, bytes);
  }
  Request encoding{.work = static_cast<uint32_t>(Work::encoding)};
  if (size < sizeof encoding.shape) return 0;
  std::memcpy(&encoding.shape, data, sizeof encoding.shape);
  encoding.number = encoding.shape.dotsPerMeterX;
  // Large ones take the encoders long, and nothing else.
  constexpr int kLargest = 256;
  if (encoding.shape.width > kLargest || encoding.shape.height > kLargest) return 0;
  askFor(*reader, encoding, bytes.substr(sizeof encoding.shape));
  return 0;
}
