// A console on the headless display, with stepped time, a home folder with files in it, and a user.
#pragma once
#include <gtest/gtest.h>
#include <unistd.h>

#include <functional>
#include <string>

#include "app/window/console.h"
#include "platform/access/access.h"
#include "platform/display/headless/headless.h"
#include "platform/events/timers.h"
#include "platform/windows/windows.h"
#include "tests/os/scratch.h"

namespace console {

namespace display = platform::headless;

constexpr const char* kFolder = "Aufträge für Größe B";
constexpr const char* kLongName =
    "Überlänge – ein sehr langer Dateiname mit Umlauten äöü, Akzenten éèê und 日本語 darin, damit "
    "jede Spalte ihn kürzen muss, und noch etwas mehr, weil Namen so sind (Kopie 2).pdf";

inline std::string Bytes(size_t n) {
  std::string bytes(n, 0);
  uint32_t x = 12345;
  for (char& c : bytes) c = char((x = x * 1664525 + 1013904223) >> 24);
  return bytes;
}

// Of the described tree; an empty one when nothing has that name.
inline platform::DescribedNode Node(const std::string& name) {
  const auto find =
      [&](const auto& self,
          const std::vector<platform::DescribedNode>& nodes) -> const platform::DescribedNode* {
    for (const platform::DescribedNode& n : nodes) {
      if (n.what.name == name) return &n;
      if (const platform::DescribedNode* found = self(self, n.children)) return found;
    }
    return nullptr;
  };
  const auto roots = platform::DescribeTree();
  const platform::DescribedNode* n = find(find, roots);
  return n ? *n : platform::DescribedNode();
}

inline int Pump(int type) {
  return type;
}

class ConsoleTest : public testing::Test {
 protected:
  void SetUp() override {
    setenv("XW_DISPLAY", "headless", 1);
    document_ = Bytes(300000);
    home_.Folder(kFolder);
    home_.Folder("Empty");
    home_.File(std::string(kFolder) + "/" + kLongName, document_);
    home_.File(std::string(kFolder) + "/second.txt", "a few words\n");
    home_.File("letter.txt", Bytes(100000));  // more than a slow printer prints in a test
  }

  // After this the console is shown; its window's own time runs when the test lets it.
  void Open(const std::string& host, Remembered remembered = {}) {
    setenv("HOME", home_.path().c_str(), 1);
    setenv("USER", "mia", 1);
    display::UseSteppedClock(1000);
    XwSession("Quorvik", "Quorvik", 7);
    const std::string folder = remembered.preferences.folder;
    c_ = OpenConsole(host, folder.empty() ? home_.path() : folder, std::move(remembered));
    ASSERT_NE(c_, nullptr);
    // Wakes the loop, so that the test gets a turn each twenty milliseconds of stepped time.
    pump_ = XwCreate(0, 0, 0, 50, 50, Pump);
    XwTimer(pump_, 1, 20);
    Turn();
    EXPECT_TRUE(HasRead());
  }
  void TearDown() override { CloseConsole(c_); }

  void Turn(int times = 1) {
    while (times-- > 0) XwWaitEvent(nullptr);
  }
  // Real time passes only here; the number of turns is a limit, not a measure.
  bool Until(const std::function<bool()>& holds) {
    for (int i = 0; i < 30000; ++i) {
      if (holds()) return true;
      usleep(1000);
      Turn();
    }
    return holds();
  }
  void Click(const Area& a) { ClickAt(a.x + a.w / 2, a.y + a.h / 2); }
  void ClickAt(int x, int y) {
    display::Click(c_->window->x + x, c_->window->y + y);
    Turn(2);
  }
  void Key(uint32_t keysym, uint32_t unicode = 0) {
    display::KeyDown(keysym, unicode);
    display::KeyUp(keysym, unicode);
    Turn(2);
  }
  Area FileRow(const char* name) { return c_->files.table.RowArea(c_->files.folder.Find(name)); }
  // Until what was asked for has been read.
  bool HasRead() {
    return Until([&] { return !c_->reader.request(); });
  }
  void Enter(const std::string& path, const std::string& select = "") {
    EnterFolder(c_, path, select);
    EXPECT_TRUE(HasRead());
  }
  std::string Selected() {
    const int row = c_->files.table.selected();
    return row < 0 ? "" : c_->files.folder.At(row).name;
  }
  bool IsReady() { return c_->state.link == Link::kReady && !c_->state.printers->empty(); }

  uint32_t At(int x, int y) {
    const auto native = static_cast<platform::WindowRef>(c_->window->platform);
    XwPush(c_->window);
    XwSync();
    XwPop();
    const display::Picture p = display::TakePicture(native);
    const int bar = p.height - c_->window->height;
    return p.pixels[size_t(y + bar) * size_t(p.width) + size_t(x)] & 0xFFFFFF;
  }
  uint32_t LinkColor() {
    const Area s = c_->layout.status;
    return At(s.x + 16, s.y + s.h / 2);
  }

  Scratch home_;
  std::string document_;
  const FolderReader::Read usual_read_ = FolderReader::read;
  Console* c_ = nullptr;
  XwWindow* pump_ = nullptr;
  platform::EventLoopTimerRef answering_ = nullptr;
};

}  // namespace console
