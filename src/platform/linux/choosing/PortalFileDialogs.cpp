#include "platform/linux/choosing/PortalFileDialogs.h"

#include <QtCore/QTimer>
#include <QtDBus/QDBusArgument>
#include <QtDBus/QDBusObjectPath>
#include <QtDBus/QDBusVariant>

#include "platform/linux/choosing/PortalOptions.h"

namespace quillmere {
namespace {

const QString kName = QStringLiteral("org.freedesktop.portal.Desktop");
const QString kPath = QStringLiteral("/org/freedesktop/portal/desktop");
const QString kFileChooser = QStringLiteral("org.freedesktop.portal.FileChooser");
const QString kRequest = QStringLiteral("org.freedesktop.portal.Request");
const QString kProperties = QStringLiteral("org.freedesktop.DBus.Properties");
/// From this version on folders can be chosen.
constexpr uint kVersionWithFolders = 3;

}  // namespace

/// One dialog, from the question for the portal's version to its answer.
class PortalFileDialogs::Request final : public std::enable_shared_from_this<Request> {
 public:
  Request(PortalFileDialogs& dialogs, FileDialogRequest request, std::function<void(const FileDialogEnd&)> ended)
      : dialogs_(dialogs), request_(std::move(request)), ended_(std::move(ended)) {}

  void begin() {
    const auto weak = weak_from_this();
    QObject::connect(&patience_, &QTimer::timeout, [weak] {
      if (const auto self = weak.lock()) self->end({});
    });
    patience_.setSingleShot(true);
    patience_.start(dialogs_.patience_);
    dialogs_.running_->call(
        kPath, kProperties, QStringLiteral("Get"), {kFileChooser, QStringLiteral("version")},
        [weak](const QVariantList& arguments) {
          const auto self = weak.lock();
          if (self) self->ask(arguments.value(0).value<QDBusVariant>().variant().toUInt());
        },
        [weak] {
          if (const auto self = weak.lock()) self->end({});
        });
  }

  void end(const FileDialogEnd& end) {
    if (!ended_) return;
    close();
    const auto ended = std::exchange(ended_, nullptr);
    ended(end);
  }

  /// Nobody waits any more.
  void abandon() {
    ended_ = nullptr;
    close();
  }

 private:
  void ask(uint version) {
    if (!ended_ || !patience_.isActive()) return;  // too late
    patience_.stop();
    const bool isFolder = request_.kind == FileDialogRequest::Kind::folder;
    if (version < (isFolder ? kVersionWithFolders : 1)) return end({});
    const QString token = QStringLiteral("quillmere%1").arg(++dialogs_.count_);
    // The answer may come before that of the call, and so is listened for first.
    hear(QStringLiteral("%1/request/%2/%3").arg(kPath, dialogs_.busName_, token));
    const auto weak = weak_from_this();
    dialogs_.running_->call(
        kPath, kFileChooser, isFolder ? QStringLiteral("OpenFile") : QStringLiteral("SaveFile"),
        {portalWindow(request_.owner), request_.title, portalOptions(request_, token)},
        [weak](const QVariantList& arguments) {
          const auto self = weak.lock();
          const QString handle = arguments.value(0).value<QDBusObjectPath>().path();
          // Portals older than 0.9 take a path of their own.
          if (self && self->ended_ && handle != self->handle_) self->hear(handle);
        },
        [weak] {
          if (const auto self = weak.lock()) self->end({});
        });
  }

  void hear(const QString& handle) {
    handle_ = handle;
    const auto weak = weak_from_this();
    dialogs_.running_->hear(handle, kRequest, QStringLiteral("Response"), [weak](const QVariantList& arguments) {
      if (const auto self = weak.lock()) self->take(arguments);
    });
  }

  void take(const QVariantList& arguments) {
    handle_.clear();  // it is closed
    if (arguments.value(0).toUInt() != 0) return end({FileDialogEnd::Kind::cancelled, {}});
    const auto results = qdbus_cast<QVariantMap>(arguments.value(1));
    const QStringList chosen = results.value(QStringLiteral("uris")).toStringList();
    const auto file = FileURL::fromCoded(chosen.value(0).toUtf8().toStdString());
    if (!file) return end({FileDialogEnd::Kind::cancelled, {}});
    const auto weak = weak_from_this();
    dialogs_.documents_.resolve(file->standardized(), [weak](const FileURL& real) {
      if (const auto self = weak.lock()) self->end({FileDialogEnd::Kind::chosen, real});
    });
  }

  void close() {
    patience_.stop();
    if (handle_.isEmpty() || !dialogs_.running_) return;
    dialogs_.running_->call(std::exchange(handle_, {}), kRequest, QStringLiteral("Close"), {},
                            [](const QVariantList&) {});
  }

  PortalFileDialogs& dialogs_;
  FileDialogRequest request_;
  std::function<void(const FileDialogEnd&)> ended_;
  QString handle_;  ///< the portal's object for the open dialog
  QTimer patience_;
};

PortalFileDialogs::PortalFileDialogs(const QDBusConnection& bus, std::chrono::milliseconds patience)
    : busName_(bus.baseService().mid(1).replace(QLatin1Char('.'), QLatin1Char('_'))),
      patience_(patience),
      documents_(bus),
      portal_(bus, kName, {[this](BusService& portal) { running_ = &portal; }, [this] { lose(); }}) {
  registerPortalTypes();
}

PortalFileDialogs::~PortalFileDialogs() = default;

void PortalFileDialogs::lose() {
  running_ = nullptr;
  for (const auto& request : std::exchange(requests_, {})) {
    if (const auto open = request.lock()) open->end({});
  }
}

std::unique_ptr<DesktopFileDialogs::Dialog> PortalFileDialogs::open(const FileDialogRequest& request,
                                                                    std::function<void(const FileDialogEnd&)> ended) {
  struct Open final : Dialog {
    explicit Open(std::shared_ptr<Request> made) : request(std::move(made)) {}
    ~Open() override { request->abandon(); }
    Open(const Open&) = delete;
    Open& operator=(const Open&) = delete;
    std::shared_ptr<Request> request;
  };
  if (!running_) return nullptr;
  std::erase_if(requests_, [](const auto& known) { return known.expired(); });
  auto made = std::make_shared<Request>(*this, request, std::move(ended));
  requests_.push_back(made);
  made->begin();
  return std::make_unique<Open>(std::move(made));
}

}  // namespace quillmere
