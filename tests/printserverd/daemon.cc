#include "tests/printserverd/daemon.h"

#include <arpa/inet.h>
#include <dirent.h>
#include <fcntl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <thread>

namespace testing_daemon {

namespace {

int CodeOf(int status) {
  return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

pid_t Spawn(const std::vector<std::string>& arguments, const std::vector<std::string>& environment,
            int out, int error) {
  std::vector<char*> argv;
  for (const std::string& argument : arguments) argv.push_back(const_cast<char*>(argument.c_str()));
  argv.push_back(nullptr);
  const pid_t pid = fork();
  if (pid != 0) return pid;
  if (out >= 0) dup2(out, STDOUT_FILENO);
  if (error >= 0) dup2(error, STDERR_FILENO);
  for (const std::string& variable : environment) putenv(const_cast<char*>(variable.c_str()));
  execv(argv[0], argv.data());
  _exit(127);
}

sockaddr_in AddressOf(const std::string& host) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(NC_PORT);
  inet_pton(AF_INET, host.c_str(), &address.sin_addr);
  return address;
}

}  // namespace

Outcome RunProgram(const std::vector<std::string>& arguments,
                   const std::vector<std::string>& environment) {
  FILE* out = tmpfile();
  FILE* error = tmpfile();
  int status = 0;
  const pid_t pid = Spawn(arguments, environment, fileno(out), fileno(error));
  waitpid(pid, &status, 0);
  Outcome outcome;
  outcome.code = CodeOf(status);
  for (auto& [file, text] : {std::pair(out, &outcome.out), std::pair(error, &outcome.error)}) {
    rewind(file);
    char buffer[4096];
    while (const size_t n = fread(buffer, 1, sizeof buffer, file)) text->append(buffer, n);
    fclose(file);
  }
  return outcome;
}

Daemon::Daemon(int number) {
  // An address of this process's own, so that tests can run side by side.
  const int pid = getpid();
  host_ = "127." + std::to_string(128 + ((pid >> 16) & 63) + 64 * number) + "." +
          std::to_string((pid >> 8) & 255) + "." + std::to_string(pid & 255);
  std::string name = ::testing::TempDir() + "printserverd-XXXXXX";
  folder_ = mkdtemp(name.data());
}

Daemon::~Daemon() {
  EXPECT_EQ(Stop(SIGTERM), 0);
  if (testing::Test::HasFailure()) fputs(Said().c_str(), stderr);
  std::filesystem::remove_all(folder_);
}

void Daemon::Start(const std::vector<std::string>& arguments) {
  ASSERT_EQ(Launch(PRINTSERVERD, arguments), -1) << Said();
}

int Daemon::Launch(const char* program, const std::vector<std::string>& arguments) {
  std::vector<std::string> all = {program, "--listen", host_, "--spool", folder_ + "/spool"};
  all.insert(all.end(), arguments.begin(), arguments.end());
  const int said =
      open((folder_ + "/said").c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
  pid_ = Spawn(all, {}, -1, said);
  close(said);
  EXPECT_GT(pid_, 0);
  int status = 0, fd = -1;
  while ((fd = NC_ConnectN(host(), 20000)) < 0 && fd != NC_REFUSED) {
    if (waitpid(pid_, &status, WNOHANG) == pid_) return pid_ = 0, CodeOf(status);
    usleep(1000);
  }
  if (fd >= 0) close(fd);
  return -1;
}

void Daemon::Signal(int number) {
  kill(pid_, number);
}

int Daemon::Stop(int number) {
  if (pid_ <= 0) return 0;
  kill(pid_, number);
  int status = 0;
  waitpid(pid_, &status, 0);
  pid_ = 0;
  return CodeOf(status);
}

std::string Daemon::WriteFile(const std::string& name, const std::string& content) const {
  const std::string path = folder_ + "/" + name;
  std::ofstream(path, std::ios::binary) << content;
  return path;
}

std::string Daemon::Said() const {
  return ReadWhole(folder_ + "/said");
}

bool Daemon::Says(const std::string& text) const {
  return Eventually([&] { return Said().find(text) != std::string::npos; });
}

int Daemon::Connect() const {
  const int fd = NC_ConnectN(host(), 20000);
  EXPECT_GE(fd, 0);
  return fd;
}

int Daemon::ConnectRaw() const {
  const int fd = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  const sockaddr_in address = AddressOf(host_);
  if (connect(fd, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0) return fd;
  close(fd);
  return -1;
}

std::string ReadWhole(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(file), {});
}

std::vector<std::string> FilesIn(const std::string& folder) {
  std::vector<std::string> names;
  std::error_code error;
  for (const auto& entry : std::filesystem::directory_iterator(folder, error)) {
    names.push_back(entry.path().filename());
  }
  std::sort(names.begin(), names.end());
  return names;
}

int Send(int fd, const std::string& ticket, const std::string& document, uint8_t* id) {
  if (NC_CreateRequestID(fd, id) != 1) return -1;
  const std::string data = ticket + "\n" + document;
  return NC_WritePrintRequest(fd, id, data.data(), static_cast<uint32_t>(data.size()));
}

int Change(int fd, const uint8_t* id, const std::string& ticket) {
  return NC_WritePrintRequest(fd, id, ticket.data(), static_cast<uint32_t>(ticket.size()));
}

void Ask(int fd, char code, const void* id, const std::string& data) {
  ASSERT_EQ(NC_SendCommand(fd, static_cast<uint8_t>(code)), 4);
  ASSERT_EQ(NC_Write(fd, id, NC_ID_SIZE), NC_ID_SIZE);
  if (code == 3) {
    const auto size = static_cast<int32_t>(data.size());
    ASSERT_EQ(NC_Write(fd, &size, 4), 4);
    ASSERT_EQ(NC_Write(fd, data.data(), size), size);
  }
}

int AnswerOf(int fd) {
  uint8_t status = 0;
  return NC_Read(fd, &status, 1) == 1 ? status : -1;
}

std::vector<NC_Job> Jobs(int fd) {
  std::vector<char> list(NC_QUEUE_MAX);
  const int32_t size = NC_GetPrintQueueN(fd, list.data(), NC_QUEUE_MAX);
  EXPECT_GE(size, 0);
  std::vector<NC_Job> jobs(NC_JOBS_MAX);
  jobs.resize(static_cast<size_t>(NC_ParseJobs(list.data(), size, jobs.data(), NC_JOBS_MAX)));
  return jobs;
}

NC_Job JobOf(int fd, const uint8_t* id) {
  for (const NC_Job& job : Jobs(fd)) {
    if (std::equal(job.id, job.id + 16, id)) return job;
  }
  NC_Job none = {};
  none.state = static_cast<NC_JobState>(-1);
  return none;
}

std::vector<NC_Printer> Printers(int fd) {
  std::vector<char> list(NC_LIST_MAX);
  uint8_t status = 0;
  const int32_t size = NC_GetPrinterListN(fd, &status, list.data(), NC_LIST_MAX);
  EXPECT_GE(size, 0);
  std::vector<NC_Printer> printers(NC_RECORDS_MAX);
  printers.resize(
      static_cast<size_t>(NC_ParsePrinters(list.data(), size, printers.data(), NC_RECORDS_MAX)));
  return printers;
}

std::string Order(int fd) {
  std::string order;
  for (const NC_Job& job : Jobs(fd)) order += std::string(job.document) + " ";
  return order;
}

NC_Printer PrinterOf(int fd, const std::string& name) {
  for (const NC_Printer& printer : Printers(fd)) {
    if (name == printer.name) return printer;
  }
  ADD_FAILURE() << "no printer " << name;
  return {};
}

std::string IdText(const uint8_t* id) {
  char text[33];
  NC_FormatId(id, text);
  return text;
}

bool Eventually(const std::function<bool()>& holds) {
  for (int i = 0; i < 1500; ++i) {
    if (holds()) return true;
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
  }
  return false;
}

void Served::Start(const std::vector<std::string>& arguments) {
  arguments_ = arguments;
  daemon.Start(arguments);
  fd = daemon.Connect();
}

void Served::StartWith(const std::string& configuration, std::vector<std::string> arguments) {
  arguments.insert(arguments.begin(), {"--config", daemon.WriteFile("config", configuration)});
  Start(arguments);
}

int Served::Stop(int signal) {
  const int code = daemon.Stop(signal);
  if (fd >= 0) NC_Disconnect(fd);
  fd = -1;
  return code;
}

void Served::Restart() {
  EXPECT_EQ(Stop(SIGKILL), 128 + SIGKILL);
  Start(std::vector<std::string>(arguments_));
}

int Served::New(const std::string& name, const std::string& ticket, const std::string& document) {
  return Send(fd, ticket.empty() ? "" : ticket + "\n", document, ids[name].data());
}

int Served::Tell(const std::string& name, const std::string& ticket) {
  return Change(fd, ids.count(name) ? ids[name].data() : PrinterOf(fd, name).id, ticket + "\n");
}

int Served::Remove(const std::string& name) {
  return NC_RemovePrintRequest(fd, ids[name].data());
}

std::string Served::See(const std::string& name, const std::string& keys) {
  std::vector<char> list(NC_QUEUE_MAX);
  uint8_t status = 0;
  const bool job = ids.count(name) > 0;
  const int32_t size = job ? NC_GetPrintQueueN(fd, list.data(), NC_QUEUE_MAX)
                           : NC_GetPrinterListN(fd, &status, list.data(), NC_LIST_MAX);
  const std::string text = "\n" + std::string(list.data(), static_cast<size_t>(std::max(size, 0)));
  const size_t at = text.find(job ? "\nid=" + IdText(ids[name].data()) : "\nname=" + name + "\n");
  if (at == std::string::npos) return "none";
  const size_t begin = text.rfind("\n\n", at);
  const std::string record = text.substr(begin == std::string::npos ? 0 : begin + 1);
  std::istringstream words(keys);
  std::string values;
  for (std::string key; words >> key;) {
    const size_t line = record.substr(0, record.find("\n\n") + 1).find("\n" + key + "=");
    const size_t value = line + key.size() + 2;
    values +=
        line == std::string::npos ? "-" : record.substr(value, record.find('\n', value) - value);
    values += ' ';
  }
  return values.substr(0, values.size() - 1);
}

bool Served::Becomes(const std::string& name, const std::string& keys, const std::string& values) {
  return Eventually([&] { return See(name, keys) == values; });
}

std::string Served::DocumentOf(const std::string& name) {
  return daemon.Path("jobs/" + IdText(ids[name].data()) + ".doc");
}

}  // namespace testing_daemon
