#include "update/library/Updater.h"

#include <QtCore/QStandardPaths>
#include <QtDBus/QDBusConnection>

#include "update/library/PackageInstaller.h"
#include "update/library/Relaunch.h"
#include "update/library/SingleFileInstaller.h"

namespace quillmere {
namespace {

Date present() {
  return Date::fromDateTime(QDateTime::currentDateTimeUtc());
}

std::unique_ptr<UpdateInstaller> installerFor(const QuillmereUpdateConfiguration& given, Executor& executor) {
  const FileURL program = FileURL::fromPath(given.program);
  if (!given.isSingleFile) {
    return std::make_unique<PackageInstaller>(executor, program, [] { return QDBusConnection::systemBus(); });
  }
  return std::make_unique<SingleFileInstaller>(executor, singleFileOf(program, qgetenv("APPIMAGE"), qgetenv("APPDIR")));
}

}  // namespace

std::unique_ptr<Updater> Updater::make(const QuillmereUpdateHost& host, const QuillmereUpdateConfiguration& given,
                                       Executor& executor) {
  const auto version = VersionNumber::read(QString::fromLatin1(given.version));
  const QUrl feed = QUrl::fromEncoded(given.feed, QUrl::StrictMode);
  if (!version || !feed.isValid() || feed.scheme() != QLatin1String("https")) return nullptr;
  // Without one that can be read nobody would be believed, and each check would fail.
  if (given.authority && QSslCertificate::fromPath(QString::fromUtf8(given.authority)).isEmpty()) return nullptr;
  if (!QSslSocket::supportsSsl()) return nullptr;
  const QString cache = QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation);
  UpdateSession::Program program{
      .version = *version,
      .feed = feed,
      .maker = FeedSignature(
          QByteArray(reinterpret_cast<const char*>(given.key), static_cast<qsizetype>(FeedSignature::kKeyBytes))),
      .packages = FileURL::fromPath(cache).appending("Quillmere/updates"),
  };
  return std::unique_ptr<Updater>(new Updater(host, std::move(program), given, executor));
}

Updater::Updater(const QuillmereUpdateHost& host, UpdateSession::Program program,
                 const QuillmereUpdateConfiguration& given, Executor& executor)
    : host_(host),
      transport_(executor, QString::fromUtf8(given.authority)),
      installer_(installerFor(given, executor)),
      windows_(executor),
      session_(std::move(program), makeWorld(executor)),
      schedule_(executor, &present, makeMemory(), [this] { checkBySchedule(); }) {
  // A second check would only show the window of the first, which is why it can be asked for at any time.
  host_.setCanCheck(host_.context, true);
  setChecksAutomatically(host_.storedChecksAutomatically(host_.context));
}

Updater::~Updater() = default;

UpdateSession::World Updater::makeWorld(Executor& executor) {
  return {.executor = executor,
          .transport = transport_,
          .installer = *installer_,
          .windows = windows_,
          .now = &present,
          .willShow = [this] { host_.borrowActivation(host_.context); },
          .willFinish = [this] { host_.repayActivation(host_.context); },
          .setInstalling = [this](bool isInstalling) { host_.setInstalling(host_.context, isInstalling); },
          .relaunch =
              [this](const FileURL& program) {
                const auto start = startWhenThisEnds(program);
                if (!start) return false;
                if (host_.quit(host_.context)) return true;
                start->callOff();
                return false;
              }};
}

UpdateSchedule::Memory Updater::makeMemory() {
  return {.lastCheck = [this]() -> std::optional<Date> {
            const double seconds = host_.storedLastCheck(host_.context);
            return seconds < 0 ? std::nullopt : std::optional(Date{seconds});
          },
          .storeLastCheck = [this](Date date) { host_.storeLastCheck(host_.context, date.seconds); }};
}

void Updater::check() {
  schedule_.noteCheck();
  session_.check(UpdateSession::By::person);
}

void Updater::checkBySchedule() {
  if (session_.state() != UpdateSession::State::idle) return;
  schedule_.noteCheck();
  session_.check(UpdateSession::By::schedule);
}

void Updater::setChecksAutomatically(bool checks) {
  if (host_.storedChecksAutomatically(host_.context) != checks) host_.storeChecksAutomatically(host_.context, checks);
  schedule_.setOn(checks);
  host_.setChecksAutomatically(host_.context, checks);
}

}  // namespace quillmere
