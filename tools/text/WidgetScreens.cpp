#include <QtGui/QPaintEngine>
#include <QtGui/QPainter>
#include <QtGui/QSyntaxHighlighter>
#include <QtWidgets/QApplication>
#include <QtWidgets/QCheckBox>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QFormLayout>
#include <QtWidgets/QGroupBox>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QHeaderView>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QListWidget>
#include <QtWidgets/QMenu>
#include <QtWidgets/QMenuBar>
#include <QtWidgets/QPlainTextEdit>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QRadioButton>
#include <QtWidgets/QScrollBar>
#include <QtWidgets/QStyleFactory>
#include <QtWidgets/QTabWidget>
#include <QtWidgets/QTableWidget>
#include <QtWidgets/QTreeWidget>
#include <QtWidgets/QVBoxLayout>
#include <algorithm>
#include <memory>

#include "Corpus.h"

namespace corpus {
namespace {

/// Draws nothing and keeps what text is drawn where.
class RecordingEngine : public QPaintEngine {
 public:
  explicit RecordingEngine(std::vector<Fragment>& fragments) : QPaintEngine(AllFeatures), fragments_(fragments) {}
  bool begin(QPaintDevice*) override { return true; }
  bool end() override { return true; }
  void updateState(const QPaintEngineState& changed) override { transform_ = changed.transform(); }
  void drawPixmap(const QRectF&, const QPixmap&, const QRectF&) override {}
  void drawPath(const QPainterPath&) override {}
  void drawPolygon(const QPointF*, int, PolygonDrawMode) override {}
  void drawTextItem(const QPointF& place, const QTextItem& item) override {
    const QRectF box(place.x(), place.y() - item.ascent(), item.width(), item.ascent() + item.descent());
    const QRectF drawn = transform_.mapRect(box);
    QRectF clip = transform_.mapRect(painter()->hasClipping() ? painter()->clipBoundingRect() : box);
    if (!systemClip().isEmpty()) clip &= QRectF(systemClip().boundingRect());
    if (clip.contains(drawn.center())) fragments_.push_back({drawn, item.text()});
  }
  Type type() const override { return User; }

 private:
  std::vector<Fragment>& fragments_;
  QTransform transform_;
};

class RecordingDevice : public QPaintDevice {
 public:
  explicit RecordingDevice(QSize size) : size_(size), engine_(fragments) {}
  QPaintEngine* paintEngine() const override { return &engine_; }
  std::vector<Fragment> fragments;

 protected:
  int metric(PaintDeviceMetric metric) const override {
    switch (metric) {
      case PdmWidth:
        return size_.width();
      case PdmHeight:
        return size_.height();
      case PdmDepth:
        return 32;
      case PdmNumColors:
        return 0;
      case PdmWidthMM:
        return size_.width() * 254 / 960;
      case PdmHeightMM:
        return size_.height() * 254 / 960;
      case PdmDpiX:
      case PdmDpiY:
      case PdmPhysicalDpiX:
      case PdmPhysicalDpiY:
        return 96;
      case PdmDevicePixelRatio:
        return 1;
      case PdmDevicePixelRatioScaled:
        return static_cast<int>(devicePixelRatioFScale());
      default:
        return 0;
    }
  }

 private:
  QSize size_;
  mutable RecordingEngine engine_;
};

QPalette palette(bool isDark, Words& words) {
  const QColor ground = isDark ? QColor::fromHsv(words.number(0, 359), 30, words.number(30, 60))
                               : QColor::fromHsv(words.number(0, 359), 8, words.number(232, 250));
  const QColor base = isDark ? ground.darker(130) : QColor(255, 255, 255);
  const QColor text = isDark ? QColor(words.number(205, 240), 220, 222) : QColor(words.number(10, 60), 35, 40);
  QPalette result(isDark ? ground.lighter(130) : ground, ground);
  for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) result.setColor(role, text);
  result.setColor(QPalette::Base, base);
  result.setColor(QPalette::AlternateBase, isDark ? base.lighter(140) : QColor(240, 242, 246));
  result.setColor(QPalette::Highlight, QColor::fromHsv(words.number(190, 260), 180, isDark ? 190 : 170));
  result.setColor(QPalette::HighlightedText, Qt::white);
  result.setColor(QPalette::PlaceholderText, isDark ? QColor(140, 140, 145) : QColor(125, 125, 130));
  return result;
}

class Syntax : public QSyntaxHighlighter {
 public:
  Syntax(QTextDocument* document, bool isDark) : QSyntaxHighlighter(document), isDark_(isDark) {}
  void highlightBlock(const QString& text) override {
    const auto paint = [&](const char* pattern, const char* dark, const char* light) {
      auto matches = QRegularExpression(pattern).globalMatch(text);
      while (matches.hasNext()) {
        const auto match = matches.next();
        setFormat(static_cast<int>(match.capturedStart()), static_cast<int>(match.capturedLength()),
                  QColor(isDark_ ? dark : light));
      }
    };
    paint("\\b(if|for|return|const|auto|int|warning|info)\\b", "#c586c0", "#af00db");
    paint("\\b\\d+\\b", "#b5cea8", "#098658");
    paint("\\b\\w+(?=\\()", "#dcdcaa", "#795e26");
    paint("\"[^\"]*\"", "#ce9178", "#a31515");
    paint("//.*", "#6a9955", "#008000");
    paint("^\\S+@\\S+\\$", "#4ec96a", "#1a7f37");
    paint("\\berror\\b", "#f48771", "#cc0000");
  }

 private:
  bool isDark_;
};

QWidget* form(const Request&, Words& words, const QPalette& inner) {
  auto* window = new QWidget;
  auto* column = new QVBoxLayout(window);
  for (int box = 0; box < 2; ++box) {
    auto* group = new QGroupBox(words.phrase(2));
    if (box == 1) {
      group->setPalette(inner);
      group->setAutoFillBackground(true);
    }
    auto* layout = new QFormLayout(group);
    for (int i = 0; i < 5; ++i) {
      auto* field = new QLineEdit(i % 3 == 0 ? words.person() : i % 3 == 1 ? words.address() : words.amount());
      field->setMinimumWidth(380);
      field->setCursorPosition(0);
      layout->addRow(words.phrase(words.number(1, 3)) + ':', field);
    }
    auto* choice = new QComboBox;
    choice->addItem(words.phrase(3));
    layout->addRow(words.phrase(1) + ':', choice);
    auto* check = new QCheckBox(words.phrase(4));
    check->setChecked(words.chance(0.5));
    layout->addRow(check);
    layout->addRow(new QRadioButton(words.phrase(3)));
    column->addWidget(group);
  }
  auto* note = new QLabel(words.paragraph(3));
  note->setWordWrap(true);
  column->addWidget(note);
  auto* buttons = new QHBoxLayout;
  buttons->addStretch();
  for (const char* title : {"Cancel", "Apply", "Save Changes"}) buttons->addWidget(new QPushButton(title));
  column->addLayout(buttons);
  return window;
}

QWidget* sidebarAndList(const Request& request, Words& words, const QPalette& inner) {
  auto* window = new QWidget;
  auto* row = new QHBoxLayout(window);
  auto* side = new QListWidget;
  side->setPalette(inner);
  side->setFixedWidth(15 * request.textPixels);
  for (int i = 0; i < 14; ++i) side->addItem(words.phrase(words.number(1, 2)));
  side->setCurrentRow(words.number(0, 8));
  row->addWidget(side);
  auto* list = new QListWidget;
  list->setAlternatingRowColors(true);
  for (int i = 0; i < 20; ++i) list->addItem(words.chance(0.5) ? words.fileName() : words.phrase(words.number(2, 5)));
  list->setCurrentRow(words.number(2, 9));
  row->addWidget(list);
  window->resize(60 * request.textPixels, 34 * request.textPixels);
  return window;
}

QWidget* table(const Request& request, Words& words, const QPalette& inner) {
  auto* window = new QTabWidget;
  auto* grid = new QTableWidget(18, 5);
  grid->setHorizontalHeaderLabels({"Name", "Owner", "Modified", "Size", "Amount"});
  grid->horizontalHeader()->setPalette(inner);
  grid->verticalHeader()->setVisible(words.chance(0.5));
  grid->setAlternatingRowColors(words.chance(0.5));
  grid->setShowGrid(words.chance(0.6));
  for (int i = 0; i < 18; ++i) {
    const QString cells[] = {words.fileName(), words.person(), words.date(), words.size(), words.amount()};
    for (int j = 0; j < 5; ++j) {
      auto* cell = new QTableWidgetItem(cells[j]);
      if (j > 2) cell->setTextAlignment(Qt::AlignRight | Qt::AlignVCenter);
      grid->setItem(i, j, cell);
    }
  }
  grid->resizeColumnsToContents();
  grid->verticalHeader()->setDefaultSectionSize(2 * request.textPixels);
  grid->selectRow(words.number(0, 10));
  grid->scrollToTop();
  window->addTab(grid, words.phrase(2));
  window->addTab(new QWidget, words.phrase(1));
  window->addTab(new QWidget, words.phrase(2));
  window->resize(68 * request.textPixels, 44 * request.textPixels);
  return window;
}

QPlainTextEdit* textView(const Request& request, const QStringList& lines, const QPalette& colors) {
  auto* view = new QPlainTextEdit;
  QFont font("DejaVu Sans Mono");
  font.setPixelSize(request.textPixels);
  view->setFont(font);
  view->setPalette(colors);
  view->setLineWrapMode(QPlainTextEdit::NoWrap);
  view->setPlainText(lines.join('\n'));
  new Syntax(view->document(), colors.color(QPalette::Base).lightness() < 128);
  return view;
}

QWidget* editor(const Request& request, Words& words, const QPalette& inner) {
  auto* window = new QWidget;
  auto* column = new QVBoxLayout(window);
  auto* bar = new QMenuBar;
  for (const char* title : {"File", "Edit", "Selection", "View", "Terminal", "Help"}) bar->addMenu(title);
  column->setMenuBar(bar);
  auto* row = new QHBoxLayout;
  auto* tree = new QTreeWidget;
  tree->setHeaderLabel("Explorer");
  tree->setFixedWidth(16 * request.textPixels);
  for (int i = 0; i < 4; ++i) {
    auto* folder = new QTreeWidgetItem(tree, {words.word()});
    for (int j = 0; j < 3; ++j) new QTreeWidgetItem(folder, {words.word() + ".cpp"});
    folder->setExpanded(true);
  }
  row->addWidget(tree);
  row->addWidget(textView(request, words.code(24), inner));
  column->addLayout(row);
  column->addWidget(
      new QLabel(QString("Ln %1, Col %2    Spaces: 4    UTF-8").arg(words.number(1, 400)).arg(words.number(1, 80))));
  window->resize(68 * request.textPixels, 42 * request.textPixels);
  return window;
}

QWidget* terminal(const Request& request, Words& words, const QPalette& inner) {
  auto* window = new QWidget;
  auto* column = new QVBoxLayout(window);
  auto* title = new QLabel(words.name().toLower() + "@" + words.word() + ": ~/" + words.word());
  title->setAlignment(Qt::AlignCenter);
  column->addWidget(title);
  column->addWidget(textView(request, words.terminal(26), inner));
  window->resize(60 * request.textPixels, 42 * request.textPixels);
  return window;
}

QWidget* menus(const Request& request, Words& words, const QPalette& inner) {
  auto* window = new QWidget;
  auto* column = new QVBoxLayout(window);
  auto* bar = new QMenuBar;
  for (const char* title : {"File", "Edit", "Insert", "Format", "Tools", "Window"}) bar->addMenu(title);
  column->setMenuBar(bar);
  auto* row = new QHBoxLayout;
  for (int m = 0; m < 3; ++m) {
    auto* menu = new QMenu(window);
    menu->setPalette(m == 1 ? inner : window->palette());
    menu->setWindowFlags(Qt::Widget);
    for (int i = 0; i < 9; ++i) {
      QAction* action = menu->addAction(words.phrase(words.number(1, 3)));
      if (words.chance(0.6))
        action->setShortcut(QKeySequence(QString("Ctrl+%1").arg(QChar('A' + words.number(0, 25)))));
      if (words.chance(0.2)) action->setEnabled(false);
      if (words.chance(0.25)) menu->addSeparator();
      if (i == 3) menu->setActiveAction(action);
    }
    row->addWidget(menu);
    menu->setMinimumWidth(menu->sizeHint().width() + 6 * request.textPixels);
    menu->show();
  }
  column->addLayout(row);
  auto* label = new QLabel(words.paragraph(2));
  label->setWordWrap(true);
  column->addWidget(label);
  column->addStretch();
  window->resize(58 * request.textPixels, 32 * request.textPixels);
  return window;
}

}  // namespace

Screen widgetScreen(int kind, const Request& request) {
  Words words(request.seed);
  QApplication::setStyle(QStyleFactory::create(words.chance(0.65) ? "Fusion" : "Windows"));
  QFont font(request.family);
  font.setPixelSize(request.textPixels);
  QApplication::setFont(font);
  const bool isDark = request.theme == Theme::dark || (request.theme == Theme::mixed && words.chance(0.4));
  const QPalette outer = palette(isDark, words);
  const QPalette inner = request.theme == Theme::mixed ? palette(!isDark, words) : outer;
  QApplication::setPalette(outer);
  using Make = QWidget* (*)(const Request&, Words&, const QPalette&);
  constexpr Make kMake[kWidgetKinds] = {form, sidebarAndList, table, editor, terminal, menus};
  const std::unique_ptr<QWidget> window(kMake[kind](request, words, inner));
  window->setAttribute(Qt::WA_DontShowOnScreen);
  window->show();
  QApplication::processEvents();
  const QSize size = window->size();
  Screen screen;
  screen.image = QImage(size * request.scale, QImage::Format_RGB32);
  screen.image.setDevicePixelRatio(request.scale);
  screen.image.fill(outer.color(QPalette::Window));
  window->render(&screen.image);
  screen.image.setDevicePixelRatio(1);
  RecordingDevice device(size);
  window->render(&device);
  screen.truth = lines(std::move(device.fragments));
  return screen;
}

}  // namespace corpus
