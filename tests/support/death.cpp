#include "death.h"

#include <regex.h>
#include <setjmp.h>
#include <signal.h>
#include <stdlib.h>
#include <string.h>
#include <syslog.h>

namespace death {
namespace {
sigjmp_buf *g_env;

void onAbort(int) { siglongjmp(*g_env, 1); }

// GoogleTest's own regular expressions on Linux: POSIX extended.
bool matches(const std::string &text, const std::string &pattern) {
    regex_t re;
    if (regcomp(&re, pattern.c_str(), REG_EXTENDED | REG_NOSUB) != 0) {
        ADD_FAILURE() << "bad pattern: " << pattern;
        return false;
    }
    bool ok = regexec(&re, text.c_str(), 0, nullptr, 0) == 0;
    regfree(&re);
    return ok;
}
}  // namespace

bool inPlace() {
    const char *v = getenv("WIFIAP_DEATH_IN_PLACE");
    return v && *v && strcmp(v, "0") != 0;
}

void inPlace(void (*statement)(void *), void *arg, const std::string &pattern, const char *file,
             int line) {
    const cap::Mark mark = cap::mark();
    sigjmp_buf env;
    struct sigaction sa = {}, old;
    sa.sa_handler = onAbort;
    sigemptyset(&sa.sa_mask);
    g_env = &env;
    sigaction(SIGABRT, &sa, &old);
    const bool aborted = sigsetjmp(env, 1) != 0;
    if (!aborted) statement(arg);
    sigaction(SIGABRT, &old, nullptr);
    g_env = nullptr;
    std::string emerg;
    for (size_t i = mark.lines; i < cap::lines().size(); ++i)
        if (cap::lines()[i].prio == LOG_EMERG) emerg += cap::lines()[i].raw;
    cap::rewind(mark);
    if (!aborted)
        ADD_FAILURE_AT(file, line) << "Death test: the statement returned instead of aborting";
    else if (!matches(emerg, pattern))
        ADD_FAILURE_AT(file, line) << "Death test: aborted, but its EMERG lines\n"
                                   << emerg << "do not match\n" << pattern;
}

}  // namespace death
