#include "records/ScreenshotCoding.h"

#include <gtest/gtest.h>
#include <cmath>
#include <random>

#include "support/Printing.h"
#include "support/Records.h"

namespace quillmere {
namespace {

using testing::bareItem;
using testing::encoded;
using testing::envelope;
using testing::fullItem;
using testing::recordJson;

std::optional<DecodedList> decode(std::string bytes) {
  return decodeList(bytes);
}

/// The one record of a list that holds this record object; none when it was dropped.
std::optional<ScreenshotItem> decodeOne(std::string_view json) {
  const auto list = decode(envelope(json));
  EXPECT_TRUE(list) << json;
  if (!list) return std::nullopt;
  EXPECT_EQ(list->items.size() + list->dropped, 1u) << json;
  return list->items.empty() ? std::nullopt : std::optional(list->items.front());
}

std::optional<ScreenshotItem> decodeWith(std::string_view more) {
  return decodeOne(recordJson(more));
}

std::string encodedDate(double seconds) {
  ScreenshotItem item = bareItem();
  item.createdAt = {seconds};
  const std::string json = encoded(item);
  const auto start = json.find("\"createdAt\":") + 12;
  return json.substr(start, json.find(',', start) - start);
}

std::string encodedName(const QByteArray& name) {
  ScreenshotItem item = bareItem();
  item.suggestedName = name;
  const std::string json = encoded(item);
  const auto start = json.find("\"suggestedName\":") + 16;
  return json.substr(start, json.size() - 1 - start);
}

// --- Writing ---

TEST(ScreenshotCoding, RecordWithEveryFieldIsWrittenInTheOrderOfTheFields) {
  EXPECT_EQ(encoded(fullItem()),
            R"({"id":"00000000-0000-4000-8000-100000000001","url":"file:\/\/\/shots\/1.png","createdAt":700000000.25,)"
            R"("state":"temporary","expiresAt":700000300.5,"suggestedName":"A name","recognizedText":"Some text",)"
            R"("imageDescription":"A window","analysisFailure":"busy","analysisRetryable":true,)"
            R"("sourceItemID":"00000000-0000-4000-8000-100000000002","fileBookmark":"Ym9va21hcms=",)"
            R"("fileIdentity":{"volume":"volume","file":42,"creationDate":699999999.75,"size":1234},)"
            R"("arrivedFromElsewhere":false,"captureKind":"selection"})");
}

TEST(ScreenshotCoding, KnownWindowsAreKeptAsTheyStand) {
  ScreenshotItem item = bareItem();
  item.knownWindows = "display 20x10 0 ^5x5+1+2";
  EXPECT_TRUE(encoded(item).ends_with(R"("state":"pending","knownWindows":"display 20x10 0 ^5x5+1+2"})"));
  const auto kept = decodeWith(R"(,"knownWindows":"anything")");
  ASSERT_TRUE(kept);
  EXPECT_EQ(kept->knownWindows, QByteArray("anything"));
  for (const char* other : {R"(,"knownWindows":[1,2])", R"(,"knownWindows":null)", R"(,"knownWindows":7)"}) {
    const auto read = decodeWith(other);
    ASSERT_TRUE(read) << other;
    EXPECT_EQ(read->knownWindows, std::nullopt) << other;
  }
}

TEST(ScreenshotCoding, RecordWithTheRequiredFieldsAloneHasNoOtherKeys) {
  EXPECT_EQ(encoded(bareItem()), R"({"id":"00000000-0000-4000-8000-100000000001","url":"file:\/\/\/shots\/1.png",)"
                                 R"("createdAt":700000000.25,"state":"pending"})");
}

TEST(ScreenshotCoding, UUIDsAreWrittenInUpperCase) {
  ScreenshotItem item = bareItem();
  item.id = *uuidFromText("abcdef01-2345-4789-8bcd-ef0123456789");
  item.sourceItemID = *uuidFromText("fedcba98-2345-4789-8bcd-ef0123456789");
  const std::string json = encoded(item);
  EXPECT_NE(json.find(R"("id":"ABCDEF01-2345-4789-8BCD-EF0123456789")"), std::string::npos);
  EXPECT_NE(json.find(R"("sourceItemID":"FEDCBA98-2345-4789-8BCD-EF0123456789")"), std::string::npos);
}

TEST(ScreenshotCoding, IdentityWithItsFileAloneHasNoOtherKeys) {
  ScreenshotItem item = bareItem();
  item.fileIdentity = FileIdentity{{}, 7, {}, {}};
  EXPECT_NE(encoded(item).find(R"("fileIdentity":{"file":7}})"), std::string::npos);
}

TEST(ScreenshotCoding, LargestFileNumberIsWrittenAndReadWhole) {
  ScreenshotItem item = bareItem();
  item.fileIdentity = FileIdentity{{}, 18446744073709551615u, {}, {}};
  const std::string json = encoded(item);
  EXPECT_NE(json.find(R"("file":18446744073709551615)"), std::string::npos);
  EXPECT_EQ(decodeOne(json), item);
}

TEST(ScreenshotCoding, SizeIsASignedNumber) {
  ScreenshotItem item = bareItem();
  for (const int64_t size : {int64_t{0}, int64_t{-1}, INT64_MAX, INT64_MIN}) {
    item.fileIdentity = FileIdentity{{}, 7, {}, size};
    EXPECT_NE(encoded(item).find("\"size\":" + std::to_string(size) + "}"), std::string::npos);
    EXPECT_EQ(decodeOne(encoded(item)), item);
  }
}

TEST(ScreenshotCoding, TextsAreEscapedInTheShortestForm) {
  const std::vector<std::pair<QByteArray, std::string>> rows{
      {"", R"("")"},
      {"plain", R"("plain")"},
      {"a/b", R"("a\/b")"},
      {"say \"hi\"", R"("say \"hi\"")"},
      {"back\\slash", R"("back\\slash")"},
      {"\b\f\n\r\t", R"("\b\f\n\r\t")"},
      {QByteArray("\0\x01\x1f", 3), R"("\u0000\u0001\u001f")"},
      {"\x7f", "\"\x7f\""},
      {"Bücher 截图 \xF0\x9F\x96\xBC", "\"Bücher 截图 \xF0\x9F\x96\xBC\""},
      {"\xE2\x80\xA8\xE2\x80\xA9", "\"\xE2\x80\xA8\xE2\x80\xA9\""},
      {"<&'>", "\"<&'>\""},
  };
  for (const auto& [text, json] : rows) EXPECT_EQ(encodedName(text), json);
}

TEST(ScreenshotCoding, EveryControlCharacterIsEscapedAndComesBack) {
  for (char c = 0; c < 0x20; ++c) {
    ScreenshotItem item = bareItem();
    item.recognizedText = QByteArray("a") + c + "b";
    const std::string json = encoded(item);
    EXPECT_EQ(json.find(c), std::string::npos) << int{c};
    EXPECT_EQ(decodeOne(json), item) << int{c};
  }
}

TEST(ScreenshotCoding, DatesAreWrittenInTheShortestFormThatReadsBack) {
  const std::vector<std::pair<double, std::string>> rows{
      {0, "0"},
      {1, "1"},
      {-1.5, "-1.5"},
      {0.1, "0.1"},
      {0.3, "0.3"},
      {0.1 + 0.2, "0.30000000000000004"},
      {700000000, "700000000"},
      {788000000.123456, "788000000.123456"},
      {1e15, "1000000000000000"},
      {9007199254740993.0, "9007199254740992"},
      {0.0001, "0.0001"},
  };
  for (const auto& [seconds, json] : rows) EXPECT_EQ(encodedDate(seconds), json);
}

TEST(ScreenshotCoding, EveryDateReadsBackAsTheSameDouble) {
  const unsigned seed = 20240102;
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::mt19937_64 random(seed);
  std::uniform_real_distribution<double> ordinary(-1e9, 2e9);
  std::vector<double> numbers{5e-324, 1e-5, 1e300, 1.7976931348623157e308, -1e300, 123456789012345678.0};
  for (int i = 0; i < 5000; ++i) numbers.push_back(ordinary(random));
  for (const double number : numbers) {
    ScreenshotItem item = bareItem();
    item.createdAt = {number};
    item.expiresAt = Date{-number};
    ASSERT_EQ(decodeOne(encoded(item)), item) << number;
  }
}

TEST(ScreenshotCoding, ANumberThatIsNoneNeverMakesTheListUnreadable) {
  for (const double number : {std::nan(""), HUGE_VAL, -HUGE_VAL}) {
    ScreenshotItem item = bareItem();
    item.createdAt = {number};
    EXPECT_TRUE(decodeOne(encoded(item)));
  }
}

TEST(ScreenshotCoding, EveryRecordComesBackAsItWas) {
  EXPECT_EQ(decodeOne(encoded(bareItem())), bareItem());
  EXPECT_EQ(decodeOne(encoded(fullItem())), fullItem());
}

TEST(ScreenshotCoding, TextThatIsNotUTF8NeverMakesTheListUnreadable) {
  ScreenshotItem item = bareItem();
  for (const char* bytes : {"\xff", "a\xc3", "\xed\xa0\x80", "\xc0\xaf", "\xf5\x80\x80\x80", "ok\xe2\x82"}) {
    item.suggestedName = QByteArray(bytes);
    item.fileIdentity = FileIdentity{bytes, 1, {}, {}};
    EXPECT_TRUE(decodeOne(encoded(item))) << QByteArray(bytes).toHex().toStdString();
  }
}

TEST(ScreenshotCoding, AnyBytesOfAFileNameComeBack) {
  std::string path = "/";
  for (int byte = 1; byte < 256; ++byte) path.push_back(static_cast<char>(byte));
  ScreenshotItem item = bareItem();
  item.url = FileURL::fromPath(path);
  EXPECT_EQ(decodeOne(encoded(item)), item);
}

TEST(ScreenshotCoding, BookmarkOfAnyBytesComesBack) {
  QByteArray bytes;
  ScreenshotItem item = bareItem();
  for (int i = 0; i < 256; ++i) {
    item.fileBookmark = bytes;
    EXPECT_EQ(decodeOne(encoded(item)), item) << i;
    bytes.append(static_cast<char>(i));
  }
}

// --- Reading a record ---

TEST(ScreenshotCoding, RecordWithoutOneOfTheFourRequiredKeysIsDropped) {
  EXPECT_TRUE(decodeOne(recordJson()));
  EXPECT_FALSE(decodeOne(R"({"url":"file:///a.png","createdAt":5,"state":"pending"})"));
  EXPECT_FALSE(decodeOne(R"({"id":"00000000-0000-4000-8000-100000000001","createdAt":5,"state":"pending"})"));
  EXPECT_FALSE(decodeOne(R"({"id":"00000000-0000-4000-8000-100000000001","url":"file:///a.png","state":"pending"})"));
  EXPECT_FALSE(decodeOne(R"({"id":"00000000-0000-4000-8000-100000000001","url":"file:///a.png","createdAt":5})"));
}

TEST(ScreenshotCoding, RecordWithAMalformedRequiredValueIsDropped) {
  for (const char* json :
       {R"({"id":"no uuid","url":"file:///a.png","createdAt":5,"state":"pending"})",
        R"({"id":5,"url":"file:///a.png","createdAt":5,"state":"pending"})",
        R"({"id":null,"url":"file:///a.png","createdAt":5,"state":"pending"})",
        R"({"id":"00000000-0000-4000-8000-100000000001","url":"https://a/b.png","createdAt":5,"state":"pending"})",
        R"({"id":"00000000-0000-4000-8000-100000000001","url":7,"createdAt":5,"state":"pending"})",
        R"({"id":"00000000-0000-4000-8000-100000000001","url":"file:///a.png","createdAt":"5","state":"pending"})",
        R"({"id":"00000000-0000-4000-8000-100000000001","url":"file:///a.png","createdAt":5,"state":1})",
        R"({"id":"00000000-0000-4000-8000-100000000001","url":"file:///a.png","createdAt":5,"state":null})",
        R"("text")", "5", "null", "true", "[]", "{}"}) {
    EXPECT_FALSE(decodeOne(json)) << json;
  }
}

TEST(ScreenshotCoding, RecordWithAnUnknownStateIsDropped) {
  EXPECT_FALSE(decodeOne(
      R"({"id":"00000000-0000-4000-8000-100000000001","url":"file:///a.png","createdAt":5,"state":"archived"})"));
}

TEST(ScreenshotCoding, OptionalValueOfTheWrongTypeDropsTheRecord) {
  for (const char* more :
       {R"(,"expiresAt":"soon")", R"(,"suggestedName":5)", R"(,"recognizedText":true)", R"(,"imageDescription":[])",
        R"(,"analysisFailure":5)", R"(,"analysisNote":5)", R"(,"analysisRetryable":"yes")", R"(,"analysisRetryable":1)",
        R"(,"sourceItemID":"none")", R"(,"sourceItemID":5)", R"(,"fileBookmark":5)", R"(,"fileBookmark":"not base64!")",
        R"(,"arrivedFromElsewhere":0)", R"(,"captureKind":5)"}) {
    EXPECT_FALSE(decodeWith(more)) << more;
  }
}

TEST(ScreenshotCoding, OptionalValueThatIsNullReadsAsAbsent) {
  const auto item = decodeWith(
      R"(,"expiresAt":null,"suggestedName":null,"recognizedText":null,"imageDescription":null,"analysisFailure":null,)"
      R"("analysisRetryable":null,"sourceItemID":null,"fileBookmark":null,"fileIdentity":null,)"
      R"("arrivedFromElsewhere":null,"captureKind":null,"analysisNote":null,"fileIdentifier":null)");
  EXPECT_EQ(item, decodeOne(recordJson()));
}

TEST(ScreenshotCoding, KeysThatANewerVersionAddsAreLeftOut) {
  EXPECT_EQ(decodeWith(R"(,"starred":true,"tags":[{"a":1}])"), decodeOne(recordJson()));
}

TEST(ScreenshotCoding, UnknownCaptureKindGivesNoneAndKeepsTheRecord) {
  const auto item = decodeWith(R"(,"captureKind":"hologram")");
  ASSERT_TRUE(item);
  EXPECT_EQ(item->captureKind, std::nullopt);
}

TEST(ScreenshotCoding, UnknownAnalysisFailureReadsAsOther) {
  const auto item = decodeWith(R"(,"analysisFailure":"newerReason")");
  ASSERT_TRUE(item);
  EXPECT_EQ(item->analysisFailure, AnalysisFailureCode::other);
}

TEST(ScreenshotCoding, AnyAnalysisNoteReadsAsOther) {
  for (const char* note : {"", "busy", "The model is not ready."}) {
    const auto item = decodeWith(",\"analysisNote\":\"" + std::string(note) + "\"");
    ASSERT_TRUE(item);
    EXPECT_EQ(item->analysisFailure, AnalysisFailureCode::other) << note;
  }
}

TEST(ScreenshotCoding, AnalysisFailureStandsBeforeAnalysisNote) {
  const auto item = decodeWith(R"(,"analysisNote":"ignored","analysisFailure":"busy")");
  ASSERT_TRUE(item);
  EXPECT_EQ(item->analysisFailure, AnalysisFailureCode::busy);
}

TEST(ScreenshotCoding, AnalysisNoteBesideAnalysisFailureIsNotEvenLookedAt) {
  const auto item = decodeWith(R"(,"analysisNote":5,"analysisFailure":"busy")");
  ASSERT_TRUE(item);
  EXPECT_EQ(item->analysisFailure, AnalysisFailureCode::busy);
}

TEST(ScreenshotCoding, AnalysisNoteIsNeverWritten) {
  const auto item = decodeWith(R"(,"analysisNote":"old")");
  ASSERT_TRUE(item);
  const std::string json = encoded(*item);
  EXPECT_EQ(json.find("analysisNote"), std::string::npos);
  EXPECT_NE(json.find(R"("analysisFailure":"other")"), std::string::npos);
}

TEST(ScreenshotCoding, MalformedFileIdentityReadsAsNone) {
  for (const char* identity :
       {"5", "\"text\"", "[]", "{}", R"({"file":-1})", R"({"file":"42"})", R"({"file":1.5})",
        R"({"file":18446744073709551616})", R"({"volume":"v","size":3})", R"({"file":1,"volume":2})",
        R"({"file":1,"creationDate":"x"})", R"({"file":1,"size":"x"})", R"({"file":1,"size":9223372036854775808})"}) {
    const auto item = decodeWith(",\"fileIdentity\":" + std::string(identity));
    ASSERT_TRUE(item) << identity;
    EXPECT_EQ(item->fileIdentity, std::nullopt) << identity;
  }
}

TEST(ScreenshotCoding, LegacyFileIdentifierReadsAsAnIdentityThatIsNotComplete) {
  const auto item = decodeWith(R"(,"fileIdentifier":42)");
  ASSERT_TRUE(item && item->fileIdentity);
  EXPECT_EQ(item->fileIdentity, (FileIdentity{{}, 42, {}, {}}));
  EXPECT_FALSE(item->fileIdentity->isComplete());
}

TEST(ScreenshotCoding, LegacyFileIdentifierIsWrittenBackAsFileIdentity) {
  const auto item = decodeWith(R"(,"fileIdentifier":42)");
  ASSERT_TRUE(item);
  const std::string json = encoded(*item);
  EXPECT_NE(json.find(R"("fileIdentity":{"file":42})"), std::string::npos);
  EXPECT_EQ(json.find("fileIdentifier"), std::string::npos);
}

TEST(ScreenshotCoding, LegacyFileIdentifierStandsInForAMalformedIdentity) {
  const auto item = decodeWith(R"(,"fileIdentity":{"file":"x"},"fileIdentifier":18446744073709551615)");
  ASSERT_TRUE(item && item->fileIdentity);
  EXPECT_EQ(item->fileIdentity->file, 18446744073709551615u);
}

TEST(ScreenshotCoding, MalformedLegacyFileIdentifierDropsTheRecord) {
  for (const char* number : {"-1", "\"42\"", "1.5", "true", "18446744073709551616"}) {
    EXPECT_FALSE(decodeWith(",\"fileIdentifier\":" + std::string(number))) << number;
  }
}

TEST(ScreenshotCoding, LegacyFileIdentifierBesideAnIdentityIsNotEvenLookedAt) {
  const auto item = decodeWith(R"(,"fileIdentity":{"file":7},"fileIdentifier":"bad")");
  ASSERT_TRUE(item && item->fileIdentity);
  EXPECT_EQ(item->fileIdentity->file, 7u);
}

TEST(ScreenshotCoding, DatesMayBeWholeNumbersOrHaveExponents) {
  const auto item = decodeWith(R"(,"expiresAt":7e8)");
  ASSERT_TRUE(item);
  EXPECT_EQ(item->createdAt, Date{5});
  EXPECT_EQ(item->expiresAt, Date{700000000});
}

TEST(ScreenshotCoding, EscapedTextsAreReadAsWhatTheyStandFor) {
  const auto item = decodeWith(R"(,"suggestedName":"\u00fc \ud83d\uddbc \/ \" \\ \n \u0000")");
  ASSERT_TRUE(item);
  EXPECT_EQ(item->suggestedName, QByteArray("ü \xF0\x9F\x96\xBC / \" \\ \n \0", 17));
}

// --- Reading a list ---

TEST(ScreenshotCoding, EnvelopeTellsItsVersionAndKeepsTheOrder) {
  const auto list = decode(envelope(encoded(bareItem(3)) + "," + encoded(bareItem(1)) + "," + encoded(bareItem(2))));
  ASSERT_TRUE(list);
  EXPECT_EQ(list->version, 1);
  EXPECT_EQ(list->dropped, 0u);
  EXPECT_EQ(list->items, (std::vector{bareItem(3), bareItem(1), bareItem(2)}));
}

TEST(ScreenshotCoding, BareArrayIsVersionZero) {
  const auto list = decode("[" + encoded(bareItem(2)) + "," + encoded(bareItem(1)) + "]");
  ASSERT_TRUE(list);
  EXPECT_EQ(list->version, 0);
  EXPECT_EQ(list->items, (std::vector{bareItem(2), bareItem(1)}));
}

TEST(ScreenshotCoding, MalformedRecordsAreCountedAndLeftOut) {
  const auto list = decode(envelope("5," + encoded(bareItem(2)) + ",{},null," + encoded(bareItem(1))));
  ASSERT_TRUE(list);
  EXPECT_EQ(list->dropped, 3u);
  EXPECT_EQ(list->items, (std::vector{bareItem(2), bareItem(1)}));
}

TEST(ScreenshotCoding, WhitespaceAndTheOrderOfKeysDoNotMatter) {
  const auto list = decode(" \n{ \"items\" : [ " + recordJson() + " ] ,\t\"version\" : 1 }\r\n");
  ASSERT_TRUE(list);
  EXPECT_EQ(list->items.size(), 1u);
}

TEST(ScreenshotCoding, WhatIsNeitherArrayNorEnvelopeIsNotRead) {
  for (const char* text :
       {"", " ", "garbage", "5", "\"text\"", "null", "{}", R"({"version":1})", R"({"items":[]})",
        R"({"version":"1","items":[]})", R"({"version":1,"items":{}})", R"({"version":1,"items":null})",
        R"({"version":null,"items":[]})", R"({"version":1,"items":[])", R"([],)", R"([] x)", R"([,])",
        R"({"version":1,"items":[]}})", "\xff\xfe[]"}) {
    EXPECT_FALSE(decode(text)) << text;
  }
}

TEST(ScreenshotCoding, ANulEndsNoListEarly) {
  EXPECT_FALSE(decode(std::string("[]\0", 3)));
  EXPECT_FALSE(decode(std::string("[]\0garbage", 10)));
  EXPECT_FALSE(decode(std::string(1, '\0')));
}

TEST(ScreenshotCoding, BytesThatAreNotUTF8MakeTheListUnreadable) {
  EXPECT_FALSE(decode(envelope(recordJson(",\"suggestedName\":\"\xff\""))));
}

TEST(ScreenshotCoding, NestingOfAnyDepthIsBorne) {
  constexpr size_t kDepth = 4'000'000;
  EXPECT_FALSE(decode(std::string(kDepth, '[')));
  const auto closed = decode(std::string(kDepth, '[') + std::string(kDepth, ']'));
  ASSERT_TRUE(closed);
  EXPECT_EQ(closed->dropped, 1u);
  std::string objects;
  for (size_t i = 0; i < kDepth / 4; ++i) objects += "{\"a\":";
  EXPECT_FALSE(decode(objects));
}

TEST(ScreenshotCoding, ManyRecordsAreReadInOrder) {
  std::string records;
  for (int i = 0; i < 10000; ++i) records += (i ? "," : "") + encoded(fullItem(i));
  const auto list = decode(envelope(records));
  ASSERT_TRUE(list);
  ASSERT_EQ(list->items.size(), 10000u);
  EXPECT_EQ(list->items[0], fullItem(0));
  EXPECT_EQ(list->items[9999], fullItem(9999));
}

}  // namespace
}  // namespace quillmere
