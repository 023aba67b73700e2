// A program that has nothing but the updater: what it is told it prints, a line each, and lines that it reads are what
// a person does. Its windows are the library's own.

#include <unistd.h>
#include <QtCore/QSocketNotifier>
#include <QtCore/QTextStream>
#include <QtWidgets/QApplication>
#include <QtWidgets/QDialog>
#include <QtWidgets/QLabel>

#include "update/UpdateLibrary.h"

using namespace quillmere;

namespace {

void say(const QString& line) {
  QTextStream(stdout) << line << Qt::endl;
}

QDialog* shownDialog() {
  for (QWidget* widget : QApplication::topLevelWidgets()) {
    auto* dialog = qobject_cast<QDialog*>(widget);
    if (dialog && dialog->isVisible()) return dialog;
  }
  return nullptr;
}

QString described() {
  const QDialog* dialog = shownDialog();
  if (!dialog) return QStringLiteral("window none");
  QStringList texts;
  for (const QLabel* label : dialog->findChildren<QLabel*>()) {
    if (!label->text().isEmpty()) texts << label->text().remove(QChar(0x200B));
  }
  return QStringLiteral("window ") + texts.join(QStringLiteral(" | "));
}

}  // namespace

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  QApplication::setQuitOnLastWindowClosed(false);
  const FileURL program = FileURL::fromPath(QApplication::applicationFilePath());
  UserDefaults defaults(QString::fromStdString(program.parent().appending("settings.json").path()));
  SoftwareUpdateModel model;
  UpdateLibrary library(model, defaults,
                        {.borrowActivation = [] { say(QStringLiteral("borrow")); },
                         .repayActivation = [] { say(QStringLiteral("repay")); },
                         .quit =
                             [&model] {
                               const bool isInstalling = model.isInstallingUpdate();
                               say(isInstalling ? QStringLiteral("quit for an update") : QStringLiteral("quit"));
                               QApplication::exit(0);
                               return true;
                             }});
  const bool isLoaded = library.load(UpdateConfiguration::ofProgram(program));
  say(isLoaded && model.canCheckForUpdates() ? QStringLiteral("can check") : QStringLiteral("cannot check"));

  QByteArray input;
  QSocketNotifier reading(STDIN_FILENO, QSocketNotifier::Read);
  QObject::connect(&reading, &QSocketNotifier::activated, &application, [&] {
    char buffer[256];
    const auto count = ::read(STDIN_FILENO, buffer, sizeof(buffer));
    if (count <= 0) return QApplication::exit(0);
    input.append(buffer, static_cast<qsizetype>(count));
    for (qsizetype end = input.indexOf('\n'); end >= 0; end = input.indexOf('\n')) {
      const QByteArray line = input.left(end);
      input.remove(0, end + 1);
      if (line == "check") model.checkForUpdates();
      if (line == "window") say(described());
      if (line == "accept" && shownDialog()) shownDialog()->accept();
      if (line == "reject" && shownDialog()) shownDialog()->reject();
    }
  });
  return QApplication::exec();
}
