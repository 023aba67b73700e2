#include "platform/linux/windows/SwayConnection.h"

#include <unistd.h>
#include <cstdlib>
#include <cstring>

#include "platform/linux/windows/SwayTree.h"

namespace quillmere {
namespace {

enum class Message : uint32_t { subscribe = 2, getOutputs = 3, getTree = 4 };

constexpr std::string_view kMagic = "i3-ipc";
/// A tree of thousands of windows has less.
constexpr uint32_t kLongestAnswer = 32 << 20;

bool tell(const LocalStream& stream, Message type, std::string_view payload) {
  const auto size = static_cast<uint32_t>(payload.size());
  const auto number = static_cast<uint32_t>(type);
  std::string bytes(kMagic);
  bytes.append(reinterpret_cast<const char*>(&size), sizeof size);
  bytes.append(reinterpret_cast<const char*>(&number), sizeof number);
  return stream.send(bytes.append(payload));
}

std::optional<std::string> hearOne(const LocalStream& stream) {
  const auto head = stream.receive(kMagic.size() + 2 * sizeof(uint32_t));
  if (!head || !head->starts_with(kMagic)) return std::nullopt;
  uint32_t size = 0;
  std::memcpy(&size, head->data() + kMagic.size(), sizeof size);
  return size <= kLongestAnswer ? stream.receive(size) : std::nullopt;
}

std::optional<std::string> ask(const LocalStream& stream, Message type) {
  return tell(stream, type, {}) ? hearOne(stream) : std::nullopt;
}

}  // namespace

std::optional<SwayConnection> SwayConnection::ofSession() {
  const char* socket = ::getenv("SWAYSOCK");
  return socket ? at(socket) : std::nullopt;
}

std::optional<SwayConnection> SwayConnection::at(const std::string& socket) {
  auto questions = LocalStream::connectedTo(socket);
  auto events = LocalStream::connectedTo(socket);
  if (!questions || !events) return std::nullopt;
  return SwayConnection(std::move(*questions), std::move(*events));
}

bool SwayConnection::subscribe() const {
  constexpr std::string_view kEvents = R"(["window","workspace","output","barconfig_update"])";
  return tell(events_, Message::subscribe, kEvents) && hearOne(events_);
}

bool SwayConnection::hear() const {
  return hearOne(events_).has_value();
}

std::optional<WindowStack> SwayConnection::read() const {
  const auto tree = ask(questions_, Message::getTree);
  const auto outputs = tree ? ask(questions_, Message::getOutputs) : std::nullopt;
  return outputs ? swayStack(*tree, *outputs, ::getpid()) : std::nullopt;
}

void SwayConnection::hangUp() const {
  questions_.hangUp();
  events_.hangUp();
}

}  // namespace quillmere
