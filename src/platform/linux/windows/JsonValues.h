#pragma once

#include <rapidjson/document.h>
#include <QtCore/QRectF>
#include <string_view>

/// Reads what a compositor tells in JSON. What is missing or of another kind is empty.
namespace quillmere::JsonValues {

using Value = rapidjson::Value;

/// Answers whether the text is JSON, however deep.
bool parse(rapidjson::Document& document, std::string_view text);

const Value* member(const Value& node, const char* name);
std::string_view text(const Value& node, const char* name);
double number(const Value& node, const char* name);
bool isTrue(const Value& node, const char* name);
/// Of "x", "y", "width" and "height".
QRectF rect(const Value& node, const char* name);

/// Visits each of the list's values.
template <typename Visit>
void forEach(const Value& node, const char* name, const Visit& visit) {
  const Value* list = member(node, name);
  if (!list || !list->IsArray()) return;
  for (const Value& one : list->GetArray()) visit(one);
}

}  // namespace quillmere::JsonValues
