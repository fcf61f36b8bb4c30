// Finding the address of a host. For use inside printserver/.
#ifndef QUORVIK_PRINTSERVER_RESOLVE_H
#define QUORVIK_PRINTSERVER_RESOLVE_H

#include <netinet/in.h>

#include "printserver/wire.h"

namespace nc {

// The first IPv4 address of `host` (null or "": "localhost"); false and ENOENT if there is none.
// With a deadline, false and ETIMEDOUT once it has passed: the look-up is then left to end by
// itself.
bool Resolve(const char* host, in_addr* address, Deadline deadline);

}  // namespace nc

#endif
