#pragma once

// One line on standard error and the end of the process.
[[noreturn]] void OutOfMemory();
