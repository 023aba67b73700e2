#pragma once

#include <QtWidgets/QWidget>
#include <functional>
#include <optional>

namespace quillmere {

class ActionButton;
class ThemedLabel;

/// Below the picture of the Quick Look window: the file's name, what size the picture has and how large it is shown,
/// and buttons for that.
class QuickLookFooter final : public QWidget {
 public:
  explicit QuickLookFooter(QWidget* parent);

  void setName(const QString& name);
  /// Of the picture, in pixels; none while it is unknown.
  void setPictureSize(std::optional<QSize> size);
  /// 1 is real size; none without a picture.
  void setScale(std::optional<qreal> scale);
  void setOffersOpening(bool offers);
  std::function<void()> onFit;
  std::function<void()> onRealSize;
  std::function<void()> onOpenElsewhere;

 protected:
  void resizeEvent(QResizeEvent* event) override;
  void paintEvent(QPaintEvent* event) override;

 private:
  ActionButton* makeButton(const QString& symbol, const QString& name, std::function<void()> QuickLookFooter::*action);
  void elideName();

  QString fullName_;
  ThemedLabel* name_;
  ThemedLabel* size_;
  ThemedLabel* scale_;
  ActionButton* fit_;
  ActionButton* realSize_;
  ActionButton* open_;
};

/// As people read it: "2560 × 1440".
QString pictureSizeText(QSize pixels);

}  // namespace quillmere
