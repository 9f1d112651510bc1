// A scripted framework for unit tests: records every call with its
// arguments and answers with queued results (or a plain success).
#pragma once

#include <stdint.h>

#include <deque>
#include <map>
#include <string>
#include <vector>

namespace fake {

struct Call {
    std::string fn;
    std::vector<uintptr_t> args;  // every argument, as a word
};

inline constexpr uint16_t kCmdNum = 0x21;
inline constexpr uint16_t kNtfyNum = 0x22;
inline constexpr uintptr_t kUntouched = 0xA5A5A5A5u;

const std::vector<Call> &calls();
std::vector<std::string> names();  // the functions called, in order
void reset();

// Queues the results of the next calls of `fn` (ismCore_getBase_msgMngt and
// the others returning a code); once used up, calls succeed again.
void answer(const std::string &fn, std::vector<intptr_t> results);
// ismCore_getBase_msgMngt hands back no block on its next call.
void noBlock();
// The block given for a table name (ISM_BLOCK_WORDS(count), kUntouched when new).
const std::vector<uintptr_t> &block(const std::string &tableName);

}  // namespace fake
