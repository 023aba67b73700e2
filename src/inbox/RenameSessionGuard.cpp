#include "inbox/RenameSessionGuard.h"

#include <QtCore/QEvent>
#include <QtWidgets/QWidget>

namespace quillmere {

RenameSubject RenameSubject::of(const InboxPresentation& presentation) {
  const auto& session = *presentation.renameSession;
  const AppModel& model = presentation.model();
  const ScreenshotItem* item = session ? model.items().find(session->id) : nullptr;
  if (!item) return {};
  return {item->url.displayStem(), item->url, !model.unavailableItemIDs->contains(item->id)};
}

RenameSessionGuard::RenameSessionGuard(InboxPresentation& presentation, QWidget& window) : presentation_(presentation) {
  window.installEventFilter(this);
  sessions_ = presentation.changed.connect([this](const InboxChange& change) {
    if (change.field == InboxField::renameSession) compare();
  });
  records_ = presentation.model().changed.connect([this](const ModelChange& change) {
    if (change.field == ModelField::items || change.field == ModelField::unavailableItemIDs) compare();
  });
}

void RenameSessionGuard::compare() {
  const auto& session = *presentation_.renameSession;
  if (!session) return;
  RenameSubject now = RenameSubject::of(presentation_);
  if (session->token != token_) {
    token_ = session->token;
    subject_ = std::move(now);
  } else if (now != subject_) {
    presentation_.cancelRename();
  }
}

bool RenameSessionGuard::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::WindowDeactivate) presentation_.cancelRename();
  return QObject::eventFilter(watched, event);
}

}  // namespace quillmere
