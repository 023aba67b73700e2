#pragma once

#include <QtWidgets/QComboBox>

#include "records/TemporaryDuration.h"

namespace quillmere {

/// The menu of retention times.
class DurationPicker final : public QComboBox {
 public:
  explicit DurationPicker(QWidget* parent);
  TemporaryDuration duration() const;
  void setDuration(TemporaryDuration duration);
  QSize sizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;
};

}  // namespace quillmere
