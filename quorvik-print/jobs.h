// Jobs of the queue, as the commands that act on them need them.
#pragma once

#include <string>
#include <vector>

#include "printserver/records.h"
#include "quorvik-print/cli.h"

namespace cli {

// The id as 32 digits.
std::string IdText(const uint8_t* id);

// "12 report.pdf, ann": how each command names a job.
std::string NameOf(const NC_Job& job);

// Whether a word can name a job: 1 to 9 decimal digits are its number and nothing else; 32
// hexadecimal digits are its id; 8 or more are the beginning of one, below 10 with a letter among
// them.
bool NamesJob(const std::string& word);

// The job that such a word names; null, which has been told, when there is none, or more than one.
const NC_Job* FindJob(const std::vector<NC_Job>& jobs, const std::string& word);

}  // namespace cli
