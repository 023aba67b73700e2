#pragma once

#include <QtTest/QTest>
#include <QtWidgets/QApplication>
#include <QtWidgets/QCheckBox>
#include <QtWidgets/QLabel>
#include <QtWidgets/QPushButton>
#include <stdexcept>

#include "fakes/ModelFixture.h"
#include "settings/SettingsServices.h"

namespace quillmere::testing {

/// A model that watches, and one pane or window of the Settings, whose controls are found as a person finds them.
class SettingsFixture : public ModelFixture {
 protected:
  SettingsFixture() { launchWatching(); }
  ~SettingsFixture() override { shown.reset(); }

  /// Shows it. Panes are told what the window would tell them.
  template <typename Pane>
  Pane& showPane(std::unique_ptr<Pane> made) {
    Pane& pane = *made;
    shown = std::move(made);
    pane.refresh();
    following = model->changed.connect([&pane](const ModelChange& change) {
      if (pane.shows(change.field)) pane.refresh();
    });
    shown->show();
    EXPECT_TRUE(QTest::qWaitForWindowExposed(shown.get()));
    return pane;
  }

  template <typename Control>
  Control& find(const QString& name) const {
    for (auto* control : shown->findChildren<Control*>()) {
      if (nameOf(*control) == name) return *control;
    }
    throw std::logic_error(name.toStdString());
  }
  QCheckBox& box(const char* text) const { return find<QCheckBox>(QString::fromUtf8(text)); }
  QPushButton& button(const char* text) const { return find<QPushButton>(QString::fromUtf8(text)); }
  bool isShown(const QWidget& control) const { return control.isVisibleTo(shown.get()); }
  bool says(const QString& text) const {
    for (const auto* label : shown->findChildren<QLabel*>()) {
      if (label->text() == text && isShown(*label)) return true;
    }
    return false;
  }
  bool says(const char* text) const { return says(QString::fromUtf8(text)); }

  struct Toggle {
    const char* text;
    std::function<bool()> isOn;
    std::function<void(bool)> set;
  };
  /// Each writes at once what it shows, and shows what was written elsewhere.
  void expectToWriteAndFollow(const std::vector<Toggle>& toggles) const {
    for (const Toggle& toggle : toggles) {
      QCheckBox& control = box(toggle.text);
      const bool before = toggle.isOn();
      EXPECT_EQ(control.isChecked(), before) << toggle.text;
      control.click();
      EXPECT_EQ(toggle.isOn(), !before) << toggle.text;
      toggle.set(before);
      EXPECT_EQ(control.isChecked(), before) << toggle.text;
    }
  }

  std::unique_ptr<QWidget> shown;
  Connection following;

 private:
  static QString nameOf(const QWidget& control) {
    const auto* pressed = qobject_cast<const QAbstractButton*>(&control);
    return pressed && control.accessibleName().isEmpty() ? pressed->text() : control.accessibleName();
  }
};

}  // namespace quillmere::testing
