#include <QtCore/QChar>
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "analysis/HttpReply.h"
#include "analysis/LlamaServer.h"
#include "analysis/ModelServerReplies.h"
#include "analysis/OllamaServer.h"
#include "description/ModelAnswer.h"

using namespace quillmere;

namespace {

/// Whatever a server says, the name that comes of it is short, is text, names no other folder and hides nothing.
void check(const ScreenshotAnalysisResult& result) {
  const QByteArray bytes = result.filename.toUtf8();
  if (bytes.isEmpty() || bytes.size() > 160 || QString::fromUtf8(bytes) != result.filename) std::abort();
  for (const char32_t c : result.filename.toUcs4()) {
    const bool turnsText = (c >= 0x202A && c <= 0x202E) || (c >= 0x2066 && c <= 0x2069) || c == 0x200E || c == 0x200F;
    if (c == U'/' || c == U'\\' || turnsText || QChar::category(c) == QChar::Other_Control) std::abort();
  }
  if (result.description.trimmed().isEmpty()) std::abort();
}

QString toText(std::string_view bytes) {
  return QString::fromUtf8(bytes.data(), static_cast<qsizetype>(bytes.size()));
}

void checkResponse(const ModelResponse& response, const QString& recognized) {
  if (!response) return;
  if (const auto result = cleanedAnswer(response->description, response->filename, recognized)) check(*result);
}

}  // namespace

/// The input is what was recognised in the picture, up to the first NUL, and what comes from the server. Few changes
/// leave an answer an answer, so that this is taken for all bytes that are sent, then for what the model wrote, and
/// then for the two fields with a line end between them.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string_view input(reinterpret_cast<const char*>(data), size);
  const auto end = input.find('\0');
  const std::string_view sent = end == std::string_view::npos ? std::string_view() : input.substr(end + 1);
  const QString recognized = toText(input.substr(0, end));

  HttpReplyParser parser;
  parser.add(QByteArrayView(sent.data(), static_cast<qsizetype>(sent.size())));
  if (parser.end() == HttpReplyParser::State::whole) {
    checkResponse(OllamaServer().answer(parser.reply(), Date{0}), recognized);
    checkResponse(LlamaServer().answer(parser.reply(), Date{0}), recognized);
  }
  checkResponse(ModelServerReplies::fields(toText(sent)), recognized);
  const auto lineEnd = std::min(sent.find('\n'), sent.size());
  checkResponse(ModelAnswerFields{toText(sent.substr(0, lineEnd)), toText(sent.substr(lineEnd))}, recognized);
  return 0;
}
