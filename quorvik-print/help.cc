// What --help says.
#include "quorvik-print/options.h"

namespace cli {

const char* HelpText() {
  return R"(usage: quorvik-print [--server HOST] COMMAND [OPTION...] [WORD...]

Lists, with --json or --tsv for scripts:
  list                  the printers
  queue [JOB...]        the jobs, in the order in which they print, or these alone
                        STARTED: when a job came to its printer last; SINCE: when it came
                        into its state; for scripts these and "submitted" are seconds
                        since 1970
      --printer NAME, --owner NAME, --mine, --state WORD
                            only those; WORD is waiting, held, printing, paper-out,
                            done or failed
  profiles [PRINTER]    the profiles of a printer, or all
  scanners              the scanners

Printing:
  print [FILE...]       sends files; tells of each job its id, number, document and owner.
                        "-", or no FILE, is standard input
      --printer NAME        (the server's default printer)
      --profile NAME        (none)
      --media NAME          (none)
      --copies N            1 to 999 (1)
      --priority N          1 to 100, higher prints first (50)
      --colour RRGGBB       a mark in the lists (none)
      --hold                holds the jobs until they are released
      --owner NAME          (the user's name)
      --title NAME          the document's name (the file's)
      --wait                waits until the jobs have ended

Jobs:
  hold JOB...           holds jobs; one that prints leaves its printer
  release JOB...        releases held and failed jobs; loads paper
  change JOB...         sets what --printer, --profile, --media, --copies, --priority,
                        --colour, --owner, --title and --hold say
      --before JOB          prints it directly before that one
  again JOB...          prints jobs once more that have ended, changed as by "change"
  remove JOB...         takes jobs out of the queue
      --mine, --all         your jobs, or everybody's; asks first
      --yes                 does not ask
  move FROM TO          gives all jobs of a printer that have not ended to another one

Printers:
  pause PRINTER...      the job at it goes on to its end, and none begins
  resume PRINTER...     it begins jobs again
  refuse PRINTER...     it takes no new jobs
  accept PRINTER...     it takes new jobs again
  load PRINTER...       paper was loaded

Others:
  gamut NAME            fetches a gamut file
      --folder NAME         the folder that it is in, usually a printer's name (none)
      --output PATH         where to write it (NAME, here)
  completion            a script for bash: source <(quorvik-print completion)
  --version, --help

HOST is a name or an IPv4 address, perhaps with :PORT ($QUORVIK_SERVER, else localhost). A JOB is
its number, or its id, of which the beginning is enough: 8 digits, with a letter among them or 10 in
all. A value may also follow its option after "="; after "--" nothing is an option; -h is --help.
A character that a terminal obeys is shown by its number, as \u{001B}, a byte that is not UTF-8 as
\xFF; --json keeps such characters. Connecting may take 10 s; 30 s without an answer or any progress
are a failed connection.

Exit codes:
  0  done; with --wait: printed
  1  the server refused, or there is no such job, printer or file on it; with --wait: a job failed
     or was removed
  2  faulty command line
  3  no server answers there, or the connection failed
  4  a file here cannot be read or written
  5  with --wait: a job is no longer listed, and its end is not known
When several files, jobs or printers are named, all are tried, and the code is of the first failure;
only a lost connection ends it at once.
)";
}

}  // namespace cli
