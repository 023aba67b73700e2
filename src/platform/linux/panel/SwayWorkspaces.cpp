#include "platform/linux/panel/SwayWorkspaces.h"

#include <QtCore/QDeadlineTimer>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtNetwork/QLocalSocket>
#include <cstring>

namespace quillmere::SwayWorkspaces {
namespace {

constexpr QByteArrayView kMagic("i3-ipc");
constexpr uint32_t kGetWorkspaces = 1;
constexpr qsizetype kHeader = 14;  // the magic, the length and the kind
constexpr uint32_t kLongestAnswer = 1 << 20;
/// The popup does not wait for a compositor that is busy.
constexpr int kLongestWaitMilliseconds = 20;

uint32_t lengthIn(const QByteArray& header) {
  uint32_t length = 0;
  std::memcpy(&length, header.constData() + kMagic.size(), sizeof length);
  return length;
}

}  // namespace

std::vector<QRect> visible(const QByteArray& list) {
  std::vector<QRect> places;
  const QJsonArray all = QJsonDocument::fromJson(list).array();
  for (const auto& value : all) {
    const QJsonObject rect = value[QLatin1String("rect")].toObject();
    const QRect place(rect[QLatin1String("x")].toInt(), rect[QLatin1String("y")].toInt(),
                      rect[QLatin1String("width")].toInt(), rect[QLatin1String("height")].toInt());
    if (value[QLatin1String("visible")].toBool() && !place.isEmpty()) places.push_back(place);
  }
  return places;
}

QRect within(const QRect& screen, const std::vector<QRect>& workspaces) {
  for (const QRect& place : workspaces) {
    if (screen.contains(place.center())) return screen & place;
  }
  return screen;
}

std::vector<QRect> ask() {
  const QString path = qEnvironmentVariable("SWAYSOCK");
  if (path.isEmpty()) return {};
  QDeadlineTimer deadline(kLongestWaitMilliseconds);
  const auto left = [&deadline] { return static_cast<int>(deadline.remainingTime()); };
  QLocalSocket socket;
  socket.connectToServer(path);
  if (!socket.waitForConnected(left())) return {};
  QByteArray question = kMagic.toByteArray();
  for (const uint32_t number : {0U, kGetWorkspaces}) {
    question.append(reinterpret_cast<const char*>(&number), sizeof number);
  }
  socket.write(question);
  QByteArray answer;
  while (answer.size() < kHeader || answer.size() < kHeader + lengthIn(answer)) {
    if (!socket.waitForReadyRead(left())) return {};
    answer += socket.readAll();
    if (answer.size() >= kHeader && (!answer.startsWith(kMagic) || lengthIn(answer) > kLongestAnswer)) return {};
  }
  return visible(answer.mid(kHeader, lengthIn(answer)));
}

}  // namespace quillmere::SwayWorkspaces
