#pragma once

#include <QtCore/QPointer>
#include <QtWidgets/QWidget>
#include <functional>

#include "inbox/InboxPresentation.h"

class QLabel;

namespace quillmere {

class NameField;

/// A screenshot's name and, while it is being renamed, the field for it in exactly the same place. There is room for
/// the field's edge around the name: NameField::kBeside and kAbove.
class ScreenshotNameEditor final : public QWidget {
 public:
  enum class Lines { one, all };
  /// One line is shortened in its middle: its end, too, tells names apart.
  ScreenshotNameEditor(InboxPresentation& presentation, Lines lines, QWidget* parent);

  /// Of so many times the font's size.
  void setTextSize(qreal factor, QFont::Weight weight);
  void show(const ScreenshotItem& item);
  /// Where it is not, a session that began in another place is left to that place.
  void setEditable(bool isEditable);

  /// The name was double-clicked.
  std::function<void()> onRename;

  const QLabel& label() const { return *label_; }
  /// While it edits.
  NameField* field() const { return field_; }

 protected:
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void changeEvent(QEvent* event) override;
  void hideEvent(QHideEvent* event) override;

 private:
  using Session = InboxPresentation::RenameSession;
  void follow();
  void begin(const Session& session);
  void end();
  void cancel();
  void followFont();
  void followDirection();
  void showName();
  void placeField();

  InboxPresentation& presentation_;
  Lines lines_;
  QLabel* label_;
  NameField* field_ = nullptr;
  QLabel* extension_;  ///< behind the field: it stays as it is
  UUID id_;
  QString name_;
  qreal textSize_ = 1;
  QFont::Weight weight_ = QFont::Normal;
  bool isEditable_ = true;
  UUID token_;                ///< of the session that the field is of
  QPointer<QWidget> before_;  ///< what had the keyboard
  Connection changes_;
};

}  // namespace quillmere
