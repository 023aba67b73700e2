#include "platform/linux/passing/PassedWindowStates.h"

#include <QtCore/QByteArray>
#include <QtCore/QDataStream>
#include <QtCore/QIODevice>

namespace quillmere::PassedWindowStates {
namespace {

using Window = WindowStack::Window;

constexpr auto kVersion = QDataStream::Qt_6_4;
/// More is nothing that this program wrote.
constexpr uint32_t kMostStates = 4096;
constexpr uint32_t kMostOfOne = 4096;

void write(QDataStream& out, const WindowStack& state) {
  out << state.since.seconds << state.root << state.scale << QByteArray::fromStdString(state.manager) << state.active
      << state.desktop << state.isPartial;
  out << static_cast<quint32>(state.monitors.size());
  for (const QRect& monitor : state.monitors) out << monitor;
  out << static_cast<quint32>(state.windows.size());
  for (const Window& window : state.windows) {
    out << window.id << static_cast<quint8>(window.type) << window.decoratesItself << window.frame << window.client
        << window.outer;
  }
}

template <typename Item, typename Read>
bool readAll(QDataStream& in, std::vector<Item>& items, uint32_t most, Read read) {
  quint32 count = 0;
  in >> count;
  if (count > most) return false;
  for (quint32 i = 0; i < count && in.status() == QDataStream::Ok; ++i) read(items.emplace_back());
  return in.status() == QDataStream::Ok;
}

bool read(QDataStream& in, WindowStack& state) {
  QByteArray manager;
  in >> state.since.seconds >> state.root >> state.scale >> manager >> state.active >> state.desktop >> state.isPartial;
  state.manager = manager.toStdString();
  if (!readAll(in, state.monitors, kMostOfOne, [&](QRect& monitor) { in >> monitor; })) return false;
  return readAll(in, state.windows, kMostOfOne, [&](Window& window) {
    quint8 type = 0;
    in >> window.id >> type >> window.decoratesItself >> window.frame >> window.client >> window.outer;
    if (type > static_cast<quint8>(Window::Type::cover)) in.setStatus(QDataStream::ReadCorruptData);
    window.type = static_cast<Window::Type>(type);
  });
}

}  // namespace

std::string coded(const Question& question) {
  QByteArray bytes;
  QDataStream out(&bytes, QIODevice::WriteOnly);
  out.setVersion(kVersion);
  out << question.closedAt.seconds << static_cast<quint32>(question.states.size());
  for (const WindowStack& state : question.states) write(out, state);
  return bytes.toStdString();
}

std::optional<Question> decoded(std::string_view bytes) {
  const auto all = QByteArray::fromRawData(bytes.data(), static_cast<qsizetype>(bytes.size()));
  QDataStream in(all);
  in.setVersion(kVersion);
  Question question;
  in >> question.closedAt.seconds;
  const bool isRead = readAll(in, question.states, kMostStates, [&](WindowStack& state) {
    if (!read(in, state)) in.setStatus(QDataStream::ReadCorruptData);
  });
  return isRead && in.atEnd() ? std::optional(question) : std::nullopt;
}

}  // namespace quillmere::PassedWindowStates
