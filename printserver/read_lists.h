// The server's lists, read whole and within the protocol's limits.
#ifndef QUORVIK_PRINTSERVER_READ_LISTS_H
#define QUORVIK_PRINTSERVER_READ_LISTS_H

#include <string>
#include <vector>

#include "printserver/records.h"

namespace nc {

// Each asks on a greeted connection and puts what came into `out`, in the server's order; false,
// with errno and `out` as it was, when the connection failed (EMSGSIZE: the list is too long).
bool ReadJobs(int fd, std::vector<NC_Job>* out);
bool ReadPrinters(int fd, std::vector<NC_Printer>* out);
bool ReadScanners(int fd, std::vector<NC_Scanner>* out);
// Those of one printer (at most NC_PROFILE_KEY - 1 bytes, else false and ENAMETOOLONG); "" for all.
bool ReadProfiles(int fd, const std::string& printer, std::vector<NC_Profile>* out);

}  // namespace nc

#endif
