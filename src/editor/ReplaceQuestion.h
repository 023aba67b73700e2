#pragma once

#include <QtCore/QPointer>
#include <functional>

#include "controls/Alert.h"

namespace quillmere {

/// Asks over a crop editor's sheet whether to put the crop in the place of its file.
class ReplaceQuestion {
 public:
  ReplaceQuestion(QString fileName, QWidget* sheet);

  /// It has gone by then.
  std::function<void(bool isConfirmed)> onAnswer;
  /// What is asked no longer goes without an answer.
  void setAsked(bool isAsked);
  /// Null while nothing is asked.
  Alert* alert() const { return alert_; }

 private:
  AlertContent content() const;
  void ask();
  void takeBack();

  QString fileName_;
  QWidget* sheet_;
  QPointer<Alert> alert_;
};

}  // namespace quillmere
