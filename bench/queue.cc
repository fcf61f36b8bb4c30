// What a job costs the print server beside many others: two servers, one with 400 held jobs and
// one with 4,000, take jobs, list them and print them. Every job is submitted and printed; the
// list is fetched each time that a tenth of the held jobs has gone by, so that a job pays for ten
// records of a list with both. Rounds alternate; the ratios are of the medians.
//
//   queue [JOBS]    so many jobs go through each of the two; 20,000 when none is named
#include <algorithm>
#include <fstream>
#include <memory>

#include "bench/daemon.h"
#include "printserver/records.h"

namespace {

constexpr int kRounds = 5;
constexpr int kFew = 400, kMany = 4000;
constexpr int kJobs = 20000;

class Server {
 public:
  Server(const std::string& folder, int network, int held) : held_(held) {
    const std::string config = folder + "/config";
    std::ofstream(config) << "[server]\ndone-keep=20\ndone-bytes=0\naccess-log=/dev/null\n"
                             "[printer]\nname=P\nrate=0\npaper=0\nkeep=10\n";
    daemon_ = StartDaemon(AddressOfBench(network), folder + "/spool" + std::to_string(held),
                          {"--config", config});
    for (int i = 0; i < held; ++i)
      Submit("hold=1\ndocument=a document with a name\nowner=bench\n\n");
  }
  ~Server() { EndDaemon(daemon_); }

  void Submit(const std::string& data) {
    uint8_t id[NC_ID_SIZE];
    if (NC_CreateRequestID(daemon_.fd, id) != 1) Die("request id");
    const auto size = static_cast<uint32_t>(data.size());
    if (NC_WritePrintRequest(daemon_.fd, id, data.data(), size) != 1) Die("request");
  }

  // How many jobs the list holds that have not ended.
  int List() {
    list_.resize(NC_QUEUE_MAX);
    jobs_.resize(NC_JOBS_MAX);
    const int32_t size = NC_GetPrintQueueN(daemon_.fd, list_.data(), NC_QUEUE_MAX);
    if (size < 0) Die("list");
    const int32_t count = NC_ParseJobs(list_.data(), size, jobs_.data(), NC_JOBS_MAX);
    return static_cast<int>(std::count_if(
        jobs_.begin(), jobs_.begin() + count,
        [](const NC_Job& job) { return job.state != NC_JOB_DONE && job.state != NC_JOB_FAILED; }));
  }

  // How many jobs wait or are at the printer.
  int Waiting() {
    char list[4096];
    uint8_t status = 0;
    NC_Printer printer;
    const int32_t size = NC_GetPrinterListN(daemon_.fd, &status, list, sizeof list);
    if (NC_ParsePrinters(list, size, &printer, 1) != 1) Die("printer list");
    return printer.jobs;
  }

  // Lets the printer catch up, so that the queue holds no more than it can.
  void Await(int more) {
    while (Waiting() > held_ + more) std::this_thread::sleep_for(std::chrono::milliseconds(2));
  }

  // Seconds for each job.
  double Round(int jobs) {
    const double start = Seconds();
    for (int i = 1; i <= jobs; ++i) {
      Submit("document=a document with a name\nowner=bench\n\nbytes");
      if (i % 20 == 0) Await(40);
      if (i % (held_ / 10) == 0 && List() < held_) Die("jobs are missing");
    }
    Await(0);
    return (Seconds() - start) / jobs;
  }

  // Seconds of the processor that it has used.
  double Processor() const {
    std::ifstream file("/proc/" + std::to_string(daemon_.pid) + "/stat");
    std::string skip;
    std::getline(file, skip, ')');
    for (int i = 0; i < 11; ++i) file >> skip;
    double user = 0, system = 0;
    file >> user >> system;
    return (user + system) / static_cast<double>(sysconf(_SC_CLK_TCK));
  }

  // Bytes of memory that it holds now.
  double Memory() const {
    std::ifstream file("/proc/" + std::to_string(daemon_.pid) + "/statm");
    double size = 0, resident = 0;
    file >> size >> resident;
    return resident * static_cast<double>(sysconf(_SC_PAGESIZE));
  }

 private:
  int held_;
  BenchDaemon daemon_;
  std::vector<char> list_;
  std::vector<NC_Job> jobs_;
};

double Median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  return values[values.size() / 2];
}

}  // namespace

int main(int argc, char** argv) {
  const int jobs = (argc > 1 ? atoi(argv[1]) : kJobs) / kRounds;
  if (jobs < 1) return 2;
  std::string folder = "queue-XXXXXX";  // here: the disk that is built on, not a memory disk
  if (!mkdtemp(folder.data())) Die("mkdtemp");
  double growth, processor, memory;
  {
    Server few(folder, 125, kFew), many(folder, 124, kMany);
    memory = (many.Memory() - few.Memory()) / (kMany - kFew);
    std::vector<double> few_times, many_times;
    const double few_before = few.Processor(), many_before = many.Processor();
    for (int round = 0; round < kRounds; ++round) {
      few_times.push_back(few.Round(jobs));
      many_times.push_back(many.Round(jobs));
    }
    growth = Median(many_times) / Median(few_times);
    processor = (many.Processor() - many_before) / (few.Processor() - few_before);
    printf("a job beside %d others %.2f ms, beside %d %.2f ms\n", kFew, 1e3 * Median(few_times),
           kMany, 1e3 * Median(many_times));
  }
  const std::string remove = "rm -rf " + folder;
  if (system(remove.c_str()) != 0) return 1;
  printf("queue growth_ratio=%.3f processor_ratio=%.3f memory_a_job=%.0f\n", growth, processor,
         memory);
  return 0;
}
