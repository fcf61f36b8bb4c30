// The selected document's preview in the window: device pixel by device pixel, and always that of
// the document that is selected now.
#include "app/work/preview.h"

#include <fcntl.h>
#include <sys/stat.h>

#include "tests/app/console_fixture.h"
#include "tests/app/documents.h"
#include "tests/printserverd/daemon.h"

namespace console {
namespace {

class PreviewPaneTest : public ConsoleTest {
 protected:
  void SetUp() override {
    ConsoleTest::SetUp();
    PreviewMaker::program = PREVIEW;
    WritePng(home_.At("picture.png"), {.width = 1201, .height = 901});
    home_.File("broken.png", "\x89PNG\r\n\x1A\n");
  }
  void TearDown() override {
    ConsoleTest::TearDown();
    EXPECT_EQ(BackgroundTask::WaitForAll(30000), 0);
    PreviewMaker::program.clear();
  }
  // The selected document has another preview than that one.
  bool HasNew(const std::shared_ptr<const Preview>& old) {
    return Until([&] { return c_->details.preview && c_->details.preview != old; });
  }
  // Whether it is as large as its place allows.
  bool Fills(const Preview& p, int scale) const {
    const Area box = c_->details.PictureArea();
    return p.width <= scale * box.w && p.height <= scale * box.h &&
           (p.width == scale * box.w || p.height == scale * box.h);
  }
  // Whether the window shows it in the middle of its place, each pixel as one of the screen's.
  void ExpectShown(const Preview& p, int scale) {
    const Area box = c_->details.PictureArea();
    const int width = (p.width + scale - 1) / scale, height = (p.height + scale - 1) / scale;
    const int left = (box.x + (box.w - width) / 2) * scale;
    const int top = (box.y + (box.h - height) / 2 + platform::GetMBarHeight()) * scale;
    XwPush(c_->window);
    XwSync();
    XwPop();
    const auto shown = display::TakePicture(static_cast<platform::WindowRef>(c_->window->platform));
    for (int y = 0; y < p.height; ++y)
      for (int x = 0; x < p.width; ++x) {
        const uint8_t* rgb = &p.pixels[size_t(y * p.width + x) * 4];
        const uint32_t pixel = shown.pixels[size_t((top + y) * shown.width + left + x)] & 0xFFFFFF;
        ASSERT_EQ(pixel, uint32_t(rgb[1] << 16 | rgb[2] << 8 | rgb[3])) << x << " " << y;
      }
  }
};

TEST_F(PreviewPaneTest, FollowsTheSelectionTheFileAndTheScreen) {
  Open("127.0.0.9:1");
  Click(FileRow("picture.png"));
  ASSERT_TRUE(HasNew(nullptr));
  auto preview = c_->details.preview;
  EXPECT_EQ(KindWords(*preview), "PNG picture");
  EXPECT_TRUE(Fills(*preview, 1));
  ExpectShown(*preview, 1);
  display::ChangeScreen(2560, 2048, 2);
  ASSERT_TRUE(HasNew(preview));
  preview = c_->details.preview;
  EXPECT_TRUE(Fills(*preview, 2));
  ExpectShown(*preview, 2);

  // The file is written again, with an odd number of pixels that are half as large as the window's.
  WritePng(home_.At("picture.png"), {.width = 301, .height = 33});
  ASSERT_TRUE(HasNew(preview));
  preview = c_->details.preview;
  EXPECT_EQ(preview->width, 301);
  ExpectShown(*preview, 2);

  // What is damaged costs its own picture, and no other document's stands in its place.
  Click(FileRow("broken.png"));
  EXPECT_NE(c_->details.preview, preview);
  ASSERT_TRUE(HasNew(preview));
  EXPECT_EQ(TroubleWords(*c_->details.preview), "This document is damaged");
  Click(FileRow("picture.png"));
  Click(FileRow("letter.txt"));
  ASSERT_TRUE(HasNew(nullptr));
  EXPECT_EQ(c_->details.preview->request.path, home_.At("letter.txt"));
  Click(FileRow("picture.png"));
  Click(FileRow("Empty"));
  EXPECT_EQ(c_->previews.request(), nullptr);
  EXPECT_EQ(c_->details.preview, nullptr);
}

TEST_F(PreviewPaneTest, KeysGoThroughThePages) {
  constexpr uint32_t kHome = 0xFF50, kPageUp = 0xFF55, kPageDown = 0xFF56, kEnd = 0xFF57;
  // Nothing has the height of its last page.
  home_.File("pages.pdf", PdfOf(3, 0, 9000000));
  Open("127.0.0.9:1");
  const auto shows = [this](int page) {
    return Until([&] { return c_->details.preview && c_->details.preview->request.page == page; });
  };
  Click(FileRow("pages.pdf"));
  ASSERT_TRUE(shows(1));
  Click(c_->details.PictureArea());
  for (int i = 0; i < 4; ++i) Key(kPageDown);
  EXPECT_TRUE(shows(3));
  EXPECT_EQ(TroubleWords(*c_->details.preview), "Page 3 cannot be shown");
  Key(kPageUp);
  EXPECT_TRUE(shows(2));
  EXPECT_EQ(TroubleWords(*c_->details.preview), "");
  Key(kHome);
  EXPECT_TRUE(shows(1));
  Key(kEnd);
  EXPECT_TRUE(shows(3));
  // Another document begins at its first page.
  Click(FileRow("picture.png"));
  Click(FileRow("pages.pdf"));
  EXPECT_TRUE(shows(1));
  EXPECT_EQ(c_->details.page, 1);
  // In a wide pane the facts make room for a page.
  const int height = c_->details.PictureArea().h;
  c_->panes.details_width = 560;
  LayOutWindow(c_);
  DrawConsole(c_);
  const int beside = c_->details.PictureArea().h;
  EXPECT_GT(beside, height);
  // The file is written again, with pages that are wide.
  home_.File("pages.pdf", PdfOf(3, 90));
  EXPECT_TRUE(Until([&] { return c_->details.PictureArea().h < beside; }));
}

TEST_F(PreviewPaneTest, AJobShowsTheFileThatWasSentAsLongAsItIsTheSame) {
  testing_daemon::Daemon daemon;
  daemon.Start({"--rate", "1"});
  Open(daemon.host());
  ASSERT_TRUE(Until([&] { return IsReady(); }));
  Click(FileRow("picture.png"));
  for (int i = 0; i < 2; ++i) PrintSelected(c_);
  DrawConsole(c_);
  ASSERT_TRUE(Until([&] { return c_->state.transfers.empty() && c_->state.jobs->size() == 2; }));
  Turn(2);
  const auto choose_job = [this] {
    Click(c_->queue.table.RowArea(0));
    Until([&] { return c_->details.preview && !c_->previews.request(); });
    return c_->details.preview ? c_->details.preview->trouble : PreviewTrouble::kNoProgram;
  };
  EXPECT_EQ(choose_job(), PreviewTrouble::kNone);
  EXPECT_EQ(c_->previewed.request.path, home_.At("picture.png"));
  EXPECT_TRUE(Fills(*c_->details.preview, 1));
  SetFocusStop(c_, FocusStop::kDetails);
  DrawConsole(c_);
  EXPECT_TRUE(c_->details.jobs) << "the details tell of the same where they have the keyboard";
  SetFocusStop(c_, FocusStop::kQueue);
  c_->queue.selection.All();
  DrawConsole(c_);
  EXPECT_TRUE(c_->details.PictureArea().Empty()) << "several have none";
  // Another file of the same name and size is not what was sent.
  Click(FileRow("letter.txt"));
  const std::string path = home_.At("picture.png");
  struct stat sent {};
  ASSERT_EQ(stat(path.c_str(), &sent), 0);
  timespec times[2] = {sent.st_atim, {sent.st_mtim.tv_sec, sent.st_mtim.tv_nsec ^ 4096}};
  ASSERT_EQ(utimensat(AT_FDCWD, path.c_str(), times, 0), 0);
  EXPECT_EQ(choose_job(), PreviewTrouble::kChanged);
  // Nor is one of another size that was written at that time.
  Click(FileRow("letter.txt"));
  std::filesystem::resize_file(path, size_t(sent.st_size) - 1);
  times[1] = sent.st_mtim;
  ASSERT_EQ(utimensat(AT_FDCWD, path.c_str(), times, 0), 0);
  EXPECT_EQ(choose_job(), PreviewTrouble::kChanged);
  // What somebody else has sent has none.
  c_->sent.clear();
  SelectionChanged(c_, false);
  DrawConsole(c_);
  EXPECT_EQ(c_->details.preview, nullptr);
  EXPECT_TRUE(c_->details.PictureArea().Empty());
}

}  // namespace
}  // namespace console
