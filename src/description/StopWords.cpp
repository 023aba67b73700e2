#include "description/StopWords.h"

#include <QtCore/QSet>
#include <QtCore/QStringList>

namespace quillmere {
namespace {

constexpr const char* kWords =
    "about above after again alert apps application article audio background banner before black blank block blue "
    "board browser build button calendar camera cancel capture card cart chart chat check checkout clock cloud code "
    "color column comment compiler confirm console contact content conversation copy could create dark dashboard "
    "data date decide delete design desktop detail details dialog document documents does download draft each edit "
    "editor else email empty entry error event every export failed failure feed file files filter folder font footer "
    "form forms from game general graph green grid group header help here home icon image images inbox info input "
    "install into invoice item items just keep label landing large later layout light like line link list live "
    "loading local location lock login logo mail main many menu message messages mobile mode modal more most much "
    "music must name navigation network note notes notification number offline online only open option options order "
    "other output over page pages pane panel panels part password payment people phone photo photos place player "
    "please popup preview price pricing print privacy product program programs profile progress project prompt "
    "purchase query quote recipe record reply report request reset result results review right same save scene "
    "screen screenshot script scroll search section select server service session setting settings setup share sheet "
    "shop show showing shown should sidebar sign signup site slide small some sound source space spreadsheet start "
    "state status step store story stream software steps style submit success summary support switch system table "
    "tabs tagline task team terminal test text texts than that their them then there these they this thread time "
    "title tool toolbar tools total track update upload used user username using value very video view visible wait "
    "warning website were what when where which while white will window windows with work would your";

}  // namespace

bool isStopWord(const QString& word) {
  static const QSet<QString> words = [] {
    const QStringList list = QString::fromLatin1(kWords).split(QLatin1Char(' '));
    return QSet<QString>(list.begin(), list.end());
  }();
  return words.contains(word);
}

}  // namespace quillmere
