#include <QtCore/QLocale>

#include "Corpus.h"

namespace corpus {
namespace {

const QStringList kWords = QString(
                               "account action address archive balance battery before between border branch browser "
                               "budget building calendar camera "
                               "change channel checkout client cloud column comment compare concert connect context "
                               "control copy cover credit current "
                               "customer daily dashboard default delivery department describe design device digital "
                               "discount document download driver "
                               "each early editor email energy engine error evening every example export failed "
                               "feature field figure file filter "
                               "final finance first flight folder follow format forward friend garden general group "
                               "growth guide handle health height "
                               "history holiday hotel image import index inside invoice island item journey keyboard "
                               "kitchen language large latest "
                               "layer learn length letter level library light limit link local machine manager market "
                               "master measure meeting member "
                               "memory message method minute missing mobile model module month morning mountain "
                               "network never notice number offer "
                               "office online option order other outside owner package page panel paper partner "
                               "password payment people percent "
                               "period person phone picture place plain planet player point policy popular present "
                               "preview price print private "
                               "process product profile program project public quality question quick ready reason "
                               "receipt recent record release "
                               "remove reply report request reset result return review river sample save schedule "
                               "science screen search second "
                               "section select sender series server service session settings share shipping short "
                               "signal simple single size small "
                               "software sorry source space standard status storage store street string student "
                               "subject summer support system table "
                               "target team template ticket title today together total touch train travel tunnel "
                               "update upload usage user value "
                               "version video view visit warning water weather website week weight window winter "
                               "without wonder world writer yellow "
                               "your zone")
                               .split(' ');
const QStringList kNames = QString(
                               "Alice Benjamin Carla David Elena Felix Greta Hassan Ingrid Jonas Katya Liam Maria Noah "
                               "Olivia Pablo Quentin Rosa "
                               "Samuel Tessa Umar Vera Walter Xenia Yusuf Zoe")
                               .split(' ');
const QStringList kFamilies = QString(
                                  "Anderson Becker Costa Dubois Eriksen Fischer Garcia Hoffman Ivanov Jensen Keller "
                                  "Lindqvist Moreau Novak Okafor "
                                  "Petrov Quinn Rossi Schmidt Tanaka Ulrich Vargas Weber Young Zhang")
                                  .split(' ');
const QStringList kMonths = QString("Jan Feb Mar Apr May Jun Jul Aug Sep Oct Nov Dec").split(' ');
const QStringList kExtensions = QString("png pdf txt docx cpp py html csv jpg zip json mp4").split(' ');
const QStringList kJoints = QString("the a of in to and for with on from by is").split(' ');

}  // namespace

int Words::number(int low, int high) {
  return low + static_cast<int>(random_() % static_cast<unsigned>(high - low + 1));
}
bool Words::chance(double probability) {
  return random_() % 1000 < static_cast<unsigned>(probability * 1000);
}
const QString& Words::pick(const QStringList& list) {
  return list[number(0, static_cast<int>(list.size()) - 1)];
}
QString Words::word() {
  return pick(kWords);
}
QString Words::name() {
  return pick(kNames);
}
QString Words::person() {
  return name() + ' ' + pick(kFamilies);
}
QString Words::phrase(int words) {
  QStringList parts;
  for (int i = 0; i < words; ++i) parts += word();
  parts[0][0] = parts[0][0].toUpper();
  return parts.join(' ');
}
QString Words::sentence() {
  QStringList parts;
  const int count = number(5, 12);
  for (int i = 0; i < count; ++i) {
    if (chance(0.35)) parts += pick(kJoints);
    parts += chance(0.06) ? name() : chance(0.05) ? QString::number(number(2, 4000)) : word();
    if (chance(0.08) && i + 1 < count) parts.last() += ',';
  }
  parts[0][0] = parts[0][0].toUpper();
  return parts.join(' ') + (chance(0.1) ? '?' : chance(0.08) ? '!' : '.');
}
QString Words::paragraph(int sentences) {
  QStringList parts;
  for (int i = 0; i < sentences; ++i) parts += sentence();
  return parts.join(' ');
}
QString Words::date() {
  if (chance(0.3)) {
    return QString("%1-%2-%3")
        .arg(number(2019, 2026))
        .arg(number(1, 12), 2, 10, QChar('0'))
        .arg(number(1, 28), 2, 10, QChar('0'));
  }
  const QString day = pick(kMonths) + ' ' + QString::number(number(1, 28));
  return chance(0.5) ? day + ", " + QString::number(number(2019, 2026))
                     : day + QString(" %1:%2").arg(number(1, 23)).arg(number(0, 59), 2, 10, QChar('0'));
}
QString Words::size() {
  return QString("%1.%2 %3").arg(number(1, 940)).arg(number(0, 9)).arg(pick({"KB", "MB", "GB"}));
}
QString Words::amount() {
  return QString("%1%2.%3")
      .arg(pick({"$", "", ""}), QLocale::c().toString(number(3, 25000)))
      .arg(number(0, 99), 2, 10, QChar('0'));
}
QString Words::fileName() {
  const QString joint = pick({"-", "_", " "});
  return word() + joint + word() + (chance(0.4) ? joint + QString::number(number(1, 2026)) : QString()) + '.' +
         pick(kExtensions);
}
QString Words::address() {
  switch (number(0, 2)) {
    case 0:
      return name().toLower() + '.' + pick(kFamilies).toLower() + '@' + word() + ".org";
    case 1:
      return "https://" + word() + '.' + word() + ".com/" + word();
    default:
      return "/home/" + name().toLower() + '/' + word() + '/' + fileName().replace(' ', '_');
  }
}
QStringList Words::code(int count) {
  QStringList result;
  int depth = 0;
  while (result.size() < count) {
    const QString indent(depth * 4, ' ');
    switch (number(0, 7)) {
      case 0:
        if (depth > 2) continue;
        result += indent + QString("if (%1 > %2) {").arg(word()).arg(number(0, 99));
        ++depth;
        break;
      case 1:
        if (depth > 2) continue;
        result += indent + QString("for (int i = 0; i < %1; ++i) {").arg(word());
        ++depth;
        break;
      case 2:
        if (!depth) continue;
        --depth;
        result += QString(depth * 4, ' ') + "}";
        break;
      case 3:
        result += indent + "// " + phrase(number(3, 6)).toLower();
        break;
      case 4:
        result +=
            indent +
            QString("const auto %1 = %2_%3(\"%4\", %5);").arg(word(), word(), word(), phrase(2)).arg(number(1, 512));
        break;
      case 5:
        result += indent + QString("return %1.%2[%3];").arg(word(), word()).arg(number(0, 9));
        break;
      case 6:
        result += indent + QString("std::string %1 = \"%2\";").arg(word(), fileName());
        break;
      default:
        result += indent + QString("%1->%2 += %3 * %4;").arg(word(), word(), word()).arg(number(2, 64));
    }
  }
  return result;
}
QStringList Words::terminal(int count) {
  QStringList result;
  const QString prompt = name().toLower() + '@' + word() + ":~/" + word() + "$ ";
  while (result.size() < count) {
    switch (number(0, 4)) {
      case 0:
        result +=
            prompt + pick({"ls -la", "git status", "make test", "cat README.md", "grep -rn error src", "cd ../build"});
        break;
      case 1:
        result += QString("-rw-r--r-- 1 %1 users %2 %3 %4")
                      .arg(name().toLower())
                      .arg(number(100, 99999))
                      .arg(date(), fileName().replace(' ', '-'));
        break;
      case 2:
        result += QString("[%1/%2] Building %3/%4.o").arg(number(1, 90)).arg(number(91, 200)).arg(word(), word());
        break;
      case 3:
        result += pick({"error: ", "warning: ", "info: "}) + phrase(number(3, 7)).toLower();
        break;
      default:
        result += QString("On branch %1, %2 files changed").arg(word()).arg(number(2, 80));
    }
  }
  return result;
}

}  // namespace corpus
