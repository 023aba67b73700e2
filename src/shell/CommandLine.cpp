#include "shell/CommandLine.h"

#include <QtCore/QCommandLineParser>
#include <cstdio>

namespace quillmere::CommandLine {
namespace {

constexpr int kMisunderstood = 2;

Answer complaint(const QString& text) {
  return {QStringLiteral("quillmere: %1 Try: quillmere --help\n").arg(text), true};
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
  parser.addOptions({autostart, help, version, session});
  const bool isUnderstood = parser.parse(QStringList(QStringLiteral("quillmere")) + arguments);

  if (!isUnderstood) return complaint(parser.errorText());
  if (parser.isSet(help)) return Answer{helpOf(parser)};
  if (parser.isSet(version)) return Answer{QStringLiteral("Quillmere " QUILLMERE_VERSION "\n")};
  if (!parser.positionalArguments().isEmpty()) {
    return complaint(QStringLiteral("Unexpected argument '%1'.").arg(parser.positionalArguments().constFirst()));
  }
  return Start{.isLoginLaunch = parser.isSet(autostart)};
}

std::variant<Start, Answer> read(int argc, char** argv) {
  QStringList arguments;
  for (int i = 1; i < argc; ++i) arguments << QString::fromLocal8Bit(argv[i]);
  return read(arguments);
}

int Answer::print() const {
  const QByteArray bytes = text.toLocal8Bit();
  std::fwrite(bytes.constData(), 1, static_cast<size_t>(bytes.size()), isComplaint ? stderr : stdout);
  return isComplaint ? kMisunderstood : EXIT_SUCCESS;
}

}  // namespace quillmere::CommandLine
