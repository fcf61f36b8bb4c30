#include "tests/app/operator.h"

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <map>
#include <set>
#include <sstream>

namespace console {
namespace {

using testing_daemon::Eventually;
using testing_daemon::RunProgram;

constexpr uint32_t kShiftKey = 0xFFE1, kControlKey = 0xFFE3, kAltKey = 0xFFE9;

uint32_t KeyOf(const std::string& name) {
  static const std::map<std::string, uint32_t> kNames = {
      {"Tab", 0xFF09},   {"Return", 0xFF0D}, {"Escape", 0xFF1B},   {"Delete", 0xFFFF},
      {"Home", 0xFF50},  {"End", 0xFF57},    {"Left", 0xFF51},     {"Up", 0xFF52},
      {"Right", 0xFF53}, {"Down", 0xFF54},   {"Menu", 0xFF67},     {"F1", 0xFFBE},
      {"F5", 0xFFC2},    {"F10", 0xFFC7},    {"Shift", kShiftKey}, {"Control", kControlKey},
      {"Alt", kAltKey},  {"F6", 0xFFC3},     {"Page_Down", 0xFF56}};
  const auto found = kNames.find(name);
  return found != kNames.end() ? found->second : uint32_t(name[0]);
}

// The text of a JSON string that begins at `at`, behind its quote.
std::string TextAt(const std::string& json, size_t at) {
  std::string text;
  for (; at < json.size() && json[at] != '"'; ++at) {
    if (json[at] == '\\') ++at;
    text += json[at];
  }
  return text;
}

std::string TextField(const std::string& json, const std::string& key) {
  const std::string start = "\"" + key + "\":\"";
  const size_t at = json.find(start);
  return at == std::string::npos ? "" : TextAt(json, at + start.size());
}

int NumberField(const std::string& json, const std::string& key) {
  const std::string start = ",\"" + key + "\":";
  const size_t at = json.find(start);
  return at == std::string::npos ? 0 : atoi(json.c_str() + at + start.size());
}

// Takes what stands behind the last `mark` off the text; false where there is none.
bool SplitAt(const char* mark, std::string* text, std::string* rest) {
  const size_t at = text->rfind(mark);
  if (at == std::string::npos) return false;
  *rest = text->substr(at + strlen(mark));
  text->erase(at);
  return true;
}

// What the window says of a job, as the server's word.
std::string StateOf(const std::string& value) {
  if (value.find("out of paper") != std::string::npos) return "paper-out";
  if (value.find(" of ") != std::string::npos && value.rfind("sending", 0) != 0) return "printing";
  if (value.rfind("printed", 0) == 0) return "done";
  return value.substr(0, value.find(':'));
}

}  // namespace

bool ShownNode::Is(const std::string& state) const {
  return states.find("\"" + state + "\"") != std::string::npos;
}

std::vector<ShownNode> NodesIn(const std::string& answer) {
  std::vector<ShownNode> nodes;
  const std::string start = "{\"role\":";
  for (size_t at = answer.find(start); at != std::string::npos;) {
    const size_t next = answer.find(start, at + 1);
    const std::string one = answer.substr(at, next - at);
    ShownNode node{TextField(one, "role"),    TextField(one, "name"),
                   TextField(one, "value"),   "",
                   NumberField(one, "x"),     NumberField(one, "y"),
                   NumberField(one, "width"), NumberField(one, "height")};
    const size_t states = one.find("\"states\":[");
    if (states != std::string::npos)
      node.states = one.substr(states, one.find(']', states) - states);
    nodes.push_back(node);
    at = next;
  }
  return nodes;
}

Operator::Operator(support::XUser* user, const Scratch& home, const testing_daemon::Daemon& daemon,
                   const std::vector<std::string>& arguments)
    : user_(user), daemon_(daemon) {
  const std::string socket = home.At(".socket");
  const bool names_server =
      ReadFile(home.At(".config/quorvik/console.conf")).find("server=") != std::string::npos;
  pid_ = fork();
  if (pid_ == 0) {
    setenv("HOME", home.path().c_str(), 1);
    setenv("XDG_CONFIG_HOME", home.At(".config").c_str(), 1);
    setenv("XDG_CACHE_HOME", home.At(".cache").c_str(), 1);
    setenv("XDG_STATE_HOME", home.At(".state").c_str(), 1);
    setenv("USER", "mia", 1);
    unsetenv("QUORVIK_SERVER");
    if (!names_server) setenv("QUORVIK_SERVER", daemon.host(), 1);
    setenv("XW_INSPECT", socket.c_str(), 1);
    unsetenv("XDG_RUNTIME_DIR");
    unsetenv("DBUS_SESSION_BUS_ADDRESS");
    if (chdir(home.path().c_str()) != 0) _exit(126);
    std::vector<char*> argv = {const_cast<char*>(QUORVIK)};
    for (const std::string& a : arguments) argv.push_back(const_cast<char*>(a.c_str()));
    argv.push_back(nullptr);
    execv(QUORVIK, argv.data());
    _exit(127);
  }
  Eventually([&] { return access(socket.c_str(), F_OK) == 0; });
  client_ = std::make_unique<support::InspectClient>(socket);
  // Of windows of the same name this program's.
  Eventually([&] {
    for (const uint32_t window : user_->Words(user_->root(), "_NET_CLIENT_LIST"))
      if (user_->Words(window, "_NET_WM_PID") == std::vector<uint32_t>{uint32_t(pid_)})
        window_ = window;
    return window_ != 0;
  });
  EXPECT_TRUE(Do("see window Quorvik is active"));
}

Operator::~Operator() {
  if (pid_ <= 0) return;
  kill(pid_, SIGTERM);
  HasQuit();
}

bool Operator::HasQuit() {
  int status = -1;
  const bool ended = Eventually([&] { return waitpid(pid_, &status, WNOHANG) == pid_; });
  if (!ended) kill(pid_, SIGKILL), waitpid(pid_, nullptr, 0);
  pid_ = 0;
  EXPECT_TRUE(ended && WIFEXITED(status) && WEXITSTATUS(status) == 0) << status;
  return ended && status == 0;
}

bool Operator::ComeToFront() {
  user_->Ask(window_, "_NET_ACTIVE_WINDOW", {2, 0, 0});
  return Do("see window Quorvik is active");
}

Operator::Address Operator::ParseAddress(std::string text) {
  Address address;
  std::string n;
  if (SplitAt(" #", &text, &n)) address.n = atoi(n.c_str());
  const size_t blank = text.find(' ');
  address.role = text.substr(0, blank);
  if (blank != std::string::npos) address.name = text.substr(blank + 1);
  return address;
}

std::vector<ShownNode> Operator::Look() {
  return NodesIn(client_->Ask("\"do\":\"tree\""));
}

std::vector<ShownNode> Operator::RowsOf(const std::string& table) {
  std::vector<ShownNode> rows;
  bool inside = false;
  for (const ShownNode& node : Look()) {
    if (node.role == "table") inside = node.name == table;
    if (inside && node.role == "row") rows.push_back(node);
    if (inside && node.role != "row" && node.role != "table") inside = false;
  }
  return rows;
}

bool Operator::Find(const Address& address, ShownNode* found) {
  const bool file = address.role == "file", job = address.role == "job";
  int left = address.n;
  for (const ShownNode& node : file || job ? RowsOf(file ? "Files" : "Queue") : Look()) {
    if (!file && !job && node.role != address.role) continue;
    if (node.name != address.name || !node.Is("shown") || --left > 0) continue;
    *found = node;
    return true;
  }
  return false;
}

bool Operator::MoveTo(const std::string& text, int quarters_down) {
  const Address address = ParseAddress(text);
  ShownNode node;
  if (!Eventually([&] { return Find(address, &node) && node.Is("enabled"); })) return false;
  user_->Move(node.x + node.width / 2, node.y + node.height * quarters_down / 4);
  return true;
}

bool Operator::Click(const std::string& node, int button, uint32_t modifier) {
  if (!MoveTo(node, 2)) return false;
  if (modifier) user_->Key(modifier, true);
  user_->Click(button);
  if (modifier) user_->Key(modifier, false);
  return true;
}

bool Operator::Drag(const std::string& from, const std::string& to) {
  if (!MoveTo(from, 2)) return false;
  user_->Button(1, true);
  user_->PassMarker();
  if (!MoveTo(to, 2)) return false;
  const bool there = MoveTo(to, 1);
  user_->PassMarker();
  user_->Button(1, false);
  return there;
}

bool Operator::Keys(const std::string& keys) {
  std::istringstream all(keys);
  for (std::string key; all >> key;) {
    std::vector<uint32_t> held;
    for (size_t plus; key.size() > 1 && (plus = key.find('+')) != std::string::npos;) {
      held.push_back(KeyOf(key.substr(0, plus)));
      key.erase(0, plus + 1);
    }
    for (const uint32_t each : held) user_->Key(each, true);
    user_->Type(KeyOf(key));
    for (const uint32_t each : held) user_->Key(each, false);
    user_->PassMarker();
    Look();
  }
  return true;
}

bool Operator::See(const std::string& what) {
  std::string text = what, wanted;
  const bool equals = SplitAt(" = ", &text, &wanted),
             has = !equals && SplitAt(" has ", &text, &wanted),
             is = !equals && !has && SplitAt(" is ", &text, &wanted);
  const Address address = ParseAddress(text);
  return Eventually([&] {
    ShownNode node;
    if (!Find(address, &node)) return false;
    return is       ? node.Is(wanted)
           : has    ? node.value.find(wanted) != std::string::npos
           : equals ? node.value == wanted
                    : true;
  });
}

// "" when window, queue and spool tell the same.
std::string Operator::Disagreement() {
  const testing_daemon::Outcome list =
      RunProgram({QUORVIK_PRINT, "--server", daemon_.host(), "--tsv", "queue"});
  std::string told, shown, count = "0";
  std::set<std::string> records, kept;
  std::istringstream lines(list.out);
  std::string line;
  std::getline(lines, line);  // the heads
  std::vector<std::string> jobs;
  while (std::getline(lines, line)) {
    std::vector<std::string> cells;
    std::istringstream row(line);
    for (std::string cell; std::getline(row, cell, '\t');) cells.push_back(cell);
    if (cells.size() < 19) return "the command line says: " + line;
    jobs.push_back(cells[7] + " " + cells[1]);
    records.insert(cells[8] + ".job");
    if (cells[18] == "1") kept.insert(cells[8] + ".doc");
  }
  const std::vector<ShownNode> rows = RowsOf("Queue");
  for (size_t i = 0; i < rows.size(); ++i) {
    shown += rows[i].name + " " + StateOf(rows[i].value) + "\n";
    // What lies below the table's end is not shown.
    if (i < jobs.size()) told += jobs[i] + "\n";
  }
  for (const ShownNode& node : Look())
    if (node.role == "table" && node.name == "Queue") count = node.value;
  if (list.code != 0 || told != shown || count != std::to_string(jobs.size()))
    return "the window shows " + count + " jobs\n" + shown + "the server has " +
           std::to_string(jobs.size()) + "\n" + told + list.error;
  std::set<std::string> files;
  for (const std::string& file : testing_daemon::FilesIn(daemon_.Path("jobs")))
    if (file.ends_with(".job") || kept.count(file)) files.insert(file);
  records.merge(kept);
  return files == records ? "" : "the spool has other files than jobs";
}

bool Operator::Agree() {
  return Eventually([&] { return (trouble_ = Disagreement()).empty(); });
}

bool Operator::DoOne(const std::string& verb, const std::string& what) {
  std::string from = what, to;
  ShownNode node;
  if (verb == "click") return Click(what, 1, 0);
  if (verb == "menu") return Click(what, 3, 0);
  if (verb == "control-click") return Click(what, 1, kControlKey);
  if (verb == "shift-click") return Click(what, 1, kShiftKey);
  if (verb == "drag") return SplitAt(" onto ", &from, &to) && Drag(from, to);
  if (verb == "keys") return Keys(what);
  if (verb == "type") return user_->Write(what), true;
  if (verb == "see") return See(what);
  if (verb == "gone") return Eventually([&] { return !Find(ParseAddress(what), &node); });
  if (verb == "files")
    return Eventually([&] {
      trouble_.clear();
      for (const ShownNode& row : RowsOf("Files"))
        trouble_ += (trouble_.empty() ? "" : ", ") + row.name;
      return trouble_ == what;
    });
  if (verb == "agree") return Agree();
  trouble_ = "there is no such step";
  return false;
}

bool Operator::Do(const std::string& steps) {
  std::istringstream lines(steps);
  for (std::string line; std::getline(lines, line);) {
    line.erase(0, line.find_first_not_of(' '));
    if (line.empty()) continue;
    const size_t blank = std::min(line.find(' '), line.size());
    trouble_.clear();
    const bool done = DoOne(line.substr(0, blank), line.substr(std::min(blank + 1, line.size())));
    user_->PassMarker();
    if (done) continue;
    std::string shown;
    for (const ShownNode& node : Look())
      if (node.Is("shown") && node.role != "menu-item")
        shown += node.role + " " + node.name + " = " + node.value + " " + node.states + "\n";
    ADD_FAILURE() << "cannot do: " << line << "\n" << trouble_ << "\n" << shown;
    return false;
  }
  return true;
}

}  // namespace console
