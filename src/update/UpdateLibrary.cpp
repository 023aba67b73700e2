#include "update/UpdateLibrary.h"

#include <QtCore/QLibrary>
#include <QtCore/QtDebug>

#include "foundation/FileStatus.h"
#include "update/TrustedPlace.h"

namespace quillmere {
namespace {

UpdateLibrary& self(void* context) {
  return *static_cast<UpdateLibrary*>(context);
}

QuillmereUpdateEntry entryOf(const FileURL& file) {
  QLibrary library(QString::fromStdString(file.path()));
  // Everything it needs is found at once or it is not used; its symbols are nobody else's.
  library.setLoadHints(QLibrary::ResolveAllSymbolsHint | QLibrary::PreventUnloadHint);
  if (!library.load()) {
    qWarning("Software update is off: %s", qUtf8Printable(library.errorString()));
    return nullptr;
  }
  return reinterpret_cast<QuillmereUpdateEntry>(library.resolve("quillmereUpdate"));
}

const QuillmereUpdateFunctions* functionsOf(const UpdateConfiguration& configuration) {
  if (!fileExists(configuration.library)) return nullptr;
  if (!isAsSafeAsTheProgram(configuration.library, configuration.program)) {
    qWarning("Software update is off: others can write to where its library is");
    return nullptr;
  }
  const QuillmereUpdateEntry entry = entryOf(configuration.library);
  const QuillmereUpdateFunctions* functions = entry ? entry(kQuillmereUpdateInterface) : nullptr;
  return functions && functions->interfaceNumber == kQuillmereUpdateInterface ? functions : nullptr;
}

}  // namespace

UpdateLibrary::UpdateLibrary(SoftwareUpdateModel& model, UserDefaults& defaults, Services services)
    : model_(model), defaults_(defaults), services_(std::move(services)), host_(makeHost()) {}

UpdateLibrary::~UpdateLibrary() {
  if (!updater_) return;
  letGoOfModel();
  functions_->stop(updater_);
}

void UpdateLibrary::letGoOfModel() {
  model_.checkForUpdatesAction = nullptr;
  model_.setChecksForUpdatesAutomaticallyAction = nullptr;
  model_.setCanCheckForUpdates(false);
}

QuillmereUpdateHost UpdateLibrary::makeHost() {
  return {
      .context = this,
      .setCanCheck = [](void* context, bool can) { self(context).model_.setCanCheckForUpdates(can); },
      .setChecksAutomatically = [](void* context, bool checks) { self(context).model_.setChecksAutomatically(checks); },
      .setInstalling = [](void* context, bool isInstalling) { self(context).model_.setInstallingUpdate(isInstalling); },
      .borrowActivation = [](void* context) { self(context).services_.borrowActivation(); },
      .repayActivation = [](void* context) { self(context).services_.repayActivation(); },
      .quit = [](void* context) { return self(context).services_.quit(); },
      .storedChecksAutomatically =
          [](void* context) { return self(context).defaults_.boolean(QLatin1String(kAutomaticKey)).value_or(true); },
      .storeChecksAutomatically =
          [](void* context, bool checks) { self(context).defaults_.set(QLatin1String(kAutomaticKey), checks); },
      .storedLastCheck =
          [](void* context) {
            bool isNumber = false;
            const auto text = self(context).defaults_.text(QLatin1String(kLastCheckKey)).value_or(QString());
            const double seconds = text.toDouble(&isNumber);
            return isNumber ? seconds : -1.0;
          },
      .storeLastCheck =
          [](void* context, double seconds) {
            self(context).defaults_.set(QLatin1String(kLastCheckKey), QString::number(seconds, 'f', 0));
          },
  };
}

bool UpdateLibrary::load(const std::optional<UpdateConfiguration>& configuration) {
  if (!configuration || updater_) return updater_ != nullptr;
  functions_ = functionsOf(*configuration);
  if (!functions_) return false;
  const FileURL& authority = configuration->authority;
  const QuillmereUpdateConfiguration given{
      .feed = configuration->feed.constData(),
      .key = reinterpret_cast<const unsigned char*>(configuration->key.constData()),
      .authority = authority.isEmpty() ? nullptr : authority.c_str(),
      .version = QUILLMERE_VERSION,
      .program = configuration->program.c_str(),
      .isSingleFile = configuration->isSingleFile,
  };
  // Before it begins: it tells at once whether it can check.
  model_.checkForUpdatesAction = [this] {
    if (updater_) functions_->check(updater_);
  };
  model_.setChecksForUpdatesAutomaticallyAction = [this](bool checks) {
    if (updater_) functions_->setChecksAutomatically(updater_, checks);
  };
  updater_ = functions_->start(&host_, &given);
  if (!updater_) letGoOfModel();
  return updater_ != nullptr;
}

}  // namespace quillmere
