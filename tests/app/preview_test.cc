// Previews of documents that are as they should be, of broken ones, and of those that never end.
#include "app/work/preview.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cmath>
#include <cstring>
#include <functional>
#include <random>

#include "app/work/spawn.h"
#include "tests/app/documents.h"
#include "tests/os/scratch.h"

namespace console {
namespace {

class PreviewTest : public testing::Test {
 protected:
  void SetUp() override { PreviewMaker::program = PREVIEW; }
  void TearDown() override {
    maker_.Drop();
    EXPECT_EQ(BackgroundTask::WaitForAll(30000), 0);
    EXPECT_FALSE(HasChild());
    PreviewMaker::program.clear();
    PreviewMaker::patience_ms = usual_patience_;
  }
  static bool HasChild() {
    siginfo_t info;
    return waitid(P_ALL, 0, &info, WEXITED | WNOHANG | WNOWAIT) == 0;
  }
  Preview Of(const std::string& path, int side = 300, int page = 1) {
    maker_.Ask({path, side, side, 0, 0, page});
    EXPECT_TRUE(maker_.WaitFor(50000));
    const auto preview = maker_.Take();
    return preview ? *preview : Preview{};
  }
  // The program itself; `from` reads what it writes.
  static Child StartOn(const std::string& path, const char* side, int* from) {
    int ends[2];
    EXPECT_EQ(pipe2(ends, O_CLOEXEC), 0);
    const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    Program program;
    program.words = {PREVIEW, side, side};
    program.input = file;
    program.output = ends[1];
    const Child child = Start(program);
    close(file);
    close(ends[1]);
    *from = ends[0];
    return child;
  }
  // "wbww": which quarters of the picture are black.
  static std::string Quarters(const Preview& p) {
    std::string text;
    for (const int place : {0, 1, 2, 3}) {
      const int x = p.width * (1 + 2 * (place % 2)) / 4, y = p.height * (1 + 2 * (place / 2)) / 4;
      const uint8_t* pixel = &p.pixels[size_t(y * p.width + x) * 4];
      const int light = pixel[1] + pixel[2] + pixel[3];
      text += light < 60 ? 'b' : light > 700 ? 'w' : '?';
    }
    return text;
  }

  Scratch files_;
  PreviewMaker maker_;
  const int usual_patience_ = PreviewMaker::patience_ms;
};

TEST_F(PreviewTest, PicturesAreShownAsTheyAreMeant) {
  struct Case {
    const char* what;
    std::function<void(const std::string&)> write;
    const char *kind, *colours, *size;
    int pages, width, height;
    const char* quarters;
  };
  const Case cases[] = {
      {"small", [](auto& p) { WritePng(p, {}); }, "PNG picture", "RGB", "60 × 40 pixels", 1, 60, 40,
       "bwww"},
      {"seen through",
       [](auto& p) { WritePng(p, {.width = 1200, .height = 400, .opacity = true}); }, "PNG picture",
       "RGB, transparent", "1,200 × 400 pixels", 1, 300, 100, "bwww"},
      {"one colour seen through",
       [](auto& p) { WritePng(p, {.width = 1200, .height = 400, .indexed = true}); }, "PNG picture",
       "indexed colours, transparent", "1,200 × 400 pixels", 1, 300, 100, "bwww"},
      {"turned camera",
       [](auto& p) { WriteJpeg(p, {.width = 600, .height = 400, .orientation = 6}); },
       "JPEG picture", "RGB", "67.7 × 102 mm", 1, 200, 300, "wbww"},
      {"mirrored and turned",
       [](auto& p) { WriteJpeg(p, {.width = 600, .height = 400, .orientation = 7}); },
       "JPEG picture", "RGB", "67.7 × 102 mm", 1, 200, 300, "wwwb"},
      {"inks", [](auto& p) { WriteJpeg(p, {.width = 1200, .height = 300, .inks = true}); },
       "JPEG picture", "CMYK", "203 × 50.8 mm", 1, 300, 75, "bwww"},
      {"poster", [](auto& p) { WriteJpeg(p, {.dots = 1}); }, "JPEG picture", "RGB",
       "1,524 × 1,016 mm", 1, 60, 40, "bwww"},
      {"dust", [](auto& p) { WriteJpeg(p, {.dots = 65535}); }, "JPEG picture", "RGB",
       "60 × 40 pixels", 1, 60, 40, "bwww"},
      {"upside down", [](auto& p) { WriteTiff(p, {.bits = 1, .orientation = 3, .pages = 3}); },
       "TIFF picture", "black and white", "5.1 × 3.4 mm", 3, 60, 40, "wwwb"},
      {"deep inks", [](auto& p) { WriteTiff(p, {.bits = 16, .inks = true, .orientation = 8}); },
       "TIFF picture", "CMYK", "3.4 × 5.1 mm", 1, 40, 60, "wwbw"},
      {"wide", [](auto& p) { WriteTiff(p, {.width = 900, .height = 3}); }, "TIFF picture", "RGB",
       "76.2 × 0.3 mm", 1, 300, 1, "?w?w"},
      {"metric", [](auto& p) { WriteTiff(p, {.metric = true}); }, "TIFF picture", "RGB",
       "2 × 1.3 mm", 1, 60, 40, "bwww"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    c.write(files_.At("picture"));
    const Preview p = Of(files_.At("picture"));
    EXPECT_EQ(TroubleWords(p), "");
    EXPECT_EQ(KindWords(p), c.kind);
    EXPECT_EQ(ColourWords(p), c.colours);
    EXPECT_EQ(SizeWords(p), c.size);
    EXPECT_EQ(p.pages, c.pages);
    ASSERT_EQ(p.width, c.width);
    ASSERT_EQ(p.height, c.height);
    EXPECT_EQ(Quarters(p), c.quarters);
  }
  // Five pixels into three: the middle one of those that come out takes a part of three.
  WritePng(files_.At("picture"), {.width = 5, .height = 5});
  const Preview p = Of(files_.At("picture"), 3);
  ASSERT_EQ(p.pixels.size(), 36u);
  EXPECT_EQ(p.pixels[1], 0);
  EXPECT_EQ(p.pixels[5], 204);  // a fifth of it black
  EXPECT_EQ(p.pixels[9], 255);
  EXPECT_EQ(p.pixels[13], 204);  // the same in the row below
  EXPECT_EQ(p.pixels[33], 255);
}

TEST_F(PreviewTest, PagesAreDrawnByTheProgramsOfThePdfLibrary) {
  Preview p = Of(files_.File("a.pdf", PdfOf(3, 0)));
  EXPECT_EQ(TroubleWords(p), "");
  EXPECT_EQ(KindWords(p) + ", " + SizeWords(p), "PDF document, 210 × 297 mm");
  EXPECT_EQ(p.pages, 3);
  EXPECT_EQ(p.height, 300);
  p = Of(files_.File("b.pdf", "a letter's head\n" + PdfOf(1, 90)));
  EXPECT_EQ(SizeWords(p), "297 × 210 mm");
  EXPECT_EQ(p.width, 300);
  // The bar is at the right now.
  ASSERT_FALSE(p.pixels.empty());
  EXPECT_LT(p.pixels[size_t(p.height / 2 * p.width + p.width - 5) * 4 + 1], 20);
  p = Of(files_.File("d.pdf", PdfOf(2, 0, 421)), 300, 2);
  EXPECT_EQ(std::to_string(p.pages) + ", " + SizeWords(p), "2, 210 × 149 mm");
  EXPECT_EQ(p.width, 300);
  EXPECT_EQ(TroubleWords(Of(files_.File("c.pdf", "%PDF-1.4\nnothing else"))),
            "This PDF is damaged, or locked by a password");
  // Where they are missing that is a line of text. What is there of them has our limits.
  files_.Folder("bin");
  setenv("PATH", files_.At("bin").c_str(), 1);
  EXPECT_EQ(TroubleWords(Of(files_.At("a.pdf"))), "No preview: pdftoppm is not installed");
  files_.File("bin/pdfinfo",
              "#!/bin/sh\n"
              "n=$(/bin/sed -n 's/^NoNewPrivs:[^0-9]*//p' /proc/$$/status)\n"
              "echo \"Pages: $n$(ulimit -t)\"\n"
              "echo \"Page    1 size:  100 x 100 pts\"\n");
  chmod(files_.At("bin/pdfinfo").c_str(), 0700);
  p = Of(files_.At("a.pdf"));
  EXPECT_EQ(p.pages, 110);
  EXPECT_EQ(TroubleWords(p), "No preview: pdftoppm is not installed");
}

TEST_F(PreviewTest, TextsOfEachEncodingAndWhatIsNone) {
  using namespace std::literals;
  const struct {
    std::string content;
    std::vector<std::string> lines;
    const char* trouble;
  } cases[] = {
      {"\xEF\xBB\xBFGr\xC3\xBC\xC3\x9F"
       "e\ta\r\n\r\nb",
       {"Grüße   a", "", "b"},
       ""},
      {"Gr\xFC\xDF"
       "e\x1B[0m",
       {"Grüße [0m"},
       ""},
      {"\xFF\xFE\xFC\0\x3D\xD8\0\xDE"s, {"ü😀"}, ""},
      {"\xFE\xFF\xD8\x3D\0a"s, {"\uFFFDa"}, ""},
      {"\xC3\xA4\n" + std::string(65532, 'x') + "\xC3\xA4", {"ä", std::string(400, 'x')}, ""},
      {"twenty letters and a \0zero\x01"s, {}, "No preview of this kind of document"},
      {"some forty letters, more than a line has,\0and a zero\n"s,
       {"some forty letters, more than a line has, and a zero"},
       ""},
      {"", {}, "This file is empty"},
  };
  for (const auto& c : cases) {
    const Preview p = Of(files_.File("text", c.content));
    EXPECT_EQ(p.lines, c.lines);
    EXPECT_EQ(TroubleWords(p), c.trouble);
  }
  mkfifo(files_.At("pipe").c_str(), 0600);
  for (const std::string& path : {files_.At("pipe"), files_.path(), files_.At("missing")})
    EXPECT_EQ(TroubleWords(Of(path)), "This document cannot be read") << path;
  PreviewMaker::program = files_.At("missing");
  EXPECT_EQ(TroubleWords(Of(files_.At("text"))), "No preview could be made");
  PreviewMaker::program = "/usr/bin/yes";  // writes more than any preview has
  EXPECT_EQ(TroubleWords(Of(files_.At("text"))), "This document is damaged");
}

// Whatever a file holds, the program ends by itself, and what it says can be read.
TEST_F(PreviewTest, BrokenFilesAreNoFaults) {
  std::mt19937 random(7);
  const std::function<void(const std::string&)> writers[] = {
      [](auto& p) { WritePng(p, {.opacity = true}); },
      [](auto& p) { WriteJpeg(p, {.inks = true, .orientation = 5}); },
      [](auto& p) { WriteJpeg(p, {.progressive = true}); },
      [](auto& p) { WriteTiff(p, {.bits = 16, .inks = true, .pages = 2}); },
      [](auto& p) { WriteTiff(p, {.orientation = 5}); },
  };
  for (const auto& write : writers) {
    write(files_.At("whole"));
    const std::string whole = ReadFile(files_.At("whole"));
    for (int round = 0; round < 25; ++round) {
      std::string broken = whole.substr(0, round % 3 ? whole.size() : random() % whole.size());
      for (int i = 0; i < 1 + round / 5 && !broken.empty(); ++i)
        broken[random() % broken.size()] = char(random());
      int from = -1;
      Child child = StartOn(files_.File("broken", broken), "100", &from);
      std::string said;
      char piece[65536];
      for (ssize_t got; (got = read(from, piece, sizeof piece)) > 0;)
        said.append(piece, size_t(got));
      close(from);
      EXPECT_EQ(child.Wait(), 0);
      Preview preview;
      preview.request = {"", 100, 100};
      EXPECT_TRUE(ReadPreview(said, &preview));
      if (HasFailure()) FAIL() << "round " << round << " of a file of " << whole.size() << " bytes";
    }
  }
}

// A reader that does not take its picture finds it waiting, with nothing left that it could do.
TEST_F(PreviewTest, DecodersAreConfined) {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
  GTEST_SKIP() << "a sanitizer needs more than is left";
#endif
  WritePng(files_.At("picture"), {.width = 400, .height = 400});
  int from = -1;
  Child child = StartOn(files_.At("picture"), "400", &from);
  const std::string folder = "/proc/" + std::to_string(child.pid());
  pollfd one = {from, POLLIN, 0};
  EXPECT_EQ(poll(&one, 1, -1), 1);
  const std::string status = ReadFile(folder + "/status"), limits = ReadFile(folder + "/limits");
  EXPECT_NE(status.find("NoNewPrivs:\t1"), std::string::npos) << status;
  EXPECT_NE(status.find("Seccomp:\t2"), std::string::npos) << status;
  EXPECT_NE(limits.find("536870912            536870912            bytes"), std::string::npos)
      << limits;
  child.Kill();
  close(from);
}

TEST_F(PreviewTest, MemoryIsLimited) {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
  GTEST_SKIP() << "a sanitizer lays out more than the limit";
#endif
  WriteJpeg(files_.At("picture"), {.progressive = true});
  std::string bytes = ReadFile(files_.At("picture"));
  const size_t frame = bytes.find("\xFF\xC2");
  ASSERT_NE(frame, std::string::npos);
  // A header that asks for some gigabytes.
  bytes.replace(frame + 5, 4, "\x70\x00\x70\x00", 4);
  EXPECT_EQ(TroubleWords(Of(files_.File("picture", bytes))),
            "This picture is too large for a preview");
}

TEST_F(PreviewTest, WhatNeverEndsIsEnded) {
  files_.File("document", "x");
  PreviewMaker::program = "/bin/sleep";  // for as many seconds as the picture has pixels
  PreviewMaker::patience_ms = 50;
  EXPECT_EQ(TroubleWords(Of(files_.At("document"))), "A preview would take too long");
  PreviewMaker::patience_ms = usual_patience_;
  bool told = false;
  maker_.Ask({files_.At("document"), 300, 300}, [&told] { told = true; });
  while (!HasChild()) usleep(1000);
  maker_.Drop();
  EXPECT_EQ(BackgroundTask::WaitForAll(30000), 0);
  EXPECT_FALSE(HasChild());
  EXPECT_FALSE(told);
  EXPECT_EQ(maker_.Take(), nullptr);
  // The one that was asked for last is made, and told.
  PreviewMaker::program = PREVIEW;
  std::atomic<int> told_times = 0;
  for (int i = 0; i < 5; ++i)
    maker_.Ask({files_.File("document", std::to_string(i)), 300, 300}, [&] { ++told_times; });
  ASSERT_TRUE(maker_.WaitFor(50000));
  EXPECT_EQ(maker_.Take()->lines, std::vector<std::string>{"4"});
  EXPECT_EQ(BackgroundTask::WaitForAll(30000), 0);
  EXPECT_GE(told_times, 1);
}

// What a decoder that was taken over could write.
TEST(PreviewResult, NothingIsBelieved) {
  const auto reads = [](PreviewHeader h, size_t pixels) {
    std::string bytes(sizeof h + pixels, 'x');
    memcpy(bytes.data(), &h, sizeof h);
    Preview preview;
    preview.request = {"", 10, 10};
    return ReadPreview(bytes, &preview);
  };
  EXPECT_TRUE(reads({.width = 2, .height = 3}, 24));
  EXPECT_FALSE(reads({.width = 2, .height = 3}, 23));
  EXPECT_FALSE(reads({.magic = 7}, 0));
  EXPECT_FALSE(reads({.kind = DocumentKind(99)}, 0));
  EXPECT_FALSE(reads({.trouble = PreviewTrouble(99)}, 0));
  EXPECT_FALSE(reads({.colours = Colours(99)}, 0));
  EXPECT_FALSE(reads({.pages = -1}, 0));
  EXPECT_FALSE(reads({.width = 11, .height = 1}, 44));
  EXPECT_FALSE(reads({.width = -2, .height = -3}, 24));
  EXPECT_FALSE(reads({.text_size = -4}, 0));
  EXPECT_FALSE(reads({.width_mm = std::nan("")}, 0));
}

}  // namespace
}  // namespace console
