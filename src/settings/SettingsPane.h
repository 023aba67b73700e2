#pragma once

#include <QtWidgets/QWidget>
#include <functional>

#include "model/AppModel.h"

class QCheckBox;
class QLabel;
class QVBoxLayout;

namespace quillmere {

class SymbolNote;

/// One page of the Settings: a column of controls, some of them in groups, with what they say below them.
class SettingsPane : public QWidget {
 public:
  SettingsPane(AppModel& model, QWidget* parent);

  /// Whether a control shows the field, and so has to follow it.
  virtual bool shows(ModelField field) const = 0;
  /// Shows what is set now.
  virtual void refresh() = 0;
  /// It comes to the front, or the person comes back to it from another program.
  virtual void appear() {}

 protected:
  AppModel& model() const { return model_; }
  QVBoxLayout& column() const { return *column_; }
  /// A titled group at the end of the column.
  QVBoxLayout* addGroup(const QString& title);
  QCheckBox* addToggle(QVBoxLayout* to, const QString& text, std::function<void(bool isOn)> set);
  /// A text in small letters about what stands above it.
  QLabel* addFooter(QVBoxLayout* to, const QString& text = {});
  /// A line about the state of what stands above it, with a symbol.
  SymbolNote* addNote(QVBoxLayout* to);
  /// A name at the leading edge and its controls at the trailing one.
  void addRow(QVBoxLayout* to, QWidget* name, std::initializer_list<QWidget*> controls);

 private:
  AppModel& model_;
  QVBoxLayout* column_;
};

}  // namespace quillmere
