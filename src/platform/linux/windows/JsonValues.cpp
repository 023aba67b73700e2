#include "platform/linux/windows/JsonValues.h"

#include <cmath>

namespace quillmere::JsonValues {
namespace {

/// No place on a screen is farther.
constexpr double kFarthest = 1 << 20;

}  // namespace

bool parse(rapidjson::Document& document, std::string_view text) {
  document.Parse<rapidjson::kParseIterativeFlag>(text.data(), text.size());
  return !document.HasParseError();
}

const Value* member(const Value& node, const char* name) {
  if (!node.IsObject()) return nullptr;
  const auto found = node.FindMember(name);
  return found == node.MemberEnd() ? nullptr : &found->value;
}

std::string_view text(const Value& node, const char* name) {
  const Value* value = member(node, name);
  return value && value->IsString() ? std::string_view(value->GetString(), value->GetStringLength())
                                    : std::string_view();
}

double number(const Value& node, const char* name) {
  const Value* value = member(node, name);
  return value && value->IsNumber() ? value->GetDouble() : 0;
}

bool isTrue(const Value& node, const char* name) {
  const Value* value = member(node, name);
  return value && value->IsBool() && value->GetBool();
}

QRectF rect(const Value& node, const char* name) {
  const Value* value = member(node, name);
  if (!value) return {};
  const QRectF rect(number(*value, "x"), number(*value, "y"), number(*value, "width"), number(*value, "height"));
  const bool isNear = std::abs(rect.left()) <= kFarthest && std::abs(rect.top()) <= kFarthest &&
                      rect.width() <= kFarthest && rect.height() <= kFarthest;
  return isNear ? rect : QRectF();
}

}  // namespace quillmere::JsonValues
