#pragma once

#include <xkbcommon/xkbcommon.h>
#include <QtCore/QSocketNotifier>
#include <memory>

#include "hotkeys/LiveHotKeys.h"

struct xcb_connection_t;

namespace quillmere {

/// What the keys write, by the keyboard of the X server, as it is now; without a server by the standard layout of this
/// machine's xkb. A connection of its own hears each change.
class XkbKeyboardLayout final : public ChangingKeyboardLayout {
 public:
  enum class Source { display, standard };
  explicit XkbKeyboardLayout(Source source);
  ~XkbKeyboardLayout() override;
  XkbKeyboardLayout(const XkbKeyboardLayout&) = delete;
  XkbKeyboardLayout& operator=(const XkbKeyboardLayout&) = delete;

  QStringList texts(quint32 keyCode) const override;
  std::optional<quint32> keyCode(quint32 nativeScanCode) const override;

  /// The key's symbols in the layout in use, then in the first Latin one: each alone, then with Shift.
  struct Symbols {
    xkb_keysym_t plain = XKB_KEY_NoSymbol;
    xkb_keysym_t shifted = XKB_KEY_NoSymbol;
  };
  std::vector<Symbols> symbols(quint32 keyCode) const;

 private:
  void connectToDisplay();
  void askForChanges();
  void readKeymap();
  void readStandardKeymap();
  void read();
  std::optional<xkb_layout_index_t> firstLatinGroup() const;
  std::vector<xkb_layout_index_t> groups(xkb_keycode_t key) const;
  xkb_keysym_t symbol(xkb_keycode_t key, xkb_layout_index_t group, xkb_level_index_t level) const;
  QString text(xkb_keycode_t key, xkb_layout_index_t group, bool isKeypad) const;

  template <auto Release>
  struct Releaser {
    template <typename Object>
    void operator()(Object* object) const {
      Release(object);
    }
  };
  static void disconnect(xcb_connection_t* connection);

  std::unique_ptr<xcb_connection_t, Releaser<&XkbKeyboardLayout::disconnect>> connection_;
  std::unique_ptr<xkb_context, Releaser<&xkb_context_unref>> context_;
  std::unique_ptr<xkb_keymap, Releaser<&xkb_keymap_unref>> keymap_;
  xkb_layout_index_t group_ = 0;  ///< the one in use
  int32_t device_ = -1;
  uint8_t firstEvent_ = 0;
  std::unique_ptr<QSocketNotifier> notifier_;
};

}  // namespace quillmere
