#pragma once

#include <gtest/gtest.h>
#include <unistd.h>
#include <xcb/xcb.h>
#include <xcb/xtest.h>
#include <QtCore/QProcess>
#include <array>
#include <memory>

#include "support/MockBus.h"

namespace quillmere::testing {

/// An X server of a test's own, which is $DISPLAY while it lives.
class TestDisplay {
 public:
  TestDisplay() {
    before_ = qgetenv("DISPLAY");
    process_ = startHelper(
        QStringLiteral("Xvfb"),
        {QStringLiteral("-displayfd"), QStringLiteral("1"), QStringLiteral("-screen"), QStringLiteral("0"),
         QStringLiteral("640x480x24"), QStringLiteral("-noreset"), QStringLiteral("-nolisten"), QStringLiteral("tcp")},
        QProcessEnvironment::systemEnvironment());
    while (process_->state() != QProcess::NotRunning && !process_->canReadLine()) process_->waitForReadyRead(20000);
    const QByteArray number = process_->readLine().trimmed();
    if (number.isEmpty()) ADD_FAILURE() << "Xvfb does not start";
    qputenv("DISPLAY", ":" + number);
    connection_.reset(xcb_connect(nullptr, nullptr));
    root_ = xcb_setup_roots_iterator(xcb_get_setup(connection_.get())).data->root;
  }
  ~TestDisplay() {
    connection_.reset();
    stopHelper(*process_);
    before_.isEmpty() ? qunsetenv("DISPLAY") : qputenv("DISPLAY", before_);
  }

  /// As "setxkbmap de" does it.
  void setLayout(const QString& layout, const QString& options = {}) const {
    QStringList arguments{layout};
    if (!options.isEmpty()) arguments << QStringLiteral("-option") << QString() << QStringLiteral("-option") << options;
    EXPECT_EQ(QProcess::execute(QStringLiteral("setxkbmap"), arguments), 0);
  }
  void run(const QString& program, const QStringList& arguments) const {
    EXPECT_EQ(QProcess::execute(program, arguments), 0) << program.toStdString();
  }

  // Keys by the kernel's numbers.
  void down(uint32_t key) { fake(XCB_KEY_PRESS, key); }
  void up(uint32_t key) { fake(XCB_KEY_RELEASE, key); }
  void tap(std::initializer_list<uint32_t> keys) {
    for (const uint32_t key : keys) down(key);
    for (auto key = std::rbegin(keys); key != std::rend(keys); ++key) up(*key);
  }
  /// Whoever else listens has been told by then.
  void sync() { std::free(xcb_get_input_focus_reply(connection(), xcb_get_input_focus(connection()), nullptr)); }

  /// Another program takes the key with these modifiers.
  bool grab(uint32_t key, uint16_t modifiers) {
    const auto cookie = xcb_grab_key_checked(connection(), 0, root_, modifiers, static_cast<xcb_keycode_t>(key + 8),
                                             XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
    xcb_generic_error_t* error = xcb_request_check(connection(), cookie);
    const bool isDone = !error;
    std::free(error);
    return isDone;
  }
  void ungrab(uint32_t key) {
    xcb_ungrab_key(connection(), static_cast<xcb_keycode_t>(key + 8), root_, XCB_MOD_MASK_ANY);
    sync();
  }
  /// Tries all, and lets go again.
  bool isFree(uint32_t key, uint16_t modifiers) {
    const bool isDone = grab(key, modifiers);
    if (isDone) ungrab(key);
    return isDone;
  }

  xcb_connection_t* connection() { return connection_.get(); }

 private:
  void fake(uint8_t type, uint32_t key) {
    xcb_test_fake_input(connection(), type, static_cast<uint8_t>(key + 8), XCB_CURRENT_TIME, root_, 0, 0, 0);
    sync();
  }

  struct Disconnect {
    void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
  };
  QByteArray before_;
  std::unique_ptr<QProcess> process_;
  std::unique_ptr<xcb_connection_t, Disconnect> connection_;
  xcb_window_t root_ = XCB_WINDOW_NONE;
};

}  // namespace quillmere::testing
