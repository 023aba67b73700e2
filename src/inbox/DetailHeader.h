#pragma once

#include <QtWidgets/QWidget>

#include "inbox/DetailNotes.h"
#include "inbox/InboxPresentation.h"

namespace quillmere {

class ActionButton;
class DetailMetadata;
class ScreenshotNameEditor;
enum class ScreenshotCommand;

/// A screenshot's name, what is known of it, and what is decided about it.
class DetailHeader final : public QWidget {
 public:
  DetailHeader(AppModel& model, InboxPresentation& presentation, QWidget* parent);
  void show(const ScreenshotItem& item, const DetailState& state);
  ScreenshotNameEditor& name() const { return *name_; }

 private:
  ActionButton* makeButton(ScreenshotCommand command);
  void perform(ScreenshotCommand command);

  AppModel& model_;
  InboxPresentation& presentation_;
  UUID id_;
  ScreenshotNameEditor* name_;
  DetailMetadata* metadata_;
  ActionButton* keep_;
  ActionButton* move_;
  ActionButton* trash_;
};

}  // namespace quillmere
