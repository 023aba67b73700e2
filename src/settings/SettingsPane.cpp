#include "settings/SettingsPane.h"

#include <QtWidgets/QCheckBox>
#include <QtWidgets/QGroupBox>
#include <QtWidgets/QVBoxLayout>

#include "controls/ThemedLabel.h"
#include "settings/SymbolNote.h"

namespace quillmere {
namespace {

constexpr int kPadding = 18;
constexpr int kBetweenGroups = 14;
constexpr int kBetweenRows = 10;
constexpr int kBesideControls = 8;

}  // namespace

SettingsPane::SettingsPane(AppModel& model, QWidget* parent)
    : QWidget(parent), model_(model), column_(new QVBoxLayout(this)) {
  column_->setContentsMargins(kPadding, kPadding, kPadding, kPadding);
  column_->setSpacing(kBetweenGroups);
}

QVBoxLayout* SettingsPane::addGroup(const QString& title) {
  auto* group = new QGroupBox(title, this);
  auto* rows = new QVBoxLayout(group);
  rows->setSpacing(kBetweenRows);
  column_->addWidget(group);
  return rows;
}

QCheckBox* SettingsPane::addToggle(QVBoxLayout* to, const QString& text, std::function<void(bool isOn)> set) {
  auto* toggle = new QCheckBox(text, this);
  // By the person alone: what is shown of the model is not set once more.
  connect(toggle, &QCheckBox::clicked, this, [set = std::move(set)](bool isOn) { set(isOn); });
  to->addWidget(toggle);
  return toggle;
}

QLabel* SettingsPane::addFooter(QVBoxLayout* to, const QString& text) {
  auto* footer = new ThemedLabel(Ink::secondary, this, text);
  footer->setWordWrap(true);
  footer->setTextSize(0.92);
  to->addWidget(footer);
  return footer;
}

SymbolNote* SettingsPane::addNote(QVBoxLayout* to) {
  auto* note = new SymbolNote(this);
  to->addWidget(note);
  return note;
}

void SettingsPane::addRow(QVBoxLayout* to, QWidget* name, std::initializer_list<QWidget*> controls) {
  auto* row = new QHBoxLayout;
  row->setSpacing(kBesideControls);
  // No wider than its text, which may be of another direction than the row.
  row->addWidget(name);
  row->addStretch();
  for (QWidget* control : controls) row->addWidget(control);
  to->addLayout(row);
}

}  // namespace quillmere
