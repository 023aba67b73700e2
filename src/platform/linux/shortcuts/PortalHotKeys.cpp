#include "platform/linux/shortcuts/PortalHotKeys.h"

#include <QtDBus/QDBusArgument>
#include <QtDBus/QDBusObjectPath>
#include <QtDBus/QDBusVariant>
#include <utility>

#include "foundation/Localized.h"
#include "platform/linux/shortcuts/KeyCombination.h"
#include "platform/linux/shortcuts/PortalShortcut.h"

namespace quillmere {
namespace {

const QString kName = QStringLiteral("org.freedesktop.portal.Desktop");
const QString kPath = QStringLiteral("/org/freedesktop/portal/desktop");
const QString kShortcuts = QStringLiteral("org.freedesktop.portal.GlobalShortcuts");
const QString kRequest = QStringLiteral("org.freedesktop.portal.Request");
const QString kSession = QStringLiteral("org.freedesktop.portal.Session");
const QString kApplication = QStringLiteral("com.quillmere.app");

// Answers to requests: 0 is done, 1 is the person's no. A request that failed has no answer.
constexpr uint kDone = 0;
constexpr uint kDeclined = 1;
constexpr uint kFailed = 2;

}  // namespace

PortalHotKeys::PortalHotKeys(const QDBusConnection& bus, Executor& executor, Words words)
    : executor_(executor),
      words_(std::move(words)),
      busName_(bus.baseService().mid(1).replace(QLatin1Char('.'), QLatin1Char('_'))),
      portal_(bus, kName, {[this](BusService& portal) { find(portal); }, [this] { lose(); }}) {
  registerPortalShortcutTypes();
}

qint32 PortalHotKeys::installHandler(Handler handler) {
  handler_ = std::move(handler);
  return hotKeyDone;
}

void PortalHotKeys::removeHandler() {
  handler_ = nullptr;
}

// --- The portal comes and goes ---

/// Newer portals want to be told first who a program is that was not started in a sandbox; older ones don't know that.
void PortalHotKeys::find(BusService& portal) {
  running_ = &portal;
  declined_.clear();
  portal.call(
      kPath, QStringLiteral("org.freedesktop.host.portal.Registry"), QStringLiteral("Register"),
      {kApplication, QVariantMap()}, [this](const QVariantList&) { askForVersion(); }, [this] { askForVersion(); });
}

/// A portal has the interface only where the desktop has shortcuts for programs.
void PortalHotKeys::askForVersion() {
  running_->call(kPath, QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"),
                 {kShortcuts, QStringLiteral("version")}, [this](const QVariantList& arguments) {
                   if (arguments.value(0).value<QDBusVariant>().variant().toUInt() == 0) return;
                   running_->hear(kPath, kShortcuts, QStringLiteral("Activated"), [this](const QVariantList& told) {
                     if (told.value(0).value<QDBusObjectPath>().path() == session_) press(told.value(1).toString());
                   });
                   running_->hear(kPath, kShortcuts, QStringLiteral("ShortcutsChanged"),
                                  [this](const QVariantList& told) {
                                    const QString session = told.value(0).value<QDBusObjectPath>().path();
                                    if (session == session_) readTriggers(told.value(1));
                                  });
                   isAvailable_ = true;
                   bindSoon();
                   changed();
                 });
}

void PortalHotKeys::lose() {
  running_ = nullptr;
  session_.clear();
  ++attempt_;
  chosen_.clear();
  if (std::exchange(isAvailable_, false)) changed();
}

// --- What is registered ---

HotKeySystem::Answer PortalHotKeys::registerHotKey(const HotKeyShortcut& shortcut, HotKeyID key) {
  wanted_[++lastReference_] = {shortcut, key};
  bindSoon();
  return {hotKeyDone, lastReference_};
}

void PortalHotKeys::unregisterHotKey(Reference reference) {
  if (wanted_.erase(reference) > 0) bindSoon();
}

/// The keys that are wished for are part of the name: with others the desktop asks anew instead of keeping the old
/// ones.
QString PortalHotKeys::nameOf(const HotKeyShortcut& shortcut) const {
  return QStringLiteral("review ") + words_.trigger(shortcut);
}

/// A session is bound once, so that each change needs a new one; several changes of a turn are one.
void PortalHotKeys::bindSoon() {
  if (std::exchange(isBindingDue_, true)) return;
  executor_.post([self = lifetime_.weak(this)] {
    if (self) self->bindAnew();
  });
}

void PortalHotKeys::bindAnew() {
  isBindingDue_ = false;
  if (!isAvailable_) return;
  endSession();
  std::vector<quint32> refused;
  for (const auto& [reference, wanted] : wanted_) {
    if (declined_.contains(nameOf(wanted.shortcut))) refused.push_back(wanted.key.id);
  }
  // Given back, they are not among those of the next attempt.
  if (!refused.empty()) {
    for (const quint32 id : refused) refusedLater(id, kDeclined);
    return;
  }
  if (wanted_.empty()) return;
  const QString token = QStringLiteral("quillmere%1").arg(attempt_);
  request(QStringLiteral("CreateSession"), {}, {{QStringLiteral("session_handle_token"), token}},
          [this, attempt = attempt_](uint response, const QVariantMap& results) {
            // Told as a text, though it is a path; newer ones may mend that.
            const QVariant handle = results.value(QStringLiteral("session_handle"));
            const QString session =
                handle.canConvert<QDBusObjectPath>() ? handle.value<QDBusObjectPath>().path() : handle.toString();
            if (attempt != attempt_) {
              if (!session.isEmpty()) closeSession(session);
            } else if (response != kDone || session.isEmpty()) {
              refuseAll(kFailed);
            } else {
              bind(session);
            }
          });
}

void PortalHotKeys::bind(const QString& session) {
  session_ = session;
  running_->hear(session, kSession, QStringLiteral("Closed"), [this, session](const QVariantList&) {
    if (session != session_) return;
    session_.clear();
    refuseAll(kFailed);
  });
  PortalShortcuts shortcuts;
  for (const auto& [reference, wanted] : wanted_) {
    QVariantMap options{{QStringLiteral("description"), localized("Review Screenshot")}};
    if (const QString trigger = words_.trigger(wanted.shortcut); !trigger.isEmpty()) {
      options.insert(QStringLiteral("preferred_trigger"), trigger);
    }
    shortcuts.append({nameOf(wanted.shortcut), options});
  }
  request(QStringLiteral("BindShortcuts"),
          {QVariant::fromValue(QDBusObjectPath(session)), QVariant::fromValue(shortcuts), QString()}, {},
          [this, attempt = attempt_](uint response, const QVariantMap& results) {
            if (attempt != attempt_) return;
            if (response == kDone) return take(results);
            if (response == kDeclined) {
              for (const auto& [reference, wanted] : wanted_) declined_.insert(nameOf(wanted.shortcut));
            }
            refuseAll(static_cast<qint32>(response));
          });
}

void PortalHotKeys::request(const QString& method, QVariantList arguments, QVariantMap options,
                            const Answered& answered) {
  const QString token = QStringLiteral("quillmere_keys%1").arg(++requests_);
  options.insert(QStringLiteral("handle_token"), token);
  arguments << options;
  const auto isOpen = std::make_shared<bool>(true);
  const auto take = [isOpen, answered](const QVariantList& told) {
    if (std::exchange(*isOpen, false)) answered(told.value(0).toUInt(), qdbus_cast<QVariantMap>(told.value(1)));
  };
  // The answer may come before that of the call, and so is listened for first.
  const QString path = QStringLiteral("%1/request/%2/%3").arg(kPath, busName_, token);
  running_->hear(path, kRequest, QStringLiteral("Response"), take);
  running_->call(
      kPath, kShortcuts, method, arguments, [](const QVariantList&) {},
      [isOpen, answered] {
        if (std::exchange(*isOpen, false)) answered(kFailed, {});
      });
}

// --- What the desktop says ---

void PortalHotKeys::take(const QVariantMap& results) {
  const auto shortcuts = portalShortcuts(results.value(QStringLiteral("shortcuts")));
  std::vector<quint32> missing;
  std::vector<Reference> keyless;
  for (const auto& [reference, wanted] : wanted_) {
    const auto found = shortcuts.find(nameOf(wanted.shortcut));
    if (found == shortcuts.end()) {
      missing.push_back(wanted.key.id);
    } else if (found->second.isEmpty()) {
      keyless.push_back(reference);
    }
  }
  readTriggers(results.value(QStringLiteral("shortcuts")));
  for (const quint32 id : missing) refusedLater(id, kFailed);
  for (const Reference reference : keyless) leftWithoutKeys(reference);
}

void PortalHotKeys::readTriggers(const QVariant& told) {
  const auto shortcuts = portalShortcuts(told);
  QString chosen;
  for (const auto& [reference, wanted] : wanted_) {
    const auto found = shortcuts.find(nameOf(wanted.shortcut));
    if (found == shortcuts.end()) continue;
    if (!describesKeys(found->second, words_.symbols(wanted.shortcut))) chosen = found->second;
  }
  setChosen(chosen);
}

void PortalHotKeys::setChosen(const QString& chosen) {
  if (std::exchange(chosen_, chosen) != chosen) changed();
}

void PortalHotKeys::press(const QString& name) const {
  for (const auto& [reference, wanted] : wanted_) {
    if (nameOf(wanted.shortcut) != name || !handler_) continue;
    const HotKeyPress press{.key = wanted.key};
    handler_(&press);
    return;
  }
}

void PortalHotKeys::closeSession(const QString& session) {
  running_->call(session, kSession, QStringLiteral("Close"), {}, [](const QVariantList&) {});
}

void PortalHotKeys::endSession() {
  ++attempt_;
  if (const QString session = std::exchange(session_, QString()); !session.isEmpty()) closeSession(session);
  setChosen(QString());
}

void PortalHotKeys::refuseAll(qint32 status) {
  const auto refused = wanted_;
  for (const auto& [reference, wanted] : refused) refusedLater(wanted.key.id, status);
}

}  // namespace quillmere
