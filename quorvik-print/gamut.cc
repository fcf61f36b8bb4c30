// The command that fetches a gamut file.
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "printserver/nc.h"
#include "quorvik-print/cli.h"

namespace cli {

namespace {

// Whether a new file may take the place of what is there. A device or a link stays what it is.
bool MayReplace(const std::string& path) {
  struct stat info;
  return lstat(path.c_str(), &info) != 0 || S_ISREG(info.st_mode);
}

}  // namespace

int Gamut(Session& session, const Options& options) {
  const std::string& name = options.words[0];
  char a[NC_GAMUT_A] = {};
  char b[NC_GAMUT_B] = {};
  if (name.size() >= sizeof a || options.folder.size() >= sizeof b) {
    return Fail(kUsage, "the name is too long");
  }
  memcpy(a, name.data(), name.size());
  memcpy(b, options.folder.data(), options.folder.size());
  const std::string output =
      options.output.empty() ? name.substr(name.rfind('/') + 1) : options.output;
  if (output.empty() || output.back() == '/') return Fail(kUsage, "--output wants a file");
  if (!MayReplace(output)) return Fail(kNoFile, output + ": not a file that can be replaced");
  // Beside its place first: what is there stays until the new one is whole, and whether the server
  // had the file shows in whether this one came to be.
  const std::string draft = output + "." + std::to_string(getpid()) + ".part";
  const int32_t result = NC_CopyGamutFileN(session.fd(), a, b, draft.c_str(), INT32_MAX);
  if (result < 0) {
    const int error = errno;
    unlink(draft.c_str());
    errno = error;
    return Lost();
  }
  if (result > 0) {
    unlink(draft.c_str());
    return Fail(kNoFile, output + ": cannot be written");
  }
  if (rename(draft.c_str(), output.c_str()) == 0) return kGood;
  if (errno == ENOENT) return Fail(kRefused, name + ": the server has no such gamut file");
  const int error = errno;
  unlink(draft.c_str());
  return Fail(kNoFile, output + ": " + strerror(error));
}

}  // namespace cli
