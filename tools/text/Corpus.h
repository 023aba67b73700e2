#pragma once

#include <QtCore/QRectF>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtGui/QImage>
#include <random>
#include <vector>

/// Screens with known text, to measure text recognition on. The same seed gives the same screens, as far as the fonts
/// and the browser that are installed do.
namespace corpus {

enum class Theme { light, dark, mixed };
inline constexpr Theme kThemes[] = {Theme::light, Theme::dark, Theme::mixed};
inline constexpr int kScales[] = {1, 2};
QString name(Theme theme);

/// A piece of text as it was drawn, in points.
struct Fragment {
  QRectF box;
  QString text;
};

struct Screen {
  QImage image;  ///< at full size, without a device pixel ratio
  QStringList truth;
};

/// Fragments joined to what a reader takes as one line of one column, top to bottom.
QStringList lines(std::vector<Fragment> fragments);

/// Text that looks like what stands on screens.
class Words {
 public:
  explicit Words(unsigned seed) : random_(seed) {}
  int number(int low, int high);  ///< both included
  bool chance(double probability);
  const QString& pick(const QStringList& list);
  QString word();
  QString name();
  QString person();
  QString phrase(int words);  ///< "Export selected layers"
  QString sentence();
  QString paragraph(int sentences);
  QString date();
  QString size();
  QString amount();
  QString fileName();
  QString address();  ///< of mail, web or a folder
  QStringList code(int lines);
  QStringList terminal(int lines);

 private:
  std::mt19937 random_;
};

struct Request {
  Theme theme;
  int scale;
  int textPixels;
  QString family;
  unsigned seed;
};

/// Kinds of screens that Qt draws; needs a QApplication.
inline constexpr int kWidgetKinds = 6;
Screen widgetScreen(int kind, const Request& request);

/// Kinds of pages that the browser draws. Throws std::runtime_error when it cannot.
inline constexpr int kPageKinds = 5;
Screen pageScreen(int kind, const Request& request, const QString& browser);

/// Screens of the kinds that recognition is known to stumble over; needs a QGuiApplication.
inline constexpr int kHardKinds = 8;
QString hardName(int kind);
Screen hardScreen(int kind, const Request& request);

}  // namespace corpus
