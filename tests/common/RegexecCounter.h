#ifndef REGEXEC_COUNTER_H
#define REGEXEC_COUNTER_H

#include <regex.h>

namespace TevTest::RegexecCounter {

/// How often anything in this process called `regexec` so far.
long calls();

/// The system's `regexec`, called without being counted.
int uncounted(const regex_t* expression, const char* text, int flags);

}  // namespace TevTest::RegexecCounter

#endif
