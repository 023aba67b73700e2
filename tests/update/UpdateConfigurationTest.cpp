#include "update/UpdateConfiguration.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "update/Installation.h"

namespace quillmere {
namespace {

class UpdateConfigurationTest : public ::testing::Test {
 protected:
  std::optional<UpdateConfiguration> read(const QByteArray& json) const {
    return UpdateConfiguration::read(json, installation.program());
  }
  std::optional<UpdateConfiguration> found() const { return UpdateConfiguration::ofProgram(installation.program()); }
  testing::Installation installation;
};

TEST_F(UpdateConfigurationTest, WithoutAFileThereIsWhatItWasBuiltWith) {
  EXPECT_EQ(found().has_value(), *QUILLMERE_UPDATE_FEED != '\0');
}

TEST_F(UpdateConfigurationTest, ThePackagersFileStandsBesideTheProgram) {
  installation.configure(testing::Installation::good());
  const auto configuration = found();
  ASSERT_TRUE(configuration);
  EXPECT_EQ(configuration->feed, "https://updates.example/feed");
  EXPECT_EQ(configuration->key, testing::Installation::key());
  EXPECT_FALSE(configuration->isSingleFile);
  EXPECT_TRUE(configuration->authority.isEmpty());
  EXPECT_EQ(configuration->library, installation.library());
  EXPECT_EQ(configuration->program, installation.program());
}

TEST_F(UpdateConfigurationTest, AFileThatOthersCanWriteToIsNone) {
  installation.configure(testing::Installation::good());
  ::chmod(installation.configuration().c_str(), 0666);
  EXPECT_FALSE(found());
}

TEST_F(UpdateConfigurationTest, ALargeFileIsNone) {
  installation.configure(testing::Installation::good() + QByteArray(20000, ' '));
  EXPECT_FALSE(found());
}

TEST_F(UpdateConfigurationTest, OnlyWholeAnswersCount) {
  const QByteArray key = testing::Installation::key().toBase64();
  const auto of = [&](const QByteArray& url, const QByteArray& keyText, const QByteArray& more = {}) {
    return read(R"({"url":")" + url + R"(","key":")" + keyText + "\"" + more + "}").has_value();
  };
  EXPECT_TRUE(of("https://updates.example/feed", key));
  EXPECT_TRUE(of("https://updates.example/feed", key, R"(,"form":"single-file")"));
  for (const char* url : {"http://updates.example/feed", "file:///feed", "", "updates.example", "https://a:b@c/d"}) {
    EXPECT_FALSE(of(url, key)) << url;
  }
  for (const QByteArray& other : {QByteArray(), key.left(40), QByteArray("not base64 at all, but long enough for it!!"),
                                  QByteArray(31, 'k').toBase64(), QByteArray(33, 'k').toBase64()}) {
    EXPECT_FALSE(of("https://updates.example/feed", other));
  }
  for (const char* more : {R"(,"form":"other")", R"(,"kee":"x")", R"(,"form":1)", R"(,"authority":"../x.pem")",
                           R"(,"authority":"none.pem")", ",", R"(,"form":["package"])"}) {
    EXPECT_FALSE(of("https://updates.example/feed", key, more)) << more;
  }
  EXPECT_FALSE(read("[]"));
  EXPECT_FALSE(read(""));
  EXPECT_FALSE(read("{}"));
}

TEST_F(UpdateConfigurationTest, AnAuthorityStandsBesideTheFileAndIsAsSafe) {
  const QByteArray json = testing::Installation::good().chopped(1) + R"(,"authority":"authority.pem"})";
  const FileURL authority = installation.file("share/quillmere/authority.pem");
  std::ofstream(authority.path()) << "certificate";
  ASSERT_TRUE(read(json));
  EXPECT_EQ(read(json)->authority, authority);
  ::chmod(authority.c_str(), 0666);
  EXPECT_FALSE(read(json));
}

}  // namespace
}  // namespace quillmere
