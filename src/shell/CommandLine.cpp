#include "shell/CommandLine.h"

#include <QtCore/QCommandLineParser>
#include <cstdio>

namespace quillmere::CommandLine {
namespace {

constexpr int kUnknownWindow = 1;
constexpr int kMisunderstood = 2;

/// As the requests of other processes name them.
const QStringList kWindows{QStringLiteral("inbox"), QStringLiteral("settings"), QStringLiteral("about"),
                           QStringLiteral("welcome")};

Answer complaint(const QString& text, int status = kMisunderstood) {
  return {QStringLiteral("quillmere: %1 Try: quillmere --help\n").arg(text), status};
}

/// The parser's own first line names the program by the application object, which is not there yet.
QString helpOf(const QCommandLineParser& parser) {
  const QString text = parser.helpText();
  return QStringLiteral("Usage: quillmere [options]\n") + text.sliced(text.indexOf(QLatin1Char('\n')) + 1);
}

}  // namespace

std::variant<Start, Answer> read(const QStringList& arguments) {
  const QCommandLineOption autostart(QStringLiteral("autostart"),
                                     QStringLiteral("Start quietly, as at login: the Inbox stays closed."));
  const QCommandLineOption show(QStringLiteral("show"),
                                QStringLiteral("Open a window: inbox, settings, about or welcome."),
                                QStringLiteral("window"));
  const QCommandLineOption review(QStringLiteral("review"),
                                  QStringLiteral("Go through the screenshots that wait, by keyboard."));
  const QCommandLineOption closeWindow(
      QStringLiteral("close-window"),
      QStringLiteral("Close the front window of the program that runs; it runs on. Without one nothing happens."));
  const QCommandLineOption help({QStringLiteral("h"), QStringLiteral("help")}, QStringLiteral("Show this text."));
  const QCommandLineOption version({QStringLiteral("v"), QStringLiteral("version")},
                                   QStringLiteral("Show the version."));
  // Written by session managers that start again what ran; Qt reads it.
  QCommandLineOption session(QStringLiteral("session"), QString(), QStringLiteral("id"));
  session.setFlags(QCommandLineOption::HiddenFromHelp);

  QCommandLineParser parser;
  // One dash or two: session managers write one.
  parser.setSingleDashWordOptionMode(QCommandLineParser::ParseAsLongOptions);
  parser.setApplicationDescription(
      QStringLiteral("Watches the folder for screenshots and asks what becomes of each one."));
  parser.addOptions({autostart, show, review, closeWindow, help, version, session});
  const bool isUnderstood = parser.parse(QStringList(QStringLiteral("quillmere")) + arguments);

  if (!isUnderstood) return complaint(parser.errorText());
  if (parser.isSet(help)) return Answer{helpOf(parser)};
  if (parser.isSet(version)) return Answer{QStringLiteral("Quillmere " QUILLMERE_VERSION "\n")};
  if (!parser.positionalArguments().isEmpty()) {
    return complaint(QStringLiteral("Unexpected argument '%1'.").arg(parser.positionalArguments().constFirst()));
  }
  Start start{.isLoginLaunch = parser.isSet(autostart), .action = {}, .isForRunning = parser.isSet(closeWindow)};
  if (parser.isSet(show)) {
    start.action = parser.value(show);
    if (!kWindows.contains(start.action)) {
      return complaint(QStringLiteral("Unknown window '%1'.").arg(start.action.simplified()), kUnknownWindow);
    }
  }
  QString given = parser.isSet(show) ? QStringLiteral("show") : QString();
  for (const QCommandLineOption& option : {review, closeWindow}) {
    if (!parser.isSet(option)) continue;
    const QString name = option.names().constFirst();
    if (!given.isEmpty()) return complaint(QStringLiteral("Both '--%1' and '--%2' are given.").arg(given, name));
    given = start.action = name;
  }
  return start;
}

std::variant<Start, Answer> read(int argc, char** argv) {
  QStringList arguments;
  for (int i = 1; i < argc; ++i) arguments << QString::fromLocal8Bit(argv[i]);
  return read(arguments);
}

int Answer::print() const {
  const QByteArray bytes = text.toLocal8Bit();
  std::fwrite(bytes.constData(), 1, static_cast<size_t>(bytes.size()), isComplaint() ? stderr : stdout);
  return status;
}

}  // namespace quillmere::CommandLine
