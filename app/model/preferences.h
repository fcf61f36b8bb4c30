// What the console remembers of its user between two runs, and how that is written down. The file
// itself: work/preferences_file.h.
#pragma once
#include <string>
#include <vector>

namespace console {

struct Preferences {
  int window_width = 1200, window_height = 756;  // logical pixels, of the content
  int window_left = 0, window_top = 0;           // of the content; top 0: not known
  // Of the panes, 0 the usual size; and whether they are wanted.
  int places_width = 0, details_width = 0, queue_height = 0, printers_height = 0;
  bool show_places = true, show_printers = true, show_details = true;
  std::vector<int> file_columns, queue_columns;  // widths, 0 the usual; empty: all usual
  std::string folder;                            // bytes; "": home
  std::string printer;                           // the chosen one; "": the server's default
  std::string default_printer;                   // the user's own default; "": the server's
  int file_order = 0, queue_order = 0;           // the column that sorts
  bool files_descending = false, queue_descending = false;
  bool hidden_names = false;
  std::string file_filter, queue_filter;
  bool mine_only = false, active_only = false, ended_only = false;
  std::string server;  // HOST or HOST:PORT; "": localhost
  std::vector<std::string> recent_servers;
  int refresh_seconds = 2;
  bool start_local_server = false;  // without asking
  // Lines that a newer console has written: they are kept.
  std::vector<std::string> unknown;

  bool operator==(const Preferences&) const = default;
};

constexpr size_t kMostRecentServers = 8;

// Of any text: what is not understood, and numbers out of range, leave the usual value.
Preferences ParsePreferences(const std::string& text);
std::string FormatPreferences(const Preferences& preferences);

// Takes a server that has answered as the present one, and puts it first among the recent ones.
void NoteServer(const std::string& server, Preferences* preferences);
// The server to use: the environment's, which comes first and then cannot be changed here, else the
// preferences'. `environment` may be null.
struct ServerChoice {
  std::string server;  // "": localhost
  bool fixed;
};
ServerChoice ChooseServer(const char* environment, const Preferences& preferences);
// Whether it reads as HOST or HOST:PORT.
bool IsServerName(const std::string& text);

}  // namespace console
