// The inspector as its clients see it: examples, which know nothing of it, are worked through its
// socket on both displays, and hostile clients do no harm.
#include <gtest/gtest.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/stat.h>

#include <fstream>
#include <memory>

#include "tests/displays/program.h"
#include "tests/os/scratch.h"
#include "tests/support/inspect_client.h"
#include "tests/support/picture.h"
#include "tests/support/x_server.h"
#include "toolkit/xw.h"

namespace {

using Client = support::InspectClient;
using support::Eventually;

testkit::Picture Decode(const std::string& answer, const std::string& file) {
  const std::string start = "\"png\":\"";
  const size_t at = answer.find(start);
  std::string bytes;
  uint32_t bits = 0, count = 0;
  for (size_t i = at + start.size(); at != std::string::npos && answer[i] != '"'; ++i) {
    static const std::string digits =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    if (answer[i] == '=') continue;
    bits = bits << 6 | uint32_t(digits.find(answer[i]));
    if ((count += 6) < 8) continue;
    count -= 8;
    bytes.push_back(char(bits >> count));
  }
  std::ofstream(file, std::ios::binary) << bytes;
  testkit::Picture picture;
  testkit::LoadPng(file, &picture);
  return picture;
}

class Inspect : public testing::TestWithParam<const char*> {
 protected:
  void SetUp() override {
    setenv("XW_FONTS", FONTS, 1);
    setenv("XW_INSPECT", path_.c_str(), 1);
    UseDisplay(GetParam());
  }
  void UseDisplay(const std::string& name) {
    if (name == "x11") {
      server_ = std::make_unique<support::XServer>(
          std::vector<std::string>{"-screen", "0", "1280x1024x24"});
      ASSERT_TRUE(server_->running() && server_->StartManager("openbox"));
    }
    setenv("XW_DISPLAY", name.c_str(), 1);
  }
  // Whether a client that runs as another user, and whom the file lets in, is not served. For root.
  bool TurnsOthersAway() {
    chmod(path_.c_str(), 0666);
    chmod(scratch_.path().c_str(), 0711);
    const pid_t other = fork();
    if (other == 0) {
      if (setuid(65534)) _exit(1);
      Client client(path_);
      _exit(!client.connected() || !client.Ask(R"("do":"tree")").empty());
    }
    int status = -1;
    waitpid(other, &status, 0);
    return status == 0;
  }
  std::string Example(const char* name) { return std::string(EXAMPLES) + "/" + name; }

  const Scratch scratch_;
  const std::string path_ = scratch_.At("socket");
  std::unique_ptr<support::XServer> server_;
};
INSTANTIATE_TEST_SUITE_P(Displays, Inspect, testing::Values("headless", "x11"));

TEST_P(Inspect, WorksAProgramWhoseRecordingShowsTheSame) {
  const std::string recording = scratch_.At("recording"), snapshot = scratch_.At("replay.png");
  setenv("XW_RECORD", recording.c_str(), 1);
  testkit::Picture shot;
  {
    Program dialog(Example("07-dialog"));
    Client client(path_);
    EXPECT_TRUE(client.Does(R"("do":"wait","role":"window","name":"Dialog")"));
    EXPECT_TRUE(client.Does(R"("do":"click","role":"button","name":"Print","modifiers":"shift")"));
    EXPECT_TRUE(client.Does(R"("do":"wait","name":"Item 1: 0","ms":10000)"));
    EXPECT_TRUE(client.Does(R"("do":"click","role":"pop-up-button","name":"Printer:")"));
    EXPECT_TRUE(client.Does(R"("do":"click","role":"menu-item","name":"Office")"));
    EXPECT_TRUE(
        client.Does(R"("do":"wait","role":"pop-up-button","name":"Printer:","value":"Office")"));
    const std::string copies = R"("role":"text-field","name":"Copies:")";
    EXPECT_TRUE(client.Does(R"("do":"key","key":"a","modifiers":"control",)" + copies));
    EXPECT_TRUE(client.Does(R"("do":"type","text":"2\u20AC)"
                            "\"," +
                            copies));
    EXPECT_TRUE(client.Does(R"("do":"key","key":"Home",)" + copies));
    EXPECT_TRUE(client.Does(R"("do":"type","text":"1",)" + copies));
    EXPECT_TRUE(client.Does(R"("do":"wait","value":"12€",)" + copies));
    EXPECT_TRUE(client.Does(R"("do":"key","key":"Down","role":"list","name":"Profile:")"));
    EXPECT_TRUE(client.Does(R"("do":"wait","name":"Office","gone":true)"));
    EXPECT_TRUE(
        client.Does(R"("do":"click","role":"window","name":"Dialog","button":3,"count":2)"));
    shot = Decode(client.Ask(R"("do":"shot")"), scratch_.At("shot.png"));
    const testkit::Picture part = Decode(
        client.Ask(R"("do":"shot","role":"check-box","name":"Hold")"), scratch_.At("part.png"));
    EXPECT_EQ(part.height, 16);
    EXPECT_EQ(dialog.End(), 0);
    EXPECT_EQ(access(path_.c_str(), F_OK), -1) << "the socket goes with the program";
  }
  EXPECT_EQ(shot.width, 420);
  const std::string raw = ReadFile(recording);
  EXPECT_NE(raw.find(" press w2 "), std::string::npos) << "in the menu";
  EXPECT_LT(raw.find(" modifiers "), raw.find(" press ")) << "the program hears of the key first";
  size_t ends = 0;
  for (size_t at = 0; (at = raw.find(" button=3", at)) != std::string::npos; ++at) ++ends;
  EXPECT_EQ(ends, 4u) << "two presses and releases";
  unsetenv("XW_RECORD");
  unsetenv("XW_INSPECT");
  setenv("XW_REPLAY", recording.c_str(), 1);
  setenv("XW_DISPLAY", "headless", 1);
  setenv("XW_SNAPSHOT", snapshot.c_str(), 1);
  EXPECT_EQ(Program(Example("07-dialog")).Wait(), 0);
  testkit::Picture replayed;
  ASSERT_TRUE(testkit::LoadPng(snapshot, &replayed));
  EXPECT_TRUE(testkit::SamePicture(replayed, shot));
}

class InspectHeadless : public Inspect {};
INSTANTIATE_TEST_SUITE_P(One, InspectHeadless, testing::Values("headless"));

TEST_P(InspectHeadless, SaysWhatIsWrongAndGoesOn) {
  Program dialog(Example("07-dialog"));
  Client client(path_);
  const std::string several = client.Fault(R"("do":"click","name":"Printer:")");
  EXPECT_NE(several.find("more than one"), std::string::npos) << several;
  EXPECT_NE(several.find("pop-up-button"), std::string::npos) << "they are listed: " << several;
  EXPECT_TRUE(client.Does(R"("do":"click","name":"Printer:","n":2)"));
  EXPECT_TRUE(client.Does(R"("do":"wait","name":"Wide format")"));
  EXPECT_TRUE(client.Does(R"("do":"key","key":"Escape")"));
  struct Case {
    const char *request, *fault;
  };
  const Case kCases[] = {
      {R"("do":"click","name":"Printer:","n":3)", "no node"},
      {R"("do":"click","name":"Quit")", "no node"},
      {R"("do":"click","role":"menu-bar")", "out of sight"},
      {R"("do":"click","role":"knob","name":"a")", "no role"},
      {R"("do":"click")", "a role or a name"},
      {R"("do":"click","name":"Print","button":6)", "button"},
      {R"("do":"click","name":"Print","count":1.5)", "count"},
      {R"("do":"click","name":"Print","text":"x")", "text"},
      {R"("do":"click","name":7)", "name"},
      {R"("do":"key","key":"Hyper")", "no key"},
      {R"("do":"key","key":"a","modifiers":"meta")", "no modifiers"},
      {R"("do":"type","text":"a\u0007")", "no key types"},
      {R"("do":"wait","name":"Print","value":"x","ms":1)", "has the value"},
      {R"("do":"wait","role":"button","name":"Print","gone":true,"ms":1)", "still there"},
      {R"("do":"tree","name":"Print")", "name"},
      {R"("do":"tree","":1)", "field"},
      {R"("do":"key","key":"a","n":2)", "\"n"},
      {R"("do":"dance")", "dance"},
      {R"()", "nothing to do"},
  };
  for (const Case& c : kCases) {
    const std::string fault = client.Fault(c.request);
    EXPECT_NE(fault.find(c.fault), std::string::npos) << c.request << ": " << fault;
  }
  EXPECT_TRUE(client.Does(R"("do":"tree")"));
  // A long text does not keep others waiting, and is answered when it is typed. All of them have
  // asked before the program looks.
  Client typist(path_);
  EXPECT_TRUE(typist.Does(R"("do":"tree")"));
  const std::string text(4000, 'x'), field = R"("role":"text-field","name":"Copies:")";
  const std::string look = "{\"do\":\"wait\"," + field + "}\n";
  dialog.Signal(SIGSTOP);
  typist.Send(R"({"do":"type","text":")" + text + "\"," + field + "}\n");
  typist.EndSending();
  client.Send(look + look + look + look);
  dialog.Signal(SIGCONT);
  std::string between;
  for (int i = 0; i < 4; ++i) between = client.Line();
  EXPECT_NE(between.find("xxx"), std::string::npos) << between;
  EXPECT_EQ(between.find(text), std::string::npos);
  EXPECT_EQ(typist.Line(), "{\"ok\":true}");
  client.Send(look);
  EXPECT_NE(client.Line().find('"' + text + '"'), std::string::npos);
}

TEST_P(InspectHeadless, HostileClientsHarmNobodyElse) {
  Program clock(Example("10-clock"));  // which is never idle for long
  Client good(path_);
  EXPECT_NE(good.Ask(R"("do":"tree")").find("\"value\""), std::string::npos) << "it is drawn";
  good.Send(std::string(65536 - 13, ' ') + "{\"do\":\"tree\"}\n");
  EXPECT_NE(good.Line().find("Clock"), std::string::npos) << "as long as a line may be";
  {
    Client odd(path_), greedy(path_), endless(path_);
    odd.Send("{\"do\":\"tree\",}\n{\"do\":\"tree\"}\n");
    EXPECT_NE(odd.Line().find("no request"), std::string::npos);
    EXPECT_EQ(odd.Line(), "");
    endless.Send("{\"do\":\"tree\"}\n" + std::string(70000, ' '));
    EXPECT_NE(endless.Line().find("\"tree\""), std::string::npos);
    EXPECT_NE(endless.Line().find("too long"), std::string::npos);
    EXPECT_EQ(endless.Line(), "");
    // It asks and never reads.
    std::string asks;
    for (int i = 0; i < 3000; ++i) asks += "{\"do\":\"shot\"}\n";
    greedy.Send(asks.substr(0, 60000));
    EXPECT_TRUE(good.Does(R"("do":"tree")"));
  }
  // Those that have gone, whatever they were waiting for, leave room for others.
  for (int i = 0; i < 7; ++i)
    Client(path_).Send("{\"do\":\"wait\",\"name\":\"never\",\"ms\":600000}\n");
  EXPECT_TRUE(Eventually(
      [&] { return Client(path_).Ask(R"("do":"tree")").find("Clock") != std::string::npos; }));
  Client half(path_);
  half.Send(std::string(
      "{\"do\":\"wait\",\"name\":\"never\",\"ms\":50}\n{\"do\":\"tree\"}\n{\"do\":\"tree\"}\n"));
  half.EndSending();
  EXPECT_NE(half.Line().find("no node"), std::string::npos);
  for (int i = 0; i < 2; ++i) EXPECT_NE(half.Line().find("Clock"), std::string::npos);
  EXPECT_EQ(half.Line(), "");
  std::vector<std::unique_ptr<Client>> many;
  for (int i = 0; i < 7; ++i) many.push_back(std::make_unique<Client>(path_));
  for (auto& client : many) EXPECT_TRUE(client->Does(R"("do":"tree")"));
  EXPECT_NE(Client(path_).Line().find("too many"), std::string::npos);
  many.pop_back();
  EXPECT_TRUE(good.Does(R"("do":"tree")"));
  EXPECT_EQ(clock.End(), 0);
}

int BeBusy(int type) {
  if (type == 1000) usleep(1000), XwSendEvent(Inp.window, 1000, 0, 0, 0);
  return 0;
}

TEST_P(InspectHeadless, AProgramThatNeverRestsIsServed) {
  const pid_t busy = fork();
  if (busy == 0) {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    XwSession("busy", "Busy", 7);
    XwSendEvent(XwCreate(0, 50, 50, 90, 90, BeBusy), 1000, 0, 0, 0);
    XwRunEventLoop();
  }
  EXPECT_NE(Client(path_).Ask(R"("do":"tree")").find("Busy"), std::string::npos);
  kill(busy, SIGKILL);
  waitpid(busy, nullptr, 0);
}

TEST_P(InspectHeadless, TheSocketIsTheUsersAndOneProgramsAtATime) {
  // What is there and is no socket stays.
  std::ofstream(path_) << "notes";
  setenv("XW_REPLAY", scratch_.File("nothing", "xw-record 1\n").c_str(), 1);
  EXPECT_EQ(Program(Example("07-dialog")).Wait(), 0) << "the program runs without";
  unsetenv("XW_REPLAY");
  EXPECT_EQ(ReadFile(path_), "notes");
  unlink(path_.c_str());
  Program first(Example("07-dialog"));
  {
    Client client(path_);
    struct stat socket;
    ASSERT_EQ(stat(path_.c_str(), &socket), 0);
    EXPECT_EQ(socket.st_mode & 0777, 0600u);
    EXPECT_TRUE(geteuid() || TurnsOthersAway());
    // Another program does not take it away, also when it ends.
    Program second(Example("05-fields"));
    EXPECT_TRUE(client.Does(R"("do":"wait","name":"Dialog")"));
  }
  EXPECT_NE(Client(path_).Ask(R"("do":"tree")").find("Dialog"), std::string::npos);
  // What a crash has left behind is replaced; signals leave nothing.
  EXPECT_EQ(first.End(SIGKILL), -1);
  EXPECT_EQ(access(path_.c_str(), F_OK), 0);
  for (int signal : {SIGINT, SIGHUP}) {
    Program third(Example("05-fields"));
    EXPECT_NE(Client(path_).Ask(R"("do":"tree")").find("Fields"), std::string::npos);
    EXPECT_EQ(third.End(signal), -1);
    EXPECT_EQ(access(path_.c_str(), F_OK), -1) << signal;
  }
  // Nor is another program's taken away, which has replaced it.
  Program fourth(Example("05-fields"));
  EXPECT_TRUE(Client(path_).Does(R"("do":"tree")"));
  unlink(path_.c_str());
  std::ofstream(path_) << "another";
  EXPECT_EQ(fourth.End(), 0);
  EXPECT_EQ(ReadFile(path_), "another");
}

}  // namespace
