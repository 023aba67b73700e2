#pragma once

#include <QtWidgets/QPushButton>
#include <memory>

class QTextLayout;

namespace quillmere {

/// A sentence in which a name is a link. All of it is the button, and its lines break as a text's do.
class ShowOriginalButton final : public QPushButton {
 public:
  explicit ShowOriginalButton(QWidget* parent);
  /// The screenshot that another one was cropped from, by its name without extension.
  void setOriginal(const QString& name);

  QSize sizeHint() const override;
  QSize minimumSizeHint() const override;
  bool hasHeightForWidth() const override { return true; }
  int heightForWidth(int width) const override;

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  std::unique_ptr<QTextLayout> laidOut(int width) const;
  QString sentence_;
  qsizetype nameStart_ = 0;
  qsizetype nameLength_ = 0;
};

}  // namespace quillmere
