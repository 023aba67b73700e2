#include "platform/linux/session/ScreenPower.h"

#include <QtGui/qguiapplication_platform.h>
#include <xcb/dpms.h>
#include <QtGui/QGuiApplication>
#include <cstdlib>
#include <memory>

namespace quillmere {

std::optional<bool> areScreensOff() {
  const auto* application = qobject_cast<QGuiApplication*>(QCoreApplication::instance());
  const auto* x11 = application ? application->nativeInterface<QNativeInterface::QX11Application>() : nullptr;
  xcb_connection_t* connection = x11 ? x11->connection() : nullptr;
  if (!connection) return std::nullopt;
  const xcb_query_extension_reply_t* extension = xcb_get_extension_data(connection, &xcb_dpms_id);
  if (!extension || !extension->present) return std::nullopt;
  const std::unique_ptr<xcb_dpms_info_reply_t, decltype(&std::free)> info(
      xcb_dpms_info_reply(connection, xcb_dpms_info(connection), nullptr), &std::free);
  if (!info) return std::nullopt;
  return info->state != 0 && info->power_level != XCB_DPMS_DPMS_MODE_ON;
}

ScreenPowerPoll::ScreenPowerPoll(Executor& executor, Look look, std::function<void(bool areOff)> seen)
    : executor_(executor), look_(std::move(look)), seen_(std::move(seen)) {}

ScreenPowerPoll::~ScreenPowerPoll() {
  if (delay_) executor_.cancelDelay(*delay_);
}

void ScreenPowerPoll::setOn(bool isOn) {
  if (isOn == isOn_) return;
  isOn_ = isOn;
  if (isOn) {
    // In a later turn: whoever switches the poll on is in the midst of something.
    lookAfter(Duration::zero());
    return;
  }
  if (const auto delay = std::exchange(delay_, std::nullopt)) executor_.cancelDelay(*delay);
  seen_(false);
}

void ScreenPowerPoll::lookAfter(Duration delay) {
  delay_ = executor_.startDelay(delay, [this](bool elapsed) {
    delay_.reset();
    const auto areOff = elapsed ? look_() : std::nullopt;
    // Where nothing can be seen now there is nothing to be seen later.
    if (!areOff) return;
    lookAfter(kInterval);
    seen_(*areOff);
  });
}

}  // namespace quillmere
