// A server, a user and the platform on it; reports of the display are collected raw or as events.
#pragma once
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/display/display.h"
#include "platform/display/window.h"
#include "platform/display/x11/x.h"
#include "platform/events/event.h"
#include "platform/events/targets.h"
#include "platform/graphics/surface.h"
#include "platform/loop/receive.h"
#include "platform/loop/start.h"
#include "platform/windows/windows.h"
#include "tests/support/x_server.h"

namespace x11_test {

constexpr uint32_t kAllBoxes =
    platform::kWindowCloseBoxAttribute | platform::kWindowFullZoomAttribute |
    platform::kWindowCollapseBoxAttribute | platform::kWindowResizableAttribute;

class X11Test : public testing::Test {
 protected:
  void Start(const std::string& manager = "", const std::vector<std::string>& arguments = {}) {
    StartServer(manager, arguments);
    StartSession();
  }
  void StartServer(const std::string& manager, const std::vector<std::string>& arguments) {
    UseServer(std::make_unique<support::XServer>(arguments));
    ASSERT_TRUE(manager.empty() || server_->StartManager(manager));
  }
  void UseServer(std::unique_ptr<support::XServer> server) {
    server_ = std::move(server);
    ASSERT_TRUE(server_->running());
    user_ = std::make_unique<support::XUser>();
  }
  // In a child: the parent's connection stays the parent's.
  void TakeOwnUser() {
    user_.release();
    user_ = std::make_unique<support::XUser>();
  }
  void StartSession() { ASSERT_TRUE(platform::InitPlatform("Session")); }
  void TearDown() override {
    platform::FinishPlatform();
    user_.reset();
    server_.reset();
  }
  support::XUser& user() { return *user_; }
  support::XServer& server() { return *server_; }

  // A shown window with one colour, first picture out.
  platform::WindowRef Show(const char* title, const platform::Rect& content,
                           int window_class = platform::kDocumentWindowClass,
                           uint32_t attributes = kAllBoxes) {
    platform::WindowRef w = platform::CreateNewWindow(window_class, attributes, content);
    if (w == nullptr) return nullptr;
    platform::SetWindowTitle(w, title);
    platform::SetWindowBackgroundColor(w, 0x3366CC);
    platform::ShowWindow(w);
    // What the server paints by itself is no picture.
    w->backdrop = 0x00FF00;
    platform::kX11Display.update(w, platform::kUpdateBackdrop);
    Settle();
    return w;
  }

  // Runs the loop until `done`; what comes is kept in `events`.
  bool RunUntil(const std::function<bool()>& done) {
    return support::Eventually([&] {
      platform::Event e;
      while (platform::ReceiveNextEvent(0, &e)) {
        events.push_back(e);
        platform::SendEventToEventTarget(&e, platform::GetEventDispatcherTarget());
      }
      return done();
    });
  }
  // Until the program, the server and a window manager have nothing left to tell each other: a
  // marker goes the way of what they say, until two have come back with nothing before them. `turn`
  // runs the loop until nothing waits, and is true when something came.
  template <typename Turn>
  void SettleWith(Turn turn) {
    int quiet = 0;
    EXPECT_TRUE(support::Eventually([&] {
      platform::FlushWindow(nullptr);
      user_->PassMarker();
      platform::FlushWindow(nullptr);
      quiet = turn() || WaitsForBounds() ? 0 : quiet + 1;
      return quiet == 2;
    }));
  }
  void Settle() {
    SettleWith([this] {
      const size_t count = events.size();
      platform::Event e;
      while (platform::ReceiveNextEvent(0, &e)) {
        events.push_back(e);
        platform::SendEventToEventTarget(&e, platform::GetEventDispatcherTarget());
      }
      return events.size() != count;
    });
  }
  // The display holds back what it has heard of a window's place.
  static bool WaitsForBounds() {
    for (const auto& [id, native] : platform::x11::x.windows)
      if (native->asked.patience != nullptr) return true;
    return false;
  }
  size_t Count(uint32_t cls, uint32_t kind) const {
    size_t n = 0;
    for (const platform::Event& e : events) n += e.cls == cls && e.kind == kind;
    return n;
  }
  const platform::Event* Last(uint32_t cls, uint32_t kind) const {
    for (size_t i = events.size(); i-- > 0;) {
      if (events[i].cls == cls && events[i].kind == kind) return &events[i];
    }
    return nullptr;
  }
  std::vector<platform::Event> events;

 private:
  std::unique_ptr<support::XServer> server_;
  std::unique_ptr<support::XUser> user_;
};

}  // namespace x11_test
