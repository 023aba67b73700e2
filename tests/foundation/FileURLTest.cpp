#include "foundation/FileURL.h"

#include <gtest/gtest.h>
#include <unistd.h>
#include <filesystem>
#include <random>
#include <unordered_set>

#include "support/Files.h"
#include "support/Printing.h"
#include "support/TemporaryFolder.h"

namespace quillmere {
namespace {

FileURL url(std::string_view path) {
  return FileURL::fromPath(path);
}

TEST(FileURL, IsMadeOfAnAbsolutePathAlone) {
  EXPECT_EQ(url("/a/b").path(), "/a/b");
  EXPECT_EQ(FileURL::fromPath(QStringLiteral("/ü")).path(), "/ü");
  for (const char* path : {"", "a", "a/b", "~/a", "./a", "file:///a"}) EXPECT_TRUE(url(path).isEmpty()) << path;
  EXPECT_TRUE(FileURL().isEmpty());
}

TEST(FileURL, HoldsNoNul) {
  EXPECT_TRUE(url(std::string_view("/a\0b", 4)).isEmpty()) << "the kernel would see another path";
}

TEST(FileURL, CodedFormEscapesWhatAPathMayNotHold) {
  EXPECT_EQ(url("/a b/ü%?#.png").coded(), "file:///a%20b/%C3%BC%25%3F%23.png");
  EXPECT_EQ(url("/;[]\\\"<>^`{|}\n").coded(), "file:///%3B%5B%5D%5C%22%3C%3E%5E%60%7B%7C%7D%0A");
  EXPECT_EQ(url("/AZaz09-._~!$&'()*+,=:@").coded(), "file:///AZaz09-._~!$&'()*+,=:@");
  EXPECT_EQ(url("/\xff").coded(), "file:///%FF");
}

TEST(FileURL, EveryByteComesBackFromTheCodedForm) {
  for (int byte = 1; byte < 256; ++byte) {
    const FileURL original = url(std::string("/a") + static_cast<char>(byte) + "b");
    EXPECT_EQ(FileURL::fromCoded(original.coded()), original) << byte;
  }
}

TEST(FileURL, AnyPathComesBackFromTheCodedForm) {
  const unsigned seed = 20240102;
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::mt19937 random(seed);
  for (int i = 0; i < 2000; ++i) {
    std::string path = "/";
    for (size_t length = random() % 60; length > 0; --length) path.push_back(static_cast<char>(1 + random() % 255));
    ASSERT_EQ(FileURL::fromCoded(url(path).coded()), url(path));
  }
}

TEST(FileURL, CodedFormIsReadInAnyCaseAndWithThisMachinesName) {
  EXPECT_EQ(FileURL::fromCoded("file:///a%c3%bcb"), url("/aüb"));
  EXPECT_EQ(FileURL::fromCoded("file://localhost/a"), url("/a"));
  EXPECT_EQ(FileURL::fromCoded("file:///a;b c"), url("/a;b c"));
  EXPECT_EQ(FileURL::fromCoded("file:///"), url("/"));
}

TEST(FileURL, OtherURLsAreNotRead) {
  for (const char* coded :
       {"", "/a", "file:", "file:/a", "file://", "file://a", "file://server/a", "file://localhosta/b",
        "file://localhost", "http:///a", "https://a/b", "File:///a", "file:///%", "file:///a%2", "file:///%zz",
        "file:///%2g", "file:///%g2", "file:///a%00b", " file:///a"}) {
    EXPECT_EQ(FileURL::fromCoded(coded), std::nullopt) << coded;
  }
}

TEST(FileURL, NameStemAndExtension) {
  struct Row {
    const char* path;
    const char* name;
    const char* stem;
    const char* extension;
  };
  for (const auto& [path, name, stem, extension] : std::vector<Row>{
           {"/a/b.png", "b.png", "b", "png"},
           {"/a/b.c.PNG", "b.c.PNG", "b.c", "PNG"},
           {"/a/b", "b", "b", ""},
           {"/a/.hidden", ".hidden", ".hidden", ""},
           {"/a/.hidden.png", ".hidden.png", ".hidden", "png"},
           {"/a/b.", "b.", "b.", ""},
           {"/a.d/b", "b", "b", ""},
           {"/a/b.png/", "b.png", "b", "png"},
           {"/a//b.png", "b.png", "b", "png"},
           {"/", "/", "/", ""},
       }) {
    EXPECT_EQ(url(path).lastPathComponent(), name) << path;
    EXPECT_EQ(url(path).stem(), stem) << path;
    EXPECT_EQ(url(path).pathExtension(), extension) << path;
  }
  EXPECT_EQ(FileURL().lastPathComponent(), "");
}

TEST(FileURL, ParentAndChild) {
  EXPECT_EQ(url("/a/b").parent(), url("/a"));
  EXPECT_EQ(url("/a/b/").parent(), url("/a"));
  EXPECT_EQ(url("/a").parent(), url("/"));
  EXPECT_EQ(url("/").parent(), url("/"));
  EXPECT_EQ(url("/a").appending("b.png"), url("/a/b.png"));
  EXPECT_EQ(url("/a/").appending("b"), url("/a/b"));
  EXPECT_EQ(url("/").appending("b"), url("/b"));
}

TEST(FileURL, StandardizedHasNoEmptyOrDottedComponents) {
  for (const auto& [path, standard] : std::vector<std::pair<const char*, const char*>>{{"/a/b", "/a/b"},
                                                                                       {"/a//b/", "/a/b"},
                                                                                       {"/./a/./b/.", "/a/b"},
                                                                                       {"/a/../b", "/b"},
                                                                                       {"/../../a", "/a"},
                                                                                       {"/a/..", "/"},
                                                                                       {"//", "/"},
                                                                                       {"/...", "/..."},
                                                                                       {"/a/.b", "/a/.b"}}) {
    EXPECT_EQ(url(path).standardized(), url(standard)) << path;
  }
  EXPECT_TRUE(FileURL().standardized().isEmpty());
}

TEST(FileURL, ResolvesLinksWhereEverythingExists) {
  const testing::TemporaryFolder folder;
  const FileURL real = *folder.url().resolvingSymlinks();
  testing::writeFile(folder.file("a"), "x");
  ASSERT_EQ(::symlink("a", folder.file("link").c_str()), 0);
  ASSERT_EQ(::symlink("nowhere", folder.file("dangling").c_str()), 0);
  EXPECT_EQ(folder.file("link").resolvingSymlinks(), real.appending("a"));
  EXPECT_EQ(folder.file("dangling").resolvingSymlinks(), std::nullopt);
  EXPECT_EQ(folder.file("absent").resolvingSymlinks(), std::nullopt);
}

TEST(FileURL, DisplayedTextsAreForPeople) {
  EXPECT_EQ(url("/a/ü.png").displayName(), QStringLiteral("ü.png"));
  EXPECT_EQ(url("/a/ü.png").displayStem(), QStringLiteral("ü"));
  EXPECT_EQ(url("/a/ü.png").displayPath(), QStringLiteral("/a/ü.png"));
  EXPECT_EQ(url("/a\xff.png").displayStem(), QStringLiteral("a\ufffd"));
}

TEST(FileURL, ComparesByItsBytes) {
  EXPECT_LT(url("/a"), url("/b"));
  EXPECT_LT(url("/B"), url("/a"));
  EXPECT_NE(url("/a"), url("/a/"));
}

TEST(FileURL, TablesCanBeAskedAboutABarePath) {
  const std::unordered_set<FileURL, FileURLHash, FileURLEqual> set{url("/a")};
  EXPECT_NE(set.find(std::string_view("/a")), set.end());
  EXPECT_EQ(set.find(std::string_view("/b")), set.end());
  EXPECT_EQ(std::hash<FileURL>{}(url("/a")), FileURLHash{}(std::string_view("/a")));
}

}  // namespace
}  // namespace quillmere
