// wifiap-decode, callable from a test: arguments without the program name,
// standard input (called only when no file is named), the text for standard
// output and for standard error. Returns the exit status.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace wifiap::tools {

int runDecode(const std::vector<std::string> &args, const std::function<std::string()> &readInput, std::string &out,
              std::string &err);

}  // namespace wifiap::tools
