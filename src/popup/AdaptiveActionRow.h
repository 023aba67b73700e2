#pragma once

#include <QtWidgets/QLayout>
#include <memory>
#include <vector>

namespace quillmere {

/// Buttons side by side, or below each other at full width where their texts do not fit.
class AdaptiveActionRow final : public QLayout {
 public:
  enum class Distribution {
    equalWidths,         ///< all as wide as each other, or as the texts allow
    leadingAndTrailing,  ///< the first at the leading edge, the last at the trailing one
  };
  static constexpr int kSpacing = 8;

  explicit AdaptiveActionRow(Distribution distribution) : distribution_(distribution) {}
  ~AdaptiveActionRow() override;

  void addItem(QLayoutItem* item) override;
  int count() const override { return static_cast<int>(items_.size()); }
  QLayoutItem* itemAt(int index) const override;
  QLayoutItem* takeAt(int index) override;
  QSize sizeHint() const override;
  QSize minimumSize() const override;
  bool hasHeightForWidth() const override { return true; }
  int heightForWidth(int width) const override;
  void setGeometry(const QRect& rect) override;

 private:
  /// The widths of neighbours, in order; empty where they do not fit side by side.
  std::vector<int> widths(size_t first, size_t count, int available) const;
  /// The widths in each line, from the top: one line where all fit, else two columns below the first item where that
  /// leaves one over, else a line for each.
  std::vector<std::vector<int>> lines(int available) const;
  int heightOfLine(size_t first, size_t count) const;

  Distribution distribution_;
  std::vector<std::unique_ptr<QLayoutItem>> items_;
};

}  // namespace quillmere
