// Requests to a running daemon: well-formed ones with any content, and any bytes, cut in pieces. It
// answers what it must, keeps what it accepted until that is removed, and serves the next client.
#include <arpa/inet.h>
#include <stdint.h>
#include <stdlib.h>
#include <sys/socket.h>
#include <unistd.h>

#include <filesystem>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "fuzz/input.h"
#include "printserver/nc.h"
#include "printserver/records.h"
#include "printserverd/server.h"

namespace {

// A daemon in a thread of this process, with a spool that goes at the end.
class Running {
 public:
  Running() {
    spool_ = std::filesystem::temp_directory_path() / "quorvik-fuzz-XXXXXX";
    if (!mkdtemp(spool_.data())) abort();
    const int pid = getpid();
    host_ = "127.77." + std::to_string(pid >> 8 & 255) + "." + std::to_string(pid & 255);
    const std::string config = spool_ + "/config";
    FILE* file = fopen(config.c_str(), "w");
    fputs(
        "[server]\ndone-keep=2000\naccess-log=/dev/"
        "null\ndone-seconds=1G\n[printer]\nname=P\nrate=0\nkeep=1\n"
        "[printer]\nname=Q\nrate=0\nkeep=1\n[scanner]\nname=S\n",
        file);
    fclose(file);
    std::vector<std::string> words = {"printserverd",    "--listen", host_, "--spool",
                                      spool_ + "/spool", "--config", config};
    std::vector<char*> arguments;
    for (std::string& word : words) arguments.push_back(word.data());
    arguments.push_back(nullptr);
    printserverd::Options options;
    printserverd::Settings settings;
    std::string error;
    const int count = static_cast<int>(words.size());
    if (!printserverd::ParseOptions(count, arguments.data(), &options, &error) ||
        !printserverd::LoadSettings(options, false, &settings, &error)) {
      fprintf(stderr, "%s\n", error.c_str());
      abort();
    }
    auto* server = new printserverd::Server(options, settings);
    if (!server->Start(&error)) abort();
    std::thread([server] { server->Run(); }).detach();
  }
  ~Running() {
    std::error_code ignored;
    std::filesystem::remove_all(spool_, ignored);
  }

  int Connect() const {
    const int fd = NC_ConnectN(host_.c_str(), 20000);
    if (fd < 0) abort();
    return fd;
  }

 private:
  std::string spool_, host_;
};

Running& Daemon() {
  static auto* daemon = new Running;
  static const bool once = (atexit([] { Daemon().~Running(); }), true);
  static_cast<void>(once);
  return *daemon;
}

int32_t IsStatus(int32_t status) {
  if (status < 0 || status > 9) abort();
  return status;
}

// One client and what it has been given.
struct Client {
  int fd = Daemon().Connect();
  uint8_t id[16] = {};
  std::set<std::string> jobs;

  std::string Id() const { return std::string(id, id + 16); }
};

// Under an id that was refused before this makes a job too; under one that has a job it changes it.
void Write(Client* client, const std::string& data) {
  const auto size = static_cast<uint32_t>(data.size());
  if (IsStatus(NC_WritePrintRequest(client->fd, client->id, data.data(), size)) == 1) {
    client->jobs.insert(client->Id());
  }
}

void NewRequest(Client* client, const std::string& data) {
  if (NC_CreateRequestID(client->fd, client->id) != 1) abort();
  Write(client, data);
}

void Remove(Client* client) {
  if (IsStatus(NC_RemovePrintRequest(client->fd, client->id)) == 1) {
    if (client->jobs.erase(client->Id()) != 1) abort();
  }
}

void Lists(Client* client, std::string key) {
  static std::vector<char> list(NC_QUEUE_MAX);
  static std::vector<NC_Job> jobs(NC_JOBS_MAX);
  key.resize(NC_PROFILE_KEY);
  const int32_t size = NC_GetPrintQueueN(client->fd, list.data(), NC_QUEUE_MAX);
  std::set<std::string> listed;
  const int32_t count = NC_ParseJobs(list.data(), size, jobs.data(), NC_JOBS_MAX);
  for (int32_t i = 0; i < count; ++i) listed.insert(std::string(jobs[i].id, jobs[i].id + 16));
  if (listed != client->jobs) abort();
  uint8_t status = 0;
  if (NC_GetPrinterListN(client->fd, &status, list.data(), NC_QUEUE_MAX) < 1) abort();
  if (NC_GetScannerListN(client->fd, &status, list.data(), NC_QUEUE_MAX) < 1) abort();
  if (NC_GetProfileListN(client->fd, key.data(), list.data(), NC_QUEUE_MAX) < 0) abort();
}

void Files(Client* client, const std::string& text) {
  std::string a = text, b = text.substr(std::min<size_t>(text.size(), 100));
  a.resize(NC_GAMUT_A);
  b.resize(NC_GAMUT_B);
  if (NC_CopyGamutFileN(client->fd, a.data(), b.data(), "/dev/null", 0) != 0) abort();
  const int32_t status = NC_RemoveFile(client->fd, text.substr(0, 511).c_str());
  if (IsStatus(status) == 1) abort();  // there are no files
}

// Any bytes; what becomes of the connection is the daemon's to say. Its jobs stay.
void Garbage(Client* client, const std::string& bytes, size_t piece) {
  for (size_t at = 0; at < bytes.size(); at += piece) {
    const std::string part = bytes.substr(at, piece);
    if (send(client->fd, part.data(), part.size(), MSG_NOSIGNAL) < 0) break;
  }
  NC_Disconnect(client->fd);
  client->fd = Daemon().Connect();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size > 8192) return 0;
  Input input(data, size);
  Client client;
  for (int steps = 0; !input.done() && steps < 20; ++steps) {
    const int step = input.Byte() % 6;
    const std::string text = input.Text(2048);
    if (step == 0) NewRequest(&client, "hold=1\n" + text);
    if (step == 1) NewRequest(&client, text);
    if (step == 2) Write(&client, text);
    if (step == 3) Remove(&client);
    if (step == 4) Files(&client, text);
    // A garbage request could be one that is well-formed: its commands are none of the eleven.
    if (step == 5) Garbage(&client, "KRV" + std::string(1, '\0') + text, input.Byte() % 64 + 1);
    if (step < 4) Lists(&client, text);
  }
  while (!client.jobs.empty()) {
    client.jobs.begin()->copy(reinterpret_cast<char*>(client.id), 16);
    const size_t before = client.jobs.size();
    Remove(&client);
    if (client.jobs.size() == before) abort();
  }
  Lists(&client, "");
  NC_Disconnect(client.fd);
  return 0;
}
