#include <fcntl.h>
#include <poll.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>
#include <algorithm>
#include <array>
#include <climits>
#include <cstring>
#include <string>
#include <vector>

#include "platform/linux/passing/PacketSocket.h"
#include "platform/linux/passing/ReaderMessages.h"
#include "platform/linux/passing/SealedMemory.h"

using namespace quillmere;
using ReaderMessages::Answer;
using ReaderMessages::Request;
using ReaderMessages::Step;

namespace {

constexpr int kRgb32 = 4;  // QImage's
constexpr int kSmallSide = 8;

/// The picture's bytes, which say what to do.
class Script {
 public:
  explicit Script(const Descriptor& file) {
    struct stat status {};
    constexpr off_t kMost = 1 << 16;
    if (!file || ::fstat(file.number(), &status) != 0 || status.st_size > kMost) return;
    bytes_.resize(static_cast<size_t>(status.st_size));
    const ssize_t count = ::pread(file.number(), bytes_.data(), bytes_.size(), 0);
    bytes_.resize(count > 0 ? static_cast<size_t>(count) : 0);
  }
  bool isAtEnd() const { return place_ >= bytes_.size(); }
  uint8_t byte() { return isAtEnd() ? 0 : static_cast<uint8_t>(bytes_[place_++]); }
  std::string text(size_t count) {
    std::string text = bytes_.substr(std::min(place_, bytes_.size()), count);
    place_ += count;
    return text;
  }
  template <typename Number>
  Number number(Number right) {
    switch (byte() % 8) {
      case 0:
        return right;
      case 1:
        return 0;
      case 2:
        return 1;
      case 3:
        return static_cast<Number>(-1);
      case 4:
        return static_cast<Number>(INT_MAX);
      case 5:
        return static_cast<Number>(LLONG_MIN);
      case 6:
        return static_cast<Number>(byte());
      default: {
        const std::string bytes = text(sizeof(Number));
        Number number = right;
        std::memcpy(&number, bytes.data(), bytes.size());
        return number;
      }
    }
  }

 private:
  std::string bytes_;
  size_t place_ = 0;
};

/// Whether anything was said that may be an answer; otherwise who asked would wait for long.
bool hasAnswered = false;

void sendAll(const void* bytes, size_t size, const std::vector<int>& descriptors) {
  constexpr size_t kMost = 16;
  iovec part{const_cast<void*>(bytes), size};
  alignas(cmsghdr) std::array<char, CMSG_SPACE(kMost * sizeof(int))> control{};
  msghdr message{};
  message.msg_iov = &part;
  message.msg_iovlen = 1;
  if (!descriptors.empty()) {
    message.msg_control = control.data();
    message.msg_controllen = CMSG_SPACE(descriptors.size() * sizeof(int));
    cmsghdr* header = CMSG_FIRSTHDR(&message);
    header->cmsg_level = SOL_SOCKET;
    header->cmsg_type = SCM_RIGHTS;
    header->cmsg_len = CMSG_LEN(descriptors.size() * sizeof(int));
    std::memcpy(CMSG_DATA(header), descriptors.data(), descriptors.size() * sizeof(int));
  }
  Answer answer;
  std::memcpy(&answer, bytes, std::min(size, sizeof answer));
  const bool isSent = ::sendmsg(ReaderMessages::kSocket, &message, MSG_NOSIGNAL | MSG_DONTWAIT) >= 0;
  hasAnswered = hasAnswered || (isSent && answer.step != static_cast<uint32_t>(Step::begun));
}

/// With what stands for the memory that goes along, right or wrong.
void sendWith(Script& script, const Answer& answer, const std::string& content) {
  std::vector<Descriptor> held;
  const auto sealed = [&](const std::string& bytes) {
    auto memory = SealedMemory::of({bytes});
    if (memory) held.push_back(*std::move(memory));
  };
  const auto loose = [&](int seals) {
    Descriptor memory(::memfd_create("loose", MFD_ALLOW_SEALING));
    [[maybe_unused]] const auto written = ::write(memory.number(), content.data(), content.size());
    ::fcntl(memory.number(), F_ADD_SEALS, seals);
    held.push_back(std::move(memory));
  };
  size_t copies = 1;
  const uint8_t kind = script.byte();
  switch (kind % 14) {
    case 0:
    case 1:
      sealed(content);
      break;
    case 2:
      sealed(content + '\0');
      break;
    case 3:
      sealed(content.substr(content.empty() ? 0 : 1));
      break;
    case 4:
      loose(0);
      break;
    case 5:
      loose(F_SEAL_GROW | F_SEAL_SHRINK);
      break;
    case 6:
      loose(F_SEAL_GROW | F_SEAL_SHRINK | F_SEAL_WRITE);
      break;
    case 7:
      loose(F_SEAL_SEAL);
      break;
    case 8:
      held.emplace_back(::open("/dev/null", O_RDWR));
      break;
    case 9:
      held.emplace_back(::dup(ReaderMessages::kSocket));
      break;
    case 10: {
      std::array<int, 2> ends{};
      if (::pipe(ends.data()) == 0) held.emplace_back(ends[0]), held.emplace_back(ends[1]);
      break;
    }
    case 11:
      sealed(content);
      copies = 2 + script.byte() % 12;
      break;
    case 12:
      sealed("");
      break;
    default:
      break;
  }
  std::vector<int> numbers;
  for (size_t i = 0; i < copies; ++i) {
    for (const Descriptor& one : held) numbers.push_back(one.number());
  }
  if (numbers.size() > 16) numbers.resize(16);
  // Longer and shorter than it is, too.
  std::string bytes(reinterpret_cast<const char*>(&answer), sizeof answer);
  const uint8_t length = script.byte();
  if (length == 1) bytes.resize(script.byte());
  if (length == 2) bytes += script.text(script.byte());
  sendAll(bytes.data(), bytes.size(), numbers);
}

Answer begun(Script& script) {
  Answer answer{.step = static_cast<uint32_t>(Step::begun)};
  answer.memory = script.number<int64_t>(1 << 20);
  return answer;
}

/// Each of its numbers may be another one.
Answer done(Script& script) {
  Answer answer{.step = static_cast<uint32_t>(Step::done)};
  answer.isDone = script.number<uint32_t>(1);
  answer.reason = script.number<uint32_t>(0);
  answer.format = script.number<uint32_t>(0);
  answer.width = script.number<int32_t>(kSmallSide);
  answer.height = script.number<int32_t>(kSmallSide);
  return answer;
}
void addPicture(Script& script, Answer& answer, std::string& content) {
  const auto format = script.number<int32_t>(kRgb32);
  const uint32_t colours = format == kRgb32 ? 0 : script.number<uint32_t>(0);
  answer.shape = {.width = script.number<int32_t>(kSmallSide),
                  .height = script.number<int32_t>(kSmallSide),
                  .format = format,
                  .dotsPerMeterX = script.number<int32_t>(0),
                  .dotsPerMeterY = script.number<int32_t>(0),
                  .colours = colours,
                  .profileBytes = script.number<uint32_t>(0),
                  .bytesPerLine = script.number<uint64_t>(uint64_t{4} * kSmallSide)};
  // What the numbers say, as far as it is no more than a few pages.
  constexpr uint64_t kMost = 1 << 20;
  const uint64_t wanted = answer.shape.bytesPerLine * static_cast<uint64_t>(answer.shape.height) +
                          answer.shape.colours * sizeof(uint32_t) + answer.shape.profileBytes;
  content.assign(wanted < kMost ? wanted : kMost, static_cast<char>(script.byte()));
  if (answer.shape.profileBytes > 0 && answer.shape.profileBytes < content.size()) {
    const std::string profile = script.text(answer.shape.profileBytes);
    content.replace(content.size() - answer.shape.profileBytes, profile.size(), profile);
  }
}
void addBeside(Script& script, Answer& answer, std::string& content, const std::string& beside) {
  content += beside;
  answer.extraBytes = script.number<uint64_t>(beside.size());
}
std::string windows(Script& script) {
  std::string bytes;
  for (int count = script.byte() % 4; count > 0; --count) {
    ReaderMessages::Window window{};
    window.width = kSmallSide;
    window.height = kSmallSide;
    const std::string raw = script.text(script.byte() % (sizeof window + 1));
    std::memcpy(&window, raw.data(), raw.size());
    bytes.append(reinterpret_cast<const char*>(&window), sizeof window);
  }
  return bytes + script.text(script.byte() % 4);
}

/// Not the next request: who asks it would wait for long.
void waitForTurn() {
  constexpr int kAtMost = 20;
  pollfd socket{ReaderMessages::kSocket, POLLIN, 0};
  std::array<char, sizeof(Request)> packet{};
  if (::poll(&socket, 1, kAtMost) <= 0) return;
  const ssize_t size = ::recv(ReaderMessages::kSocket, packet.data(), packet.size(), MSG_DONTWAIT | MSG_PEEK);
  if (size == sizeof(ReaderMessages::Turn)) ::recv(ReaderMessages::kSocket, packet.data(), packet.size(), MSG_DONTWAIT);
}

void obey(Script& script) {
  std::string content;
  switch (script.byte() % 10) {
    case 0:
      sendWith(script, begun(script), script.text(script.byte() % 4));
      break;
    case 1: {
      const Answer first = begun(script);
      sendAll(&first, sizeof first, {});
      if (first.memory > 0) waitForTurn();
      break;
    }
    case 2: {
      Answer answer = done(script);
      addPicture(script, answer, content);
      sendWith(script, answer, content);
      break;
    }
    case 3: {
      Answer answer = done(script);
      addPicture(script, answer, content);
      addBeside(script, answer, content, windows(script));
      sendWith(script, answer, content);
      break;
    }
    case 4: {
      Answer answer = done(script);
      addBeside(script, answer, content, script.text(script.byte()));
      sendWith(script, answer, content);
      break;
    }
    case 5: {
      const Answer answer = done(script);
      sendAll(&answer, sizeof answer, {});
      break;
    }
    case 6: {
      const std::string raw = script.text(script.byte());
      sendAll(raw.data(), raw.size(), {});
      break;
    }
    case 7:
      waitForTurn();
      break;
    case 8:
      ::shutdown(ReaderMessages::kSocket, SHUT_WR);
      break;
    default:
      ::_exit(script.byte());
  }
}

}  // namespace

/// Says that it reads, and does what the file says that it is given. Whoever waits for an answer that does not come is
/// told by its end.
int main() {
  PacketSocket socket{Descriptor(ReaderMessages::kSocket)};
  socket.send(ReaderMessages::Greeting{ReaderMessages::kMagic, ReaderMessages::kVersion, 0});
  Descriptor file;
  while (socket.receive<Request>(&file)) {
    Script script(file);
    file = Descriptor();
    hasAnswered = false;
    while (!script.isAtEnd()) obey(script);
    if (!hasAnswered) ::_exit(0);
  }
  return 0;
}
