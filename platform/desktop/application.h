// The program as other programs of the session reach it: org.freedesktop.Application on the
// message bus. The bus is joined when the loop first waits, so no start waits for it; without a
// bus, or without the library that speaks to it, everything else works the same.
#pragma once
#include <string>

namespace platform {

// Adds the bus to what the loop watches. The name on the bus comes from the session's name.
// Activate brings the first window forward, with the caller's activation token; Open does, and
// gives the first file when it is local; the actions "quit" and "preferences" are requests. A
// second start of the same program activates the first, then is asked to quit.
void InitApplication(const char* session_name);
// Leaves the bus.
void FinishApplication();
// Another start of this program is there: it is asked at once to come forward. True when it does:
// then windows of this one stay off the screen until kLetGo is reported, and it is asked to quit.
// False when it does not within a second, or the bus does not know it.
bool HandOverStart();

// The name on the bus: `session_name` itself when it has dots, else one under org.quorvik. Only
// letters, digits and underscores stay.
std::string ApplicationBusName(const std::string& session_name);
// The object's path, which follows from the name.
std::string ApplicationObjectPath(const std::string& bus_name);

}  // namespace platform
