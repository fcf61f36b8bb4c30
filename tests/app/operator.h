// Somebody at a console on an X server: works it with the pointer and the keyboard of the screen,
// and reads what it shows in the described tree. The print server is seen by the command line.
#pragma once
#include <memory>
#include <string>
#include <vector>

#include "tests/os/scratch.h"
#include "tests/printserverd/daemon.h"
#include "tests/support/inspect_client.h"
#include "tests/support/x_server.h"

namespace console {

// What a node of the described tree says.
struct ShownNode {
  std::string role, name, value, states;
  int x = 0, y = 0, width = 0, height = 0;
  bool Is(const std::string& state) const;
};
// Of an answer of the inspector, in its order, without depth.
std::vector<ShownNode> NodesIn(const std::string& answer);

class Operator {
 public:
  // Starts the console with the home folder and the server, and waits until its window is active.
  Operator(support::XUser* user, const Scratch& home, const testing_daemon::Daemon& daemon,
           const std::vector<std::string>& arguments = {});
  ~Operator();
  Operator(const Operator&) = delete;
  Operator& operator=(const Operator&) = delete;

  // Does steps, a line each. The first that cannot be done in 30 seconds ends them: it is told,
  // with what the window shows then, and false is returned. NODE is ROLE NAME, perhaps with #N;
  // beside the roles of the tree there are "file" and "job", the rows of the two tables.
  //   click NODE, menu NODE, control-click NODE, shift-click NODE
  //   drag NODE onto NODE         to a little above its middle
  //   keys KEY...                 as Control+Shift+f, Return, Down
  //   type TEXT
  //   see NODE, see NODE = VALUE, see NODE has TEXT, see NODE is STATE, gone NODE
  //   files NAME, NAME...         these are the rows of the folder
  //   agree                       the queue of the window, the server's and its spool
  bool Do(const std::string& steps);
  // Waits for the program's end; whether it was in order.
  bool HasQuit();
  // Brings the window to the front and waits until it is active.
  bool ComeToFront();

  xcb_window_t window() const { return window_; }
  std::string Picture(const std::string& file);

 private:
  struct Address {
    std::string role, name;
    int n = 1;
  };
  static Address ParseAddress(std::string text);
  std::vector<ShownNode> Look();
  std::vector<ShownNode> RowsOf(const std::string& table);
  bool Find(const Address& address, ShownNode* found);
  bool MoveTo(const std::string& node, int quarters_down);
  bool Click(const std::string& node, int button, uint32_t modifier);
  bool Drag(const std::string& from, const std::string& to);
  bool Keys(const std::string& keys);
  bool See(const std::string& what);
  bool Agree();
  std::string Disagreement();
  bool DoOne(const std::string& verb, const std::string& what);

  support::XUser* user_;
  const testing_daemon::Daemon& daemon_;
  pid_t pid_ = 0;
  xcb_window_t window_ = 0;
  std::unique_ptr<support::InspectClient> client_;
  std::string trouble_;
};

}  // namespace console
