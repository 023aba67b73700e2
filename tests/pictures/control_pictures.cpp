// Draws every control of Qt's that the program styles, in its states, and the windows made of them, for people to look
// at.
//
//   control_pictures FOLDER [--dark] [--contrast] [--rtl] [--accent COLOUR] [--flat]
//
// --flat: as without a compositor. QT_SCALE_FACTOR gives them at other sizes.

#include <QtCore/QDir>
#include <QtGui/QPainter>
#include <QtGui/QStandardItemModel>
#include <QtWidgets/QApplication>
#include <QtWidgets/QCheckBox>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QFileDialog>
#include <QtWidgets/QGroupBox>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QListView>
#include <QtWidgets/QMenu>
#include <QtWidgets/QProgressBar>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QRadioButton>
#include <QtWidgets/QScrollBar>
#include <QtWidgets/QSpinBox>
#include <QtWidgets/QStyleOption>
#include <QtWidgets/QTabBar>
#include <QtWidgets/QToolTip>
#include <QtWidgets/QVBoxLayout>
#include <cstdio>

#include "PictureAppearance.h"
#include "controls/ActionButton.h"
#include "controls/Alert.h"
#include "controls/ApplicationAppearance.h"
#include "controls/Symbol.h"
#include "controls/Theme.h"
#include "fakes/ModelFixture.h"
#include "foundation/Localized.h"
#include "inbox/InboxWindow.h"
#include "settings/SettingsWindow.h"
#include "support/PrivateEnvironment.h"

namespace quillmere {
namespace {

/// A control drawn as if the pointer or the keyboard were at it.
template <typename Widget, typename Option>
class Posed final : public Widget {
 public:
  using Widget::Widget;
  QStyle::State added;

 protected:
  void initStyleOption(Option* option) const override {
    Widget::initStyleOption(option);
    option->state |= added;
    if constexpr (std::is_base_of_v<QStyleOptionComplex, Option>) {
      if (added.testFlag(QStyle::State_MouseOver)) option->activeSubControls = QStyle::SC_All;
    }
  }
};

struct Pose {
  const char* name;
  QStyle::State state;
  bool isEnabled = true;
};
const std::vector<Pose> kPoses{
    {"plain", {}, true},
    {"hovered", QStyle::State_MouseOver, true},
    {"pressed", QStyle::State_MouseOver | QStyle::State_Sunken, true},
    {"focused", QStyle::State_HasFocus | QStyle::State_KeyboardFocusChange, true},
    {"disabled", {}, false},
};

template <typename Widget, typename Option>
Posed<Widget, Option>* posed(const Pose& pose) {
  auto* widget = new Posed<Widget, Option>;
  widget->added = pose.state;
  widget->setEnabled(pose.isEnabled);
  return widget;
}

QWidget* column(const Pose& pose) {
  auto* pane = new QWidget;
  auto* rows = new QVBoxLayout(pane);
  rows->setSpacing(10);
  auto* title = new QCheckBox(QString::fromLatin1(pose.name));
  title->setChecked(true);
  rows->addWidget(title);
  auto* button = posed<QPushButton, QStyleOptionButton>(pose);
  button->setText(QStringLiteral("Push button"));
  rows->addWidget(button);
  auto* first = posed<QPushButton, QStyleOptionButton>(pose);
  first->setText(QStringLiteral("Default"));
  first->setDefault(true);
  rows->addWidget(first);
  for (const bool isOn : {false, true}) {
    auto* box = posed<QCheckBox, QStyleOptionButton>(pose);
    box->setText(QStringLiteral("Check box"));
    box->setChecked(isOn);
    rows->addWidget(box);
  }
  auto* half = posed<QCheckBox, QStyleOptionButton>(pose);
  half->setText(QStringLiteral("In between"));
  half->setCheckState(Qt::PartiallyChecked);
  rows->addWidget(half);
  for (const bool isOn : {false, true}) {
    auto* radio = posed<QRadioButton, QStyleOptionButton>(pose);
    radio->setAutoExclusive(false);
    radio->setText(QStringLiteral("Radio button"));
    radio->setChecked(isOn);
    rows->addWidget(radio);
  }
  auto* choice = posed<QComboBox, QStyleOptionComboBox>(pose);
  choice->addItems({QStringLiteral("The first choice"), QStringLiteral("Another")});
  rows->addWidget(choice);
  auto* number = posed<QSpinBox, QStyleOptionSpinBox>(pose);
  number->setValue(15);
  rows->addWidget(number);
  auto* field = posed<QLineEdit, QStyleOptionFrame>(pose);
  field->setText(QStringLiteral("A line of text"));
  rows->addWidget(field);
  auto* empty = posed<QLineEdit, QStyleOptionFrame>(pose);
  empty->setPlaceholderText(QStringLiteral("Placeholder"));
  rows->addWidget(empty);
  auto* bar = posed<QScrollBar, QStyleOptionSlider>(pose);
  bar->setOrientation(Qt::Horizontal);
  bar->setRange(0, 100);
  bar->setPageStep(60);
  bar->setValue(30);
  rows->addWidget(bar);
  auto* progress = new QProgressBar;
  progress->setEnabled(pose.isEnabled);
  progress->setValue(40);
  rows->addWidget(progress);
  for (const auto role :
       {ActionButton::Role::primary, ActionButton::Role::secondary, ActionButton::Role::destructive}) {
    auto* action = new ActionButton(role, QStringLiteral("clock"), QStringLiteral("Action"));
    action->setEnabled(pose.isEnabled);
    rows->addWidget(action);
  }
  return pane;
}

void controls(QWidget& sheet) {
  auto* row = new QHBoxLayout(&sheet);
  for (const Pose& pose : kPoses) row->addWidget(column(pose));
}

void views(QWidget& sheet) {
  auto* all = new QVBoxLayout(&sheet);
  auto* tabs = new QTabBar;
  tabs->setDocumentMode(true);
  for (const char* name : {"General", "Screenshots", "Popup", "Intelligence"}) tabs->addTab(QString::fromLatin1(name));
  tabs->setCurrentIndex(1);
  all->addWidget(tabs);
  auto* group = new QGroupBox(QStringLiteral("Folder"));
  auto* inner = new QVBoxLayout(group);
  inner->addWidget(new QCheckBox(QStringLiteral("In a group")));
  inner->addWidget(new QLineEdit(QStringLiteral("A field on the group's ground")));
  all->addWidget(group);
  auto* list = new QListView;
  auto* model = new QStandardItemModel(list);
  for (int i = 0; i < 30; ++i) model->appendRow(new QStandardItem(QStringLiteral("Row %1").arg(i)));
  model->item(2)->setCheckable(true);
  list->setModel(model);
  list->setCurrentIndex(model->index(1, 0));
  list->setFixedHeight(180);
  all->addWidget(list);
}

QMenu& menu() {
  static QMenu all;
  if (!all.isEmpty()) return all;
  all.addAction(QIcon(symbolPixmap(QStringLiteral("photo"), 16, Qt::gray, 1)), QStringLiteral("With an icon"));
  all.addAction(QStringLiteral("Chosen"))->setShortcut(QKeySequence(QStringLiteral("Ctrl+C")));
  all.addAction(QStringLiteral("With a shortcut"))->setShortcut(QKeySequence(QStringLiteral("Ctrl+Shift+V")));
  all.addAction(QStringLiteral("Disabled"))->setEnabled(false);
  all.addSeparator();
  auto* checked = all.addAction(QStringLiteral("Checked"));
  checked->setCheckable(true);
  checked->setChecked(true);
  all.addMenu(QStringLiteral("More"))->addAction(QStringLiteral("Further"));
  for (QAction* action : all.actions()) action->setShortcutVisibleInContextMenu(true);
  return all;
}

/// Over a busy ground, as over other windows.
QImage over(QWidget& widget) {
  const QPixmap shot = widget.grab();
  QImage picture(shot.size(), QImage::Format_RGB32);
  picture.setDevicePixelRatio(shot.devicePixelRatio());
  const bool isDark = Theme(QApplication::palette()).isDark;
  picture.fill(isDark ? QColor(0x4a5568) : QColor(0xa8c0d8));
  QPainter painter(&picture);
  if (!widget.mask().isEmpty()) painter.setClipRegion(widget.mask());
  painter.drawPixmap(0, 0, shot);
  return picture;
}

class Album {
 public:
  explicit Album(const QString& folder) : folder_(folder) { QDir().mkpath(folder); }
  bool isWhole() const { return isWhole_; }

  void add(const char* name, const QImage& picture) {
    isWhole_ &= picture.save(QDir(folder_).filePath(QString::fromLatin1(name) + QStringLiteral(".png")));
  }
  void addWindow(const char* name, QWidget& window) {
    window.show();
    settle();
    add(name, over(window));
    window.hide();
  }
  /// Of whatever such window is open.
  void addOpen(const char* name, const char* type) {
    settle();
    for (QWidget* window : QApplication::topLevelWidgets()) {
      if (!window->isVisible() || !window->inherits(type)) continue;
      add(name, over(*window));
      return;
    }
    std::fprintf(stderr, "no %s is open\n", type);
    isWhole_ = false;
  }
  static void settle() {
    for (int i = 0; i < 5; ++i) QCoreApplication::processEvents();
  }

 private:
  QString folder_;
  bool isWhole_ = true;
};

void drawPopups(Album& album) {
  QMenu& all = menu();
  all.popup(QPoint(100, 100));
  all.setActiveAction(all.actions()[1]);
  album.addOpen("menu", "QMenu");
  all.close();

  QComboBox choice;
  choice.addItems({QStringLiteral("The first choice"), QStringLiteral("The second"), QStringLiteral("Another one")});
  choice.setCurrentIndex(1);
  choice.show();
  choice.showPopup();
  album.addOpen("list-of-choices", "QComboBoxPrivateContainer");
  choice.hidePopup();

  QToolTip::showText(QPoint(200, 200), QStringLiteral("Keep this screenshot without a deletion timer"), &choice);
  album.addOpen("tool-tip", "QTipLabel");
  QToolTip::hideText();
}

void drawAlerts(Album& album) {
  Alert failure({.symbol = QStringLiteral("exclamationmark.triangle.fill"),
                 .ink = Ink::warning,
                 .heading = QStringLiteral("Couldn’t Move Screenshot"),
                 .message = QStringLiteral("A file already exists with that name. Choose a different name to avoid "
                                           "replacing it."),
                 .safe = QStringLiteral("OK"),
                 .action = {}},
                nullptr);
  album.addWindow("alert", failure);
  Alert question({.symbol = QStringLiteral("trash"),
                  .ink = Ink::danger,
                  .heading = QStringLiteral("Delete Screenshot?"),
                  .message = QStringLiteral("“Screenshot from 2026-11-21 09-41-07.png” will be deleted from its folder "
                                            "and removed from Quillmere. This can’t be undone."),
                  .safe = QStringLiteral("Cancel"),
                  .action = QStringLiteral("Delete"),
                  .isDestructive = true},
                 nullptr);
  album.addWindow("confirmation", question);
}

class ModelOfASession final : public testing::ModelFixture {
 public:
  using ModelFixture::model;
  ModelOfASession() { launchWatching(); }
  void TestBody() override {}
};

void drawWindows(Album& album) {
  ModelOfASession session;
  SettingsWindow settings(*session.model, {});
  settings.resize(560, 460);
  auto* tabs = settings.findChild<QTabWidget*>();
  const char* const names[]{"settings-general", "settings-screenshots", "settings-popup", "settings-intelligence"};
  for (int i = 0; i < tabs->count(); ++i) {
    tabs->setCurrentIndex(i);
    album.addWindow(names[i], settings);
  }
  QFileDialog files;
  files.setOption(QFileDialog::DontUseNativeDialog);
  files.setAcceptMode(QFileDialog::AcceptSave);
  files.resize(760, 460);
  album.addWindow("file-dialog", files);
}

}  // namespace
}  // namespace quillmere

int main(int argc, char** argv) {
  using namespace quillmere;
  const quillmere::testing::PrivateEnvironment environment;
  QApplication application(argc, argv);
  const QStringList arguments = QApplication::arguments();
  if (arguments.size() < 2) {
    std::fputs("control_pictures FOLDER [--dark] [--contrast] [--rtl] [--accent COLOUR] [--flat]\n", stderr);
    return 2;
  }
  ApplicationAppearance look;
  look.show(quillmere::testing::pictureAppearance(arguments));
  const bool isFlat = arguments.contains(QStringLiteral("--flat"));
  look.setCompositing([isFlat] { return !isFlat; });
  if (arguments.contains(QStringLiteral("--rtl"))) QApplication::setLayoutDirection(Qt::RightToLeft);

  Album album(arguments[1]);
  QWidget sheet, lists;
  controls(sheet);
  views(lists);
  lists.resize(420, 460);
  album.addWindow("controls", sheet);
  album.addWindow("views", lists);
  drawPopups(album);
  drawAlerts(album);
  drawWindows(album);
  return album.isWhole() ? 0 : 1;
}
