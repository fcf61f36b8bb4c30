// From a key to the picture that shows what it did, answered by the server of the display: Down in
// the table that has the keyboard of a console, which runs here on an X server of the bench's own.
// A second thread presses the key (XTEST) at irregular moments, while the console has nothing to do
// and while it has much: a document of 1 GB is being sent, previews of large documents are made, a
// folder of 100,000 files is open, changes and is read again, the queue has 4,000 jobs and gets
// more. Everything that holds up the main thread counts. On a busy machine most of a long time is
// waiting for a processor: each is told again without what the main thread and the X server have
// waited for one, and beside it what the main thread has used of one.
//   response [KEYS [SITUATION]]    so many each time, 300 when no number is given; in all of
//                                  idle, sending, previews, files, jobs, or in one
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <xcb/xcb.h>
#include <xcb/xtest.h>

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <functional>
#include <mutex>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "app/window/console.h"
#include "bench/clock.h"
#include "bench/daemon.h"
#include "bench/documents.h"
#include "bench/server.h"

namespace {

using console::Console;

constexpr int kManyFiles = 100000, kManyJobs = 4000;
constexpr uint8_t kHomeKey = 110, kDownKey = 116;  // in the server's default keymap
constexpr auto kLongest = std::chrono::seconds(30);

Console* c;
XwHandler usual;
clockid_t processor;  // of the main thread

double Processor() {
  timespec t{};
  clock_gettime(processor, &t);
  return double(t.tv_sec) * 1e6 + double(t.tv_nsec) * 1e-3;
}

std::vector<std::string> schedulings;  // files: of the main thread, and of the X server

// Microseconds that those were ready and waited for a processor, since they began.
double Waited() {
  double sum = 0;
  for (const std::string& path : schedulings) {
    double ran = 0, waited = 0;
    std::ifstream(path) >> ran >> waited;
    sum += waited * 1e-3;
  }
  return sum;
}

// --- What the thread that presses keys and the console's tell each other

struct Meeting {
  std::mutex lock;
  std::condition_variable met;
  bool waits = false;   // for the picture of a key, or for what is to be done
  double answered = 0;  // microseconds
  std::function<void()> work;
};
Meeting meeting;
std::atomic<bool> sends = false;

void Answer() {
  const std::lock_guard<std::mutex> guard(meeting.lock);
  meeting.answered = Microseconds();
  meeting.waits = false;
  meeting.met.notify_all();
}

// The console's handler, and after a key its picture.
int Watch(int type) {
  const int result = usual(type);
  sends = !c->state.transfers.empty();
  if (type != XWE_DOWN && type != XWE_HOME) return result;
  XwPush(c->window);
  XwSync();
  XwPop();
  Answer();
  return result;
}

void Await(std::unique_lock<std::mutex>* guard, const char* what) {
  if (meeting.met.wait_for(*guard, kLongest, [] { return !meeting.waits; })) return;
  fprintf(stderr, "response: no answer to %s\n", what);
  _exit(1);
}

// Does it on the console's thread.
void Do(std::function<void()> work) {
  std::unique_lock<std::mutex> guard(meeting.lock);
  meeting.work = std::move(work);
  meeting.waits = true;
  XwPost(
      ".bench", nullptr,
      [](void*, int taken) {
        if (taken) meeting.work();
        Answer();
      },
      nullptr);
  Await(&guard, "what was to be done");
}

// Until it holds on the console's thread.
void Until(const char* what, const std::function<bool()>& holds) {
  const double end = Microseconds() + 60e6;
  for (bool held = false; !held;) {
    Do([&] { held = holds(); });
    if (Microseconds() > end) Die(what);
    if (!held) usleep(10000);
  }
}

// --- The user

class User {
 public:
  explicit User(int keys) : keys_(keys) {}
  ~User() { xcb_disconnect(connection_); }

  void Press(uint8_t key) {
    std::unique_lock<std::mutex> guard(meeting.lock);
    meeting.waits = true;
    const double start = Microseconds(), used = Processor(), waited = Waited();
    for (const uint8_t type : {XCB_KEY_PRESS, XCB_KEY_RELEASE})
      xcb_test_fake_input(connection_, type, key, XCB_CURRENT_TIME, XCB_NONE, 0, 0, 0);
    xcb_flush(connection_);
    Await(&guard, "a key");
    const double time = meeting.answered - start;
    times_.push_back(time / 1e3);
    alone_.push_back(std::max(0.0, time - (Waited() - waited)) / 1e3);
    works_.push_back((Processor() - used) / 1e3);
  }
  // Down again and again, from the first row, as long as `goes_on`; then prints a line.
  void Measure(
      const char* name, const std::function<bool()>& goes_on = [] { return true; }) {
    Press(kHomeKey);
    times_.clear();
    alone_.clear();
    works_.clear();
    for (int i = 0; i < keys_ && goes_on(); ++i) {
      usleep(useconds_t(15000 + random_() % 25000));
      Press(kDownKey);
    }
    int row = 0;
    Do([&row] { row = (console::IsInQueue(c->stop) ? c->queue.table : c->files.table).focus(); });
    if (times_.empty() || row < int(times_.size())) Die("a key that did nothing");
    Tell(name);
  }
  const std::string& figures() const { return figures_; }

 private:
  static double Of(const std::vector<double>& sorted, int percent) {
    return sorted[(sorted.size() - 1) * size_t(percent) / 100];
  }
  void Tell(const char* name) {
    for (std::vector<double>* each : {&times_, &alone_, &works_})
      std::sort(each->begin(), each->end());
    printf("%-10s %3zu keys  median %5.2f ms  99 %% %6.2f  longest %6.2f", name, times_.size(),
           Of(times_, 50), Of(times_, 99), times_.back());
    printf("  without waits 99 %% %5.2f  longest %5.2f  processor at most %5.2f\n", Of(alone_, 99),
           alone_.back(), works_.back());
    fflush(stdout);
    char text[200];
    snprintf(text, sizeof text, " %s_99=%.2f %s_longest=%.2f %s_alone_longest=%.2f", name,
             Of(times_, 99), name, times_.back(), name, alone_.back());
    figures_ += text;
  }

  std::vector<double> times_, alone_, works_;  // of each key, milliseconds
  int keys_;
  xcb_connection_t* connection_ = xcb_connect(nullptr, nullptr);
  std::mt19937 random_{1};
  std::string figures_;
};

// Does it about twice a second as long as it exists.
class Busy {
 public:
  explicit Busy(std::function<void()> work)
      : thread_([this, work = std::move(work)] {
          for (int n = 0; !stop_; ++n) {
            if (n % 25 == 0) work();
            usleep(20000);
          }
        }) {}
  ~Busy() {
    stop_ = true;
    thread_.join();
  }

 private:
  std::atomic<bool> stop_ = false;
  std::thread thread_;
};

// --- What there is to do

void MakeFolder(const std::string& path, int files) {
  if (mkdir(path.c_str(), 0700) != 0) Die(path.c_str());
  for (int i = 0; i < files; ++i) {
    const std::string file = path + "/file " + std::to_string(i) + ".txt";
    const int fd = open(file.c_str(), O_CREAT | O_WRONLY, 0600);
    if (fd < 0) Die(file.c_str());
    close(fd);
  }
}

// Many names of a few large documents.
void MakeDocuments(const std::string& path, int names) {
  if (mkdir(path.c_str(), 0700) != 0) Die(path.c_str());
  const std::string originals[] = {path + "/.tif", path + "/.pdf"};
  WriteLargeTiff(originals[0]);
  WriteLargePdf(originals[1]);
  for (int i = 0; i < names; ++i) {
    const std::string& original = originals[i % 2];
    const std::string name = path + "/" + std::to_string(i) + original.substr(original.rfind('.'));
    if (link(original.c_str(), name.c_str()) != 0) Die(name.c_str());
  }
}

void Enter(const std::string& path) {
  Do([&] { console::EnterFolder(c, path, ""); });
  Until("the folder", [&] { return c->files.folder.path() == path && !c->reader.request(); });
  usleep(300000);  // the watch and the places come after it
}

void Submit(const BenchDaemon& daemon, const std::string& document) {
  uint8_t id[NC_ID_SIZE];
  const std::string data = "hold=1\nowner=bench\ndocument=" + document + "\n\nbytes";
  if (NC_CreateRequestID(daemon.fd, id) != 1) Die("request id");
  if (NC_WritePrintRequest(daemon.fd, id, data.data(), uint32_t(data.size())) != 1) Die("request");
}

// Two documents of 1 GB, one after the other.
void MeasureSending(User* user, const std::string& path) {
  const int fd = open(path.c_str(), O_CREAT | O_WRONLY, 0600);
  if (fd < 0 || ftruncate(fd, off_t{1} << 30) != 0) Die(path.c_str());
  close(fd);
  Do([&] {
    console::PrintOrder order = console::UsualOrder(c);
    order.path = path;
    order.document = "large";
    order.hold = true;
    c->server.Send({order, order});
  });
  Until("the sending", [] { return !c->state.transfers.empty(); });
  sends = true;
  user->Measure("sending", [] { return sends.load(); });
  Until("its end", [] { return c->state.transfers.empty(); });
}

void MeasureFiles(User* user, const std::string& path) {
  Enter(path);
  user->Measure("files");
  int more = 0;
  const Busy others([&] {
    const std::string name = path + "/another " + std::to_string(++more);
    close(open(name.c_str(), O_CREAT | O_WRONLY, 0600));
  });
  user->Measure("more_files");
}

void MeasureQueue(User* user, const BenchDaemon& daemon) {
  for (int i = 0; i < kManyJobs; ++i) Submit(daemon, "document " + std::to_string(i));
  Until("the jobs", [] { return c->queue.rows.count() >= kManyJobs; });
  Do([] {
    console::SetFocusStop(c, console::FocusStop::kQueue);
    console::DrawConsole(c);
  });
  user->Measure("jobs");
  int more = 0;
  const Busy others([&] { Submit(daemon, "another " + std::to_string(++more)); });
  user->Measure("more_jobs");
}

struct Place {
  std::string folder, only;
  BenchDaemon daemon;
  pid_t display = -1;
};

void Drive(User* user, const Place& at) {
  const auto wanted = [&at](const char* name) { return at.only.empty() || at.only == name; };
  Until("the server", [] { return c->state.link == console::Link::kReady; });
  usleep(500000);  // the program's icon is drawn
  if (wanted("idle")) user->Measure("idle");
  if (wanted("sending")) MeasureSending(user, at.folder + "/large");
  if (wanted("previews")) {
    Enter(at.folder + "/documents");
    user->Measure("previews");
  }
  if (wanted("files")) MeasureFiles(user, at.folder + "/many");
  Enter(at.folder + "/few");
  if (wanted("jobs")) MeasureQueue(user, at.daemon);
}

void Finish(const User& user, const Place& at) {
  printf("response%s\n", user.figures().c_str());
  fflush(stdout);
  EndDaemon(at.daemon);
  const std::string remove = "rm -rf " + at.folder;
  const bool removed = system(remove.c_str()) == 0;
  kill(at.display, SIGTERM);
  waitpid(at.display, nullptr, 0);
  _exit(removed ? 0 : 1);
}

}  // namespace

int main(int argc, char** argv) {
  const int keys = argc > 1 ? std::max(1, atoi(argv[1])) : 300;
  pthread_getcpuclockid(pthread_self(), &processor);
  Place at;
  if (argc > 2) at.only = argv[2];
  at.folder = "/var/tmp/response-XXXXXX";  // on a disk, not in memory
  if (!mkdtemp(at.folder.data())) Die("mkdtemp");
  MakeFolder(at.folder + "/few", keys + 10);
  MakeFolder(at.folder + "/many", kManyFiles);
  MakeDocuments(at.folder + "/documents", keys + 10);
  const std::string host = AddressOfBench(123);
  at.daemon = StartDaemon(host, at.folder + "/spool");
  at.display = StartServer();
  if (at.display < 0) Die("Xvfb");
  const std::string self = std::to_string(getpid());
  schedulings = {"/proc/" + self + "/task/" + self + "/schedstat",
                 "/proc/" + std::to_string(at.display) + "/schedstat"};
  setenv("XW_DISPLAY", "x11", 1);
  setenv("HOME", at.folder.c_str(), 1);
  XwSession("Quorvik", "Quorvik", 7);
  c = console::OpenConsole(host, at.folder + "/few");
  if (!c) Die("the console");
  console::PreviewMaker::program = PREVIEW;
  usual = c->window->handler;
  c->window->handler = Watch;
  std::thread driver([&] {
    User user(keys);
    Drive(&user, at);
    // On the console's thread, which would miss its display; it takes as long as it takes.
    meeting.work = [&] { Finish(user, at); };
    XwPost(
        ".end", nullptr, [](void*, int) { meeting.work(); }, nullptr);
    pause();
  });
  XwRunEventLoop();
  return 1;
}
