#pragma once

#include <QtWidgets/QWidget>

#include "inbox/InboxPresentation.h"

namespace quillmere {

class ActionButton;
enum class ScreenshotCommand;

/// What can be made of a screenshot's picture.
class DetailActions final : public QWidget {
 public:
  DetailActions(AppModel& model, InboxPresentation& presentation, QWidget* parent);
  void show(const UUID& id);

 private:
  struct Row {
    ScreenshotCommand command;
    ActionButton* button;
  };
  AppModel& model_;
  InboxPresentation& presentation_;
  UUID id_;
  std::vector<Row> rows_;
};

}  // namespace quillmere
