#pragma once

#include <QtWidgets/QLayout>
#include <memory>
#include <vector>

namespace quillmere {

/// Things side by side, each as wide as it likes to be, that go on in a further line where there is no more room.
class WrappingRow final : public QLayout {
 public:
  /// `alignment`: of each line, leading, in the middle or trailing. Justified, the last of the things stands at the
  /// trailing edge and the others lead.
  explicit WrappingRow(int spacing, Qt::Alignment alignment = Qt::AlignLeading);
  /// Between the lines; as much as between things otherwise.
  void setLineSpacing(int spacing) { lineSpacing_ = spacing; }
  ~WrappingRow() override;

  void addItem(QLayoutItem* item) override;
  int count() const override { return static_cast<int>(items_.size()); }
  QLayoutItem* itemAt(int index) const override;
  QLayoutItem* takeAt(int index) override;
  QSize sizeHint() const override;
  QSize minimumSize() const override;
  Qt::Orientations expandingDirections() const override { return {}; }
  bool hasHeightForWidth() const override { return true; }
  int heightForWidth(int width) const override;
  void setGeometry(const QRect& rect) override;

 private:
  struct Line {
    std::vector<QLayoutItem*> items;
    int width = 0;
    int height = 0;
  };
  static QSize sizeOf(QLayoutItem& item, int available);
  std::vector<Line> lines(int available) const;
  /// Where this thing stands of a line that has got as far as `x`, in a row of this width.
  int placeOf(const QLayoutItem& item, int x, int width, int available) const;
  int startOf(const Line& line, int available) const;

  Qt::Alignment alignment_;
  int lineSpacing_;
  std::vector<std::unique_ptr<QLayoutItem>> items_;
};

}  // namespace quillmere
