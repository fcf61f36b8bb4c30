// Jobs of the queue, as the commands that act on them need them.
#pragma once

#include <vector>

#include "printserver/records.h"

namespace cli {

// Reads the queue; false when the connection failed, which has been told then.
bool ReadJobs(int fd, std::vector<NC_Job>* jobs);

}  // namespace cli
