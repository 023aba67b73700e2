#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QProcess>
#include <QtCore/QRegularExpression>
#include <QtCore/QStandardPaths>
#include <QtWidgets/QApplication>
#include <algorithm>
#include <atomic>
#include <cstdio>
#include <ctime>
#include <map>
#include <stdexcept>

#include "Corpus.h"
#include "ErrorRate.h"
#include "formats/ImageOperations.h"
#include "recognition/TextRecognizer.h"

using namespace quillmere;
using corpus::Errors;
using corpus::Theme;

namespace {

struct Entry {
  QString name;
  QString group;
  int kind;
  Theme theme;
  int scale;
};
/// Of the kinds in the order widgets, pages, hard ones.
constexpr int kFirstPage = corpus::kWidgetKinds;
constexpr int kFirstHard = kFirstPage + corpus::kPageKinds;

/// Processor time, which a busy machine does not lengthen as it does the time on the clock.
double seconds(int who) {
  rusage usage{};
  ::getrusage(who, &usage);
  const auto count = [](const timeval& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * 1e-6;
  };
  return count(usage.ru_utime) + count(usage.ru_stime);
}

std::vector<Entry> entries() {
  std::vector<Entry> result;
  for (const Theme theme : corpus::kThemes) {
    for (const int scale : corpus::kScales) {
      for (int kind = 0; kind < corpus::kWidgetKinds + corpus::kPageKinds; ++kind) {
        const QString group = QString("%1 %2x").arg(corpus::name(theme)).arg(scale);
        result.push_back(
            {QString("%1-%2x-%3").arg(corpus::name(theme)).arg(scale).arg(kind), group, kind, theme, scale});
      }
    }
  }
  for (int kind = 0; kind < corpus::kHardKinds; ++kind) {
    const QString group = corpus::hardName(kind);
    for (const Theme theme : corpus::kThemes) {
      for (const int scale : corpus::kScales) {
        result.push_back({QString("hard-%1-%2-%3x").arg(group, corpus::name(theme)).arg(scale), group,
                          kFirstHard + kind, theme, scale});
      }
    }
  }
  return result;
}

void make(const QDir& folder, const QString& browser, unsigned seed) {
  const QStringList families{"DejaVu Sans", "Inter", "Cantarell", "DejaVu Serif"};
  unsigned number = 0;
  for (const Entry& entry : entries()) {
    ++number;
    if (QFile::exists(folder.filePath(entry.name + ".txt"))) continue;
    const corpus::Request request{entry.theme, entry.scale, static_cast<int>(10 + (number * 5 + seed) % 7),
                                  families[(number * 3 + seed) % 4], seed * 1000 + number};
    const corpus::Screen screen = entry.kind >= kFirstHard ? corpus::hardScreen(entry.kind - kFirstHard, request)
                                  : entry.kind >= kFirstPage
                                      ? corpus::pageScreen(entry.kind - kFirstPage, request, browser)
                                      : corpus::widgetScreen(entry.kind, request);
    screen.image.save(folder.filePath(entry.name + ".png"));
    QFile file(folder.filePath(entry.name + ".txt"));
    if (file.open(QFile::WriteOnly)) file.write(screen.truth.join('\n').toUtf8());
  }
}

QStringList readLines(const QString& path) {
  QFile file(path);
  if (!file.open(QFile::ReadOnly)) return {};
  return QString::fromUtf8(file.readAll()).split('\n');
}

struct Reading {
  Errors errors;
  double seconds = 0;
};

Reading byCommand(const QString& picture, const QStringList& truth) {
  QProcess process;
  QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
  environment.insert("OMP_THREAD_LIMIT", "1");
  process.setProcessEnvironment(environment);
  process.setStandardErrorFile(QProcess::nullDevice());
  const double before = seconds(RUSAGE_CHILDREN);
  process.start("tesseract", {picture, "stdout"});
  process.waitForFinished(-1);
  const double taken = seconds(RUSAGE_CHILDREN) - before;
  return {corpus::errors(truth, QString::fromUtf8(process.readAllStandardOutput()).remove('\f').split('\n')), taken};
}

Reading byRecognizer(TextRecognizer& recognizer, const QString& picture, const QStringList& truth,
                     const QString& output) {
  const std::atomic<bool> isCancelled = false;
  const double before = seconds(RUSAGE_SELF);
  const auto url = FileURL::fromPath(picture.toStdString());
  const auto image = ImageOperations::loadImage(url);
  const auto text = recognizer.recognizeText(image.value(), isCancelled);
  const double taken = seconds(RUSAGE_SELF) - before;
  QFile file(output);
  if (text && file.open(QFile::WriteOnly)) file.write(text->toUtf8());
  return {corpus::errors(truth, text.value_or(QString()).split('\n')), taken};
}

struct Sum {
  Errors ours, theirs;
  std::vector<double> ourSeconds, theirSeconds;
  void add(const Reading& our, const Reading& their) {
    ours.wrong += our.errors.wrong;
    ours.characters += our.errors.characters;
    theirs.wrong += their.errors.wrong;
    theirs.characters += their.errors.characters;
    ourSeconds.push_back(our.seconds);
    theirSeconds.push_back(their.seconds);
  }
};

double median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  return values.empty() ? 0 : values[values.size() / 2];
}

void print(const QString& title, const Sum& sum) {
  const double ours = median(sum.ourSeconds), theirs = median(sum.theirSeconds);
  std::printf("| %s | %zu | %.2f %% | %.2f %% | %.3f | %.0f ms | %.0f ms | %.2f |\n", qPrintable(title),
              sum.ours.characters, 100 * sum.ours.rate(), 100 * sum.theirs.rate(),
              sum.ours.rate() / std::max(sum.theirs.rate(), 1e-9), 1000 * ours, 1000 * theirs,
              ours / std::max(theirs, 1e-9));
}

}  // namespace

int main(int argc, char** argv) {
  ::setenv("QT_QPA_PLATFORM", "offscreen", 1);

  QApplication application(argc, argv);
  const QStringList arguments = application.arguments();
  if (arguments.size() < 2) {
    std::fprintf(
        stderr,
        "measure-text FOLDER [SEED] [--each]\n"
        "Measures text recognition against the command tesseract with its defaults and one thread. The screens are\n"
        "made in FOLDER if they are not there yet. What was recognised is left beside them.\n");
    return 2;
  }
  const QString browser = QStandardPaths::findExecutable("chromium");
  for (const auto& [program, package] :
       {std::pair(browser, "chromium"), std::pair(QStandardPaths::findExecutable("tesseract"), "tesseract-ocr")}) {
    if (program.isEmpty()) {
      std::fprintf(stderr, "The package %s is missing: apt-get install --no-install-recommends %s\n", package, package);
      return 1;
    }
  }
  const QDir folder(arguments[1]);
  folder.mkpath(".");
  try {
    make(folder, browser, arguments.size() > 2 ? arguments[2].toUInt() : 1);
  } catch (const std::runtime_error& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
  }
  TextRecognizer recognizer;
  Sum own, hard, total;
  std::map<QString, Sum> groups;
  for (const Entry& entry : entries()) {
    if (std::getenv("T_ONLY") && !entry.name.contains(QRegularExpression(std::getenv("T_ONLY")))) continue;
    const QString path = folder.absoluteFilePath(entry.name);
    const QStringList truth = readLines(path + ".txt");
    const Reading ours = byRecognizer(recognizer, path + ".png", truth, path + ".read");
    const Reading theirs = std::getenv("T_SKIP") ? Reading{} : byCommand(path + ".png", truth);
    if (arguments.contains("--each")) {
      std::fprintf(stderr, "%-26s %5zu  %6.2f  %6.2f   %5.0f %5.0f\n", qPrintable(entry.name), ours.errors.characters,
                   100 * ours.errors.rate(), 100 * theirs.errors.rate(), 1000 * ours.seconds, 1000 * theirs.seconds);
    }
    total.add(ours, theirs);
    (entry.kind >= kFirstHard ? hard : own).add(ours, theirs);
    groups[entry.group].add(ours, theirs);
  }
  std::printf(
      "| screens | characters | errors | command's errors | ratio | time | command's time | ratio "
      "|\n|---|---|---|---|---|---|---|---|\n");
  for (const auto& [title, sum] : groups) print(title, sum);
  print("all of widgets and pages", own);
  print("all of the hard kinds", hard);
  print("all", total);
  return 0;
}
