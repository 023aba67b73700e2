#include "shell/Endpoints.h"

#include <gtest/gtest.h>
#include <QtGui/QDesktopServices>
#include <QtWidgets/QTextBrowser>
#include <vector>

#include "support/Printing.h"

namespace quillmere {
namespace {

/// Stands in for the desktop's browser and mail program.
class Opener final : public QTextBrowser {
 public:
  std::vector<QUrl> opened;

 protected:
  void doSetSource(const QUrl& url, QTextDocument::ResourceType) override { opened.push_back(url); }
};

TEST(Endpoints, PagesAreOpenedInTheBrowserAndMailInTheMailProgram) {
  Opener opener;
  for (const char* scheme : {"https", "mailto"})
    QDesktopServices::setUrlHandler(QLatin1String(scheme), &opener, "setSource");
  const std::vector<QUrl> all{Endpoints::website(), Endpoints::support(), Endpoints::privacyPolicy(),
                              Endpoints::supportMail()};
  for (const QUrl& url : all) Endpoints::open(url);
  for (const char* scheme : {"https", "mailto"}) QDesktopServices::unsetUrlHandler(QLatin1String(scheme));
  EXPECT_EQ(opener.opened, all);
}

TEST(Endpoints, AllAreTheMakersOwnAndPagesAreEncrypted) {
  for (const QUrl& page : {Endpoints::website(), Endpoints::support(), Endpoints::privacyPolicy()}) {
    EXPECT_EQ(page.scheme(), QStringLiteral("https"));
    EXPECT_EQ(page.host(), QStringLiteral("quillmere.example"));
  }
  EXPECT_EQ(Endpoints::supportMail().scheme(), QStringLiteral("mailto"));
  EXPECT_TRUE(Endpoints::supportMail().path().endsWith(QStringLiteral("@quillmere.example")));
}

}  // namespace
}  // namespace quillmere
