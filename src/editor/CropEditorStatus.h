#pragma once

#include <QtCore/QStringList>
#include <QtWidgets/QWidget>

namespace quillmere {

class ThemedLabel;

/// What a crop editor has to say for now: what went wrong, what was done, and what is to be known of the selection.
///
/// There is always room for a line, and what room was once taken stays taken as long as the width does: the picture
/// above gives way once and does not move up and down with the texts.
class CropEditorStatus final : public QWidget {
 public:
  explicit CropEditorStatus(QWidget* parent);

  struct Content {
    QString error;
    QString message;
    QStringList notes;
  };
  void show(const Content& content);

 protected:
  void resizeEvent(QResizeEvent* event) override;

 private:
  void keepRoom();

  ThemedLabel* error_;
  ThemedLabel* message_;
  ThemedLabel* notes_;
  int room_ = 0;  ///< that was taken once
};

}  // namespace quillmere
