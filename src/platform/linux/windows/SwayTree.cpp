#include "platform/linux/windows/SwayTree.h"

#include "platform/linux/windows/JsonValues.h"
#include "platform/linux/windows/ScreenPixels.h"

namespace quillmere {
namespace {

using namespace JsonValues;

/// No layout is as deep.
constexpr int kDeepest = 64;

class Walk {
 public:
  Walk(WindowStack& stack, const ScreenPixels& screen, int64_t own) : stack_(stack), screen_(screen), own_(own) {}

  void output(const Value& node) {
    const std::string_view shown = text(node, "current_workspace");
    forEach(node, "nodes", [&](const Value& workspace) {
      if (text(workspace, "type") != "workspace" || text(workspace, "name") != shown) return;
      tiled(workspace, 0);
      forEach(workspace, "floating_nodes", [&](const Value& one) { container(one, workspace, 0); });
    });
  }

 private:
  void tiled(const Value& node, int depth) {
    forEach(node, "nodes", [&](const Value& one) { container(one, node, depth); });
  }

  void container(const Value& node, const Value& parent, int depth) {
    if (depth > kDeepest) return;
    const Value* nodes = member(node, "nodes");
    if (nodes && nodes->IsArray() && !nodes->Empty()) {
      tiled(node, depth + 1);
      return;
    }
    if (!isTrue(node, "visible") || number(node, "pid") == static_cast<double>(own_)) return;
    const Value* told = member(node, "id");
    const uint32_t id = told && told->IsUint() ? told->GetUint() : 0;
    const bool decoratesItself = text(node, "border") == "csd";
    add(frame(node, parent), rect(node, "rect"), id, decoratesItself);
    if (isTrue(node, "focused")) stack_.active = id;
  }

  /// A window is seen with its title bar, which sway counts apart, or with the row of tabs that it shares.
  static QRectF frame(const Value& node, const Value& parent) {
    const QRectF own = rect(node, "rect");
    if (number(node, "fullscreen_mode") > 0) return own;
    const std::string_view layout = text(parent, "layout");
    const QRectF around = rect(parent, "rect");
    if ((layout == "tabbed" || layout == "stacked") && around.contains(own)) return around;
    // It stands in points of its parent, or of the screen.
    for (const QPointF from : {QPointF(0, 0), around.topLeft()}) {
      const QRectF title = rect(node, "deco_rect").translated(from);
      if (title.height() > 0 && title.bottom() == own.top() && title.left() == own.left()) return own.united(title);
    }
    return own;
  }

  void add(const QRectF& frame, const QRectF& client, uint32_t id, bool decoratesItself) {
    if (frame.width() < 1 || frame.height() < 1) return;
    stack_.windows.push_back({id, WindowStack::Window::Type::window, decoratesItself, screen_.pixels(frame),
                              screen_.pixels(client), screen_.pixels(frame)});
  }

  WindowStack& stack_;
  const ScreenPixels& screen_;
  int64_t own_;
};

}  // namespace

std::optional<WindowStack> swayStack(std::string_view tree, std::string_view outputs, int64_t own) {
  rapidjson::Document nodes;
  rapidjson::Document screens;
  if (!parse(nodes, tree) || !parse(screens, outputs) || !screens.IsArray() || text(nodes, "type") != "root") {
    return std::nullopt;
  }
  std::vector<ScreenOutput> shown;
  for (const Value& screen : screens.GetArray()) {
    if (isTrue(screen, "active")) shown.push_back({rect(screen, "rect"), number(screen, "scale")});
  }
  const auto screen = ScreenPixels::of(shown);
  if (!screen) return std::nullopt;
  WindowStack stack = screen->emptyStack();
  stack.manager = "sway";
  Walk walk(stack, *screen, own);
  forEach(nodes, "nodes", [&](const Value& output) {
    if (text(output, "name") != "__i3") walk.output(output);
  });
  return stack;
}

}  // namespace quillmere
